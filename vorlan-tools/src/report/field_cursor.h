// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "report/repeat.h"

namespace vorlan_tools {

/// What printf shows of a float with three decimals, as a whole number of thousandths. Exact: a
/// float has 24 significant bits, so the product has at most 34 and a double holds it without
/// rounding; both round halves to even.
inline Thousandths thousandths_of(float value) {
  return static_cast<Thousandths>(std::llrint(static_cast<double>(value) * 1000.0));
}

/// Takes the fields of one line from left to right. After the first field that does not fit,
/// nothing fits any more, so that one test of ok() at the end is enough.
class FieldCursor {
 public:
  explicit FieldCursor(std::string_view text) : rest_(text) {}

  bool ok() const { return ok_; }
  bool at_end() const { return ok_ && rest_.empty(); }
  std::string_view rest() const { return rest_; }

  FieldCursor& literal(std::string_view text) {
    if (rest_.size() < text.size() || std::memcmp(rest_.data(), text.data(), text.size()) != 0)
      return fail();
    rest_.remove_prefix(text.size());
    return *this;
  }

  /// The same for a text whose length is known when this is compiled: one comparison.
  template <std::size_t kSize>
  FieldCursor& literal(const char (&text)[kSize]) {
    constexpr std::size_t kLength = kSize - 1;
    if (rest_.size() < kLength || std::memcmp(rest_.data(), text, kLength) != 0) return fail();
    rest_.remove_prefix(kLength);
    return *this;
  }

  FieldCursor& blanks() {
    while (!rest_.empty() && rest_[0] == ' ') rest_.remove_prefix(1);
    return *this;
  }

  /// A whole number that fits into 32 bits, as all of a report do, with leading blanks as padding.
  FieldCursor& number(std::int64_t& value) {
    blanks();
    const bool negative = !rest_.empty() && rest_[0] == '-';
    std::size_t at = negative ? 1 : 0;
    const std::size_t first = at;
    std::int64_t result = 0;
    while (at < rest_.size() && at - first < kMaxDigits && is_digit(rest_[at])) {
      result = 10 * result + (rest_[at++] - '0');
    }
    if (at == first || result > INT32_MAX) return fail();
    value = negative ? -result : result;
    rest_.remove_prefix(at);
    return *this;
  }

  template <typename Optional>
  FieldCursor& optional_number(Optional& value) {
    return number(value.emplace());
  }

  /// A number with exactly `decimals` (2 or 3) decimals, as thousandths; with leading blanks as
  /// padding.
  FieldCursor& decimal(Thousandths& value, int decimals = 3) {
    blanks();
    const bool negative = !rest_.empty() && rest_[0] == '-';
    std::int64_t whole = 0;
    if (!number(whole).literal(".").ok()) return *this;
    std::int64_t fraction = 0;
    for (int i = 0; i < decimals; ++i) {
      if (rest_.empty() || !is_digit(rest_[0])) return fail();
      fraction = 10 * fraction + (rest_[0] - '0');
      rest_.remove_prefix(1);
    }
    if (decimals == 2) fraction *= 10;
    value = negative ? 1000 * whole - fraction : 1000 * whole + fraction;
    return *this;
  }

  /// All bytes up to `end`, which is passed over.
  FieldCursor& text_until(char end, std::string_view& text) {
    const std::size_t at = rest_.find(end);
    if (!ok_ || at == std::string_view::npos) return fail();
    text = rest_.substr(0, at);
    rest_.remove_prefix(at + 1);
    return *this;
  }

  /// All bytes that are left.
  FieldCursor& text_until_end(std::string_view& text) {
    text = rest_;
    rest_ = {};
    return *this;
  }

 private:
  static constexpr std::size_t kMaxDigits = 10;

  static bool is_digit(char c) { return c >= '0' && c <= '9'; }

  FieldCursor& fail() {
    ok_ = false;
    rest_ = {};
    return *this;
  }

  std::string_view rest_;
  bool ok_ = true;
};

}  // namespace vorlan_tools
