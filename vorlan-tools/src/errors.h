// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vorlan_tools {

/// Input that cannot be used, or output that cannot be written. The text is one clear sentence for
/// the user, without the program's name and without a line end; the program ends with status 1.
class DataError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A fault at one line of an input. The text becomes "NAME, line NUMBER: WHAT".
class LineError : public DataError {
 public:
  LineError(const std::string& name, std::uint64_t line, const std::string& what)
      : DataError(name + ", line " + std::to_string(line) + ": " + what) {}
};

/// A request that makes no sense, whatever the input holds; the program ends with status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vorlan_tools
