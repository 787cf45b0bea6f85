// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

namespace vorlan_tools {

/// An input that can be read more than once. What is no regular file (standard input, a pipe) is
/// first copied, as it is, to a file without a name in the folder for temporary files ($TMPDIR, or
/// /tmp).
class RereadableInput {
 public:
  /// "-" is standard input. Throws DataError if the input cannot be opened or copied.
  explicit RereadableInput(const std::string& name);
  ~RereadableInput();
  RereadableInput(const RereadableInput&) = delete;
  RereadableInput& operator=(const RereadableInput&) = delete;

  /// A descriptor at the beginning of the input, which the caller closes. Descriptors of one input
  /// share their position: one reading must end before the next begins.
  int open_again() const;

  /// The name as given, or "standard input", for messages.
  const std::string& name() const { return name_; }

 private:
  std::string name_;
  int descriptor_ = -1;
};

/// A file for reading and writing that has no name and goes away with its descriptor. Lies in
/// $TMPDIR, or /tmp. Throws DataError.
int open_nameless_file();

}  // namespace vorlan_tools
