// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vorlan_tools {

/// A file with the given text that goes away with the object.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view text) {
    path_ = (std::filesystem::temp_directory_path() / "vorlan-tools-XXXXXX").string();
    const int descriptor = ::mkstemp(path_.data());
    if (descriptor < 0) throw std::runtime_error("no temporary file");
    ::close(descriptor);
    std::ofstream(path_, std::ios::binary) << text;
  }
  ~TemporaryFile() { std::filesystem::remove(path_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace vorlan_tools
