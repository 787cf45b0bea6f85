// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace vorlan {

/// A file with the given bytes that is removed at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view bytes) : name_(::testing::TempDir() + "vorlan-XXXXXX") {
    const int descriptor = mkstemp(name_.data());
    if (descriptor < 0) throw std::runtime_error("cannot make a temporary file");
    close(descriptor);
    std::ofstream(name_, std::ios::binary) << bytes;
  }
  ~TemporaryFile() { std::remove(name_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* name() const { return name_.c_str(); }

  std::string bytes() const {
    std::ostringstream content;
    content << std::ifstream(name_, std::ios::binary).rdbuf();
    return content.str();
  }

 private:
  std::string name_;
};

}  // namespace vorlan
