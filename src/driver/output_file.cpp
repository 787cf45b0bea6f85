// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/output_file.h"

#include <utility>

namespace vorlan {

OutputFile::OutputFile() : stream_(stdout), name_("standard output") {}

OutputFile::OutputFile(const std::string& name)
    : stream_(std::fopen(name.c_str(), "w")), name_(name) {
  if (stream_ == nullptr) throw OutputNotOpened(name);
}

OutputFile::~OutputFile() {
  if (stream_ != nullptr && stream_ != stdout) std::fclose(stream_);
}

void OutputFile::check() const {
  if (std::ferror(stream_) != 0) throw WriteFailed(name_);
}

void OutputFile::close() {
  std::fflush(stream_);
  check();
  if (stream_ == stdout) return;
  if (std::fclose(std::exchange(stream_, nullptr)) != 0) throw WriteFailed(name_);
}

}  // namespace vorlan
