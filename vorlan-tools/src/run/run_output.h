// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "io/output_file.h"
#include "run/work_folder.h"

namespace vorlan_tools {

/// Where the report of a run goes: a file that appears when it is whole, or a stream.
class RunOutput {
 public:
  /// Takes `name` as typed; "-" is standard output.
  explicit RunOutput(std::string name);

  /// Whether the report is a regular file, so that a run can be resumed.
  bool is_file() const { return is_file_; }

  /// The folder that belongs to the report.
  WorkFolder make_folder(bool resumes) const;

  /// The name for the head of the report: none for standard output.
  std::optional<std::string> name_in_head() const;

  /// Begins to write. A file is made in `folder`.
  OutputFile& open(const WorkFolder& folder);

  /// Requires that it is open.
  void write_line(std::string_view line);

  /// Gives the file its name. If the report ends at a malformed record and there is an earlier
  /// report, that one stays, and the new one is named NAME.partial. Returns the name. Throws
  /// DataError.
  std::string finish(bool is_whole);

 private:
  std::string name_;
  std::string target_;  ///< of a file: its absolute path, behind all links
  std::string made_at_;
  bool is_file_;
  std::unique_ptr<OutputFile> file_;
};

}  // namespace vorlan_tools
