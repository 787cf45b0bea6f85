// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cassert>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>

#include "output/bases.h"

namespace vorlan {

/// The text of an entry as it is put together field by field. Numbers stand right-aligned in a
/// least width of columns and look as printf writes them with "%*d" and "%*.*f". printf itself
/// reads its format again for each entry, which took a tenth of the time of a run on an AT-rich
/// genome. Throws std::bad_alloc.
///
/// Example: add_number(12, 4), add(" bp") and add_decimal(97.5, 2, 7) make "  12 bp  97.50".
class EntryText {
 public:
  EntryText() { text_.reserve(kUsualLength); }

  EntryText& add(std::string_view text) {
    text_ += text;
    return *this;
  }

  /// `text`, behind as many blanks as make it `width` columns wide.
  EntryText& add_aligned(std::string_view text, std::size_t width) {
    if (text.size() < width) text_.append(width - text.size(), ' ');
    return add(text);
  }

  /// `value` in the decimal system, right-aligned like a text.
  EntryText& add_number(std::integral auto value, std::size_t width = 0) {
    char digits[kLongestNumber];
    return add_converted(digits, std::to_chars(digits, digits + kLongestNumber, value), width);
  }

  /// `value`, which may be infinite or no number, with `places` digits behind the point, at most 6:
  /// the nearest such number, and of two equally near the even one.
  EntryText& add_decimal(float value, int places, std::size_t width = 0) {
    char digits[kLongestNumber];
    const auto converted =
        std::to_chars(digits, digits + kLongestNumber, static_cast<double>(value),
                      std::chars_format::fixed, places);
    return add_converted(digits, converted, width);
  }

  std::string_view view() const { return text_; }

  void write(std::FILE* stream) const { write_bases(stream, text_); }

 private:
  /// Longer than the lines of numbers of all formats, but for long names and units.
  static constexpr std::size_t kUsualLength = 200;

  /// Room for the largest float, of 39 digits, with a sign, a point and 6 places.
  static constexpr std::size_t kLongestNumber = 48;

  EntryText& add_converted(const char* digits, std::to_chars_result converted, std::size_t width) {
    assert(converted.ec == std::errc());
    return add_aligned({digits, static_cast<std::size_t>(converted.ptr - digits)}, width);
  }

  std::string text_;
};

}  // namespace vorlan
