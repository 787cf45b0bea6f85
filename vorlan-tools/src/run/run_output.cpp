// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/run_output.h"

#include <filesystem>

#include "errors.h"
#include "io/compression_by_name.h"

namespace vorlan_tools {

namespace fs = std::filesystem;

namespace {

/// A device or a pipe is written to, never replaced.
bool is_stream(const std::string& name) {
  if (name == "-") return true;
  std::error_code error;
  const fs::file_status status = fs::status(name, error);
  if (fs::is_directory(status)) throw DataError("The report " + name + " is a folder.");
  return fs::exists(status) && !fs::is_regular_file(status);
}

}  // namespace

RunOutput::RunOutput(std::string name) : name_(std::move(name)), is_file_(!is_stream(name_)) {
  if (is_file_) target_ = fs::weakly_canonical(fs::absolute(name_)).string();
}

WorkFolder RunOutput::make_folder(bool resumes) const {
  if (is_file_) return WorkFolder::beside(target_ + ".vorlan-run", resumes);
  if (resumes) {
    throw UsageError("Only a run with a report file can be resumed, not one that writes to " +
                     (name_ == "-" ? "standard output." : name_ + "."));
  }
  return WorkFolder::temporary();
}

std::optional<std::string> RunOutput::name_in_head() const {
  return name_ == "-" ? std::nullopt : std::optional(name_);
}

OutputFile& RunOutput::open(const WorkFolder& folder) {
  made_at_ = is_file_ ? folder.file("report") : name_;
  file_ = std::make_unique<OutputFile>(made_at_, compression_by_name(name_));
  return *file_;
}

void RunOutput::write_line(std::string_view line) {
  file_->write(line);
  file_->write("\n");
}

std::string RunOutput::finish(bool is_whole) {
  file_->finish();
  if (!is_file_) return name_;
  const bool keeps_earlier = !is_whole && fs::exists(target_);
  const std::string ending = keeps_earlier ? ".partial" : "";
  std::error_code error;
  fs::rename(made_at_, target_ + ending, error);
  if (error) throw DataError("Cannot write " + name_ + ending + ": " + error.message() + ".");
  return name_ + ending;
}

}  // namespace vorlan_tools
