// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "io/compression_threads.h"
#include "io/pending_file.h"

namespace vorlan_tools {

enum class Compression { kPlain, kBgzip };

/// Bytes to a file or to standard output, compressed if asked. A named file appears when finish()
/// has succeeded; an output that is never finished leaves nothing behind (see PendingFile).
class OutputFile {
 public:
  /// Of a plain file. What is as large goes past the buffer, without a copy.
  static constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

  /// `threads` compress at once (1: only this one). Throws DataError if the file cannot be created.
  OutputFile(const std::string& name, Compression compression, int threads = 1);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Throws DataError if the bytes cannot be written; that may show at a later call or in finish().
  void write(std::string_view bytes);

  /// Hands over what was written so far, so that a reader of a pipe gets it.
  void flush();

  /// Writes what is left; nothing may be written afterwards. The bytes lie under path() then.
  void close();

  /// Gives the closed file its final name.
  void commit() { pending_.commit(); }

  /// Both.
  void finish() {
    close();
    commit();
  }

  /// Where the bytes go before finish().
  const std::string& path() const { return pending_.path(); }

 private:
  void write_plain(std::string_view bytes);
  [[noreturn]] void fail() const;

  PendingFile pending_;
  CompressionThreads threads_;
  BGZF* bgzf_ = nullptr;
  std::vector<char> buffer_;
};

}  // namespace vorlan_tools
