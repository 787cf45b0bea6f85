// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

namespace vorlan_tools {

/// The folder with the slices and their reports while a run is at work, and what is left for
/// --resume when it was ended.
///
/// REPORT.vorlan-run beside a named report. It holds a file `settings` that tells which run it
/// belongs to; a folder without it is not ours and is never touched. For a report that goes
/// elsewhere, a folder for temporary files, which nobody resumes.
class WorkFolder {
 public:
  /// Takes or makes the folder at `path`, for this process and its children alone. Unless
  /// `resumes`, or if it holds no settings, it is emptied. Throws DataError if it is not ours or in
  /// use.
  static WorkFolder beside(const std::string& path, bool resumes);

  /// Makes a new one below $TMPDIR or /tmp. Throws DataError.
  static WorkFolder temporary();

  /// Removes the folder and all that is in it, unless it was kept.
  ~WorkFolder();
  WorkFolder(WorkFolder&& other) noexcept;
  WorkFolder& operator=(WorkFolder&&) = delete;

  /// Absolute.
  const std::string& path() const { return path_; }

  std::string file(std::string_view name) const { return path_ + "/" + std::string(name); }

  bool can_resume() const { return can_resume_; }

  /// What the run is that the folder belongs to; empty if it is new.
  std::string settings() const;

  /// States what run the folder belongs to.
  void set_settings(std::string_view text) const;

  /// Leaves the folder where it is, for --resume, unless it is discarded later.
  void keep() { is_kept_ = can_resume_; }

  bool is_kept() const { return is_kept_; }

  /// The work is done, or useless: the folder goes.
  void discard() { is_kept_ = false; }

 private:
  explicit WorkFolder(std::string path) : path_(std::move(path)) {}
  void lock();
  void check_that_it_is_ours() const;
  void empty() const;

  std::string path_;
  int lock_ = -1;
  bool can_resume_ = false;
  bool is_kept_ = false;
};

/// The bytes of a small file; empty if it cannot be read.
std::string read_small_file(const std::string& path);

/// Writes a small file that is there as a whole or not at all. Throws DataError.
void write_small_file(const std::string& path, std::string_view text);

}  // namespace vorlan_tools
