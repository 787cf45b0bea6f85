// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

namespace vorlan {

/// A file that could not be opened for writing; `what()` is its name.
struct OutputNotOpened : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A write that failed; `what()` is the name of the file, or "standard output".
struct WriteFailed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A file that the run writes, or standard output. Closed without a check when it is destroyed, for
/// runs that end in an error anyway.
class OutputFile {
 public:
  /// Standard output.
  OutputFile();

  /// Creates or empties the file `name`. Throws OutputNotOpened.
  explicit OutputFile(const std::string& name);

  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* stream() const { return stream_; }

  /// Throws WriteFailed when a write to the stream has failed.
  void check() const;

  /// Writes out what is buffered and closes the file; standard output stays open. Throws
  /// WriteFailed.
  void close();

 private:
  std::FILE* stream_;
  std::string name_;
};

}  // namespace vorlan
