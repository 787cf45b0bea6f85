// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/bed_lines.h"

#include <charconv>

namespace vorlan_tools {

namespace {

bool is_passed_over(std::string_view line) {
  const auto begins = [line](std::string_view word) { return line.substr(0, word.size()) == word; };
  return line.empty() || line.front() == '#' || begins("track") || begins("browser");
}

}  // namespace

bool next_interval_line(LineReader& lines, std::string_view& line) {
  while (lines.next(line)) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!is_passed_over(line)) return true;
  }
  return false;
}

std::vector<std::string_view> split(std::string_view text, char separator, std::size_t most) {
  std::vector<std::string_view> parts;
  while (parts.size() < most) {
    const std::size_t place = text.find(separator);
    parts.push_back(text.substr(0, place));
    if (place == std::string_view::npos) break;
    text.remove_prefix(place + 1);
  }
  return parts;
}

bool is_number(std::string_view text, std::int64_t& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size() && number >= 0;
}

}  // namespace vorlan_tools
