// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cmath>
#include <cstddef>
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
  explicit FieldCursor(std::string_view text)
      : begin_(text.data()), end_(text.data() + text.size()) {}

  bool ok() const { return ok_; }
  bool at_end() const { return ok_ && begin_ == end_; }
  std::string_view rest() const { return {begin_, left()}; }

  FieldCursor& literal(std::string_view text) {
    if (left() < text.size() || std::memcmp(begin_, text.data(), text.size()) != 0) return fail();
    begin_ += text.size();
    return *this;
  }

  /// The same for a text whose length is known when this is compiled: one comparison.
  template <std::size_t kSize>
  FieldCursor& literal(const char (&text)[kSize]) {
    constexpr std::size_t kLength = kSize - 1;
    if (left() < kLength || std::memcmp(begin_, text, kLength) != 0) return fail();
    begin_ += kLength;
    return *this;
  }

  FieldCursor& blanks() {
    while (begin_ != end_ && *begin_ == ' ') ++begin_;
    return *this;
  }

  /// A whole number that fits into 32 bits, as all of a report do, with leading blanks as padding.
  FieldCursor& number(std::int64_t& value) {
    blanks();
    const bool negative = begin_ != end_ && *begin_ == '-';
    const char* const first = begin_ + (negative ? 1 : 0);
    const char* at = first;
    std::uint64_t size = 0;
    for (; at != end_ && digit_of(*at) < 10; ++at) size = 10 * size + digit_of(*at);
    if (at == first || at - first > kMaxDigits || size > INT32_MAX) return fail();
    value = negative ? -static_cast<std::int64_t>(size) : static_cast<std::int64_t>(size);
    begin_ = at;
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
    const bool negative = begin_ != end_ && *begin_ == '-';
    std::int64_t whole = 0;
    if (!number(whole).literal(".").ok() || end_ - begin_ < decimals) return fail();
    std::int64_t fraction = 0;
    for (int i = 0; i < decimals; ++i, ++begin_) {
      if (digit_of(*begin_) >= 10) return fail();
      fraction = 10 * fraction + digit_of(*begin_);
    }
    if (decimals == 2) fraction *= 10;
    value = negative ? 1000 * whole - fraction : 1000 * whole + fraction;
    return *this;
  }

  /// All bytes up to `end`, which is passed over.
  FieldCursor& text_until(char end, std::string_view& text) {
    const std::size_t at = rest().find(end);
    if (!ok_ || at == std::string_view::npos) return fail();
    text = rest().substr(0, at);
    begin_ += at + 1;
    return *this;
  }

  /// All bytes that are left.
  FieldCursor& text_until_end(std::string_view& text) {
    text = rest();
    begin_ = end_;
    return *this;
  }

 private:
  static constexpr std::ptrdiff_t kMaxDigits = 10;

  /// 10 or more for what is no digit.
  static unsigned digit_of(char c) { return static_cast<unsigned>(c) - '0'; }

  std::size_t left() const { return static_cast<std::size_t>(end_ - begin_); }

  FieldCursor& fail() {
    ok_ = false;
    begin_ = end_;
    return *this;
  }

  const char* begin_;
  const char* end_;
  bool ok_ = true;
};

}  // namespace vorlan_tools
