// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <string_view>

namespace vorlan_tools {

/// What stands in front of the first carriage return or line feed of `text`, or a first part of it:
/// no search goes far, also where a text knows only one of both.
inline std::string_view line_part(std::string_view text) {
  constexpr std::size_t kMost = 4096;
  const std::string_view near = text.substr(0, kMost);
  const std::string_view line = near.substr(0, near.find('\n'));
  return line.substr(0, line.find('\r'));
}

/// Lines at the beginning of `text`, which begins with a line, that are looked at together: in
/// front of the next record, with their line ends. None if the first one does not end there.
inline std::string_view whole_lines(std::string_view text) {
  constexpr std::size_t kMost = std::size_t{16} * 1024;
  const std::string_view near = text.substr(0, kMost);
  const std::string_view lines = near.substr(0, near.find('>'));
  return lines.substr(0, lines.find_last_of("\r\n") + 1);
}

}  // namespace vorlan_tools
