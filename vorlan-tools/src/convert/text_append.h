// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "convert/row_text.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// The functions below append to `text`, a std::string or RowText; none depends on the locale.

inline void append_number(std::string& text, std::int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

inline void append_number(RowText& text, std::int64_t number) { text.append_digits(number); }

/// A point and three decimals.
template <typename Text>
void append_fraction(Text& text, unsigned thousandths) {
  text += '.';
  text += static_cast<char>('0' + thousandths / 100);
  text += static_cast<char>('0' + thousandths / 10 % 10);
  text += static_cast<char>('0' + thousandths % 10);
}

/// With three decimals, as the report prints a perfection.
template <typename Text>
void append_thousandths(Text& text, Thousandths value) {
  if (value < 0) text += '-';
  const std::uint64_t size =
      value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  append_number(text, static_cast<std::int64_t>(size / 1000));
  append_fraction(text, static_cast<unsigned>(size % 1000));
}

/// As printf writes a float of that value with %g: six digits, without zeros at the end. A float
/// keeps six digits of any number, so those of up to 999.999 are written as they are.
inline void append_short(RowText& text, Thousandths value) {
  constexpr Thousandths kSixDigits = 999999;
  if (value < 0 || value > kSixDigits) {
    const auto number = static_cast<float>(static_cast<double>(value) / 1000.0);
    char digits[32];
    const char* const end =
        std::to_chars(digits, digits + sizeof digits, double{number}, std::chars_format::general, 6)
            .ptr;
    text += {digits, static_cast<std::size_t>(end - digits)};
    return;
  }
  append_number(text, value / 1000);
  if (value % 1000 == 0) return;
  const auto fraction = static_cast<int>(value % 1000);
  const std::array<char, 4> digits = {'.', static_cast<char>('0' + fraction / 100),
                                      static_cast<char>('0' + fraction / 10 % 10),
                                      static_cast<char>('0' + fraction % 10)};
  const std::string_view shown(digits.data(), digits.size());
  text += shown.substr(0, shown.find_last_not_of('0') + 1);
}

/// What is not known is a '.' in tables.
template <typename Text>
void append_or_dot(Text& text, const std::optional<std::int64_t>& number) {
  if (number) {
    append_number(text, *number);
  } else {
    text += '.';
  }
}

template <typename Text>
void append_or_dot(Text& text, std::string_view value) {
  if (value.empty()) {
    text += '.';
  } else {
    text += value;
  }
}

}  // namespace vorlan_tools
