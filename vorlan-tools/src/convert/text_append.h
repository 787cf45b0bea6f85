// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "report/repeat.h"

namespace vorlan_tools {

/// The functions below append to `text`; none depends on the locale.

inline void append_number(std::string& text, std::int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// With three decimals, as the report prints a perfection.
inline void append_thousandths(std::string& text, Thousandths value) {
  if (value < 0) text += '-';
  const std::uint64_t size =
      value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  append_number(text, static_cast<std::int64_t>(size / 1000));
  const auto fraction = static_cast<unsigned>(size % 1000);
  text += '.';
  text += static_cast<char>('0' + fraction / 100);
  text += static_cast<char>('0' + fraction / 10 % 10);
  text += static_cast<char>('0' + fraction % 10);
}

/// What is not known is a '.' in tables.
inline void append_or_dot(std::string& text, const std::optional<std::int64_t>& number) {
  if (number) {
    append_number(text, *number);
  } else {
    text += '.';
  }
}

inline void append_or_dot(std::string& text, std::string_view value) {
  if (value.empty()) {
    text += '.';
  } else {
    text += value;
  }
}

}  // namespace vorlan_tools
