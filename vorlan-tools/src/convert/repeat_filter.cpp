// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/repeat_filter.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "errors.h"

namespace vorlan_tools {

namespace {

bool to_length(std::string_view text, std::int64_t& length) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), length);
  return result.ec == std::errc() && result.ptr == text.data() + text.size() && length >= 1;
}

}  // namespace

void set_unit_lengths(RepeatFilter& filter, const std::string& text) {
  const std::string_view all = text;
  const std::size_t dash = all.find('-');
  bool fits = to_length(all.substr(0, dash), filter.min_unit_length);
  if (dash == std::string_view::npos) {
    filter.max_unit_length = filter.min_unit_length;
  } else if (dash + 1 < all.size()) {
    fits = fits && to_length(all.substr(dash + 1), filter.max_unit_length);
  }
  if (!fits || filter.max_unit_length < filter.min_unit_length) {
    throw UsageError("--unit-length takes a length or a range such as 2-6, not \"" + text + "\".");
  }
}

Thousandths to_thousandths(double number, const std::string& option) {
  constexpr double kLargest = 1e12;
  if (!(number >= 0 && number <= kLargest)) throw UsageError(option + " takes a number from 0 on.");
  return std::llround(number * 1000.0);
}

}  // namespace vorlan_tools
