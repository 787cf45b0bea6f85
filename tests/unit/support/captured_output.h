// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vorlan {

/// A stream whose bytes are kept.
class CapturedStream {
 public:
  CapturedStream() : stream_(open_memstream(&bytes_, &size_)) {}
  ~CapturedStream() {
    std::fclose(stream_);
    std::free(bytes_);
  }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  std::FILE* stream() { return stream_; }

  std::string text() {
    std::fflush(stream_);
    return {bytes_, size_};
  }

 private:
  char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

/// Takes what is written to one of the standard streams until it is destroyed.
class CapturedStandardStream {
 public:
  explicit CapturedStandardStream(std::FILE* stream)
      : stream_(stream), file_(std::tmpfile()), kept_(dup(fileno(stream))) {
    std::fflush(stream_);
    dup2(fileno(file_), fileno(stream_));
  }
  ~CapturedStandardStream() {
    std::fflush(stream_);
    dup2(kept_, fileno(stream_));
    close(kept_);
    std::fclose(file_);
  }
  CapturedStandardStream(const CapturedStandardStream&) = delete;
  CapturedStandardStream& operator=(const CapturedStandardStream&) = delete;

  std::string text() {
    std::fflush(stream_);
    std::string result;
    char byte = 0;
    for (off_t at = 0; pread(fileno(file_), &byte, 1, at) == 1; ++at) result += byte;
    return result;
  }

 private:
  std::FILE* stream_;
  std::FILE* file_;
  int kept_;
};

/// For the child process of a death test, whose standard error alone is looked at.
inline void send_standard_output_to_standard_error() {
  std::fflush(stdout);
  dup2(fileno(stderr), fileno(stdout));
}

}  // namespace vorlan
