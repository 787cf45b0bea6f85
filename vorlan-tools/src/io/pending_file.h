// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

namespace vorlan_tools {

/// A file that appears under its name only when it is whole.
///
/// Bytes go to a file beside the final one, NAME.XXXXXX, which commit() renames. Without commit()
/// the file beside is removed, also when a signal ends the process, and an earlier file of that
/// name stays as it was. A symbolic link is followed: what it points to is replaced, not the link.
/// What is no regular file (a device, a pipe) is written directly.
class PendingFile {
 public:
  /// Creates the file beside `name`; throws DataError if that fails. "-" is standard output.
  explicit PendingFile(const std::string& name);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  /// Open for writing, owned by this object unless released.
  int descriptor() const { return descriptor_; }

  /// Hands the descriptor over to a caller who closes it.
  int release_descriptor();

  /// Where the bytes go until commit(); the final name for devices and pipes, empty for standard
  /// output.
  const std::string& path() const { return path_; }

  /// The name as given, or "standard output", for messages.
  const std::string& name() const { return name_; }

  /// Whether commit() will rename, i.e. neither standard output nor a device or pipe.
  bool is_beside() const { return is_beside_; }

  /// Closes the descriptor if it is still owned and gives the file its final name. Throws
  /// DataError.
  void commit();

 private:
  void close_descriptor();
  void create_beside();
  void remove_beside();

  std::string name_;
  std::string path_;
  std::string final_path_;
  int descriptor_ = -1;
  bool is_beside_ = false;
};

}  // namespace vorlan_tools
