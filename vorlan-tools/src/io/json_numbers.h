// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "errors.h"

namespace vorlan_tools {

/// Ends the reading of a file: DataError. Its text is the reason only, without the name of the
/// file. Texts, lists and objects may hold any bytes and are not quoted.
template <typename Json>
[[noreturn]] void refuse_number(const Json& found, const std::string& wanted) {
  throw DataError((found.is_number() ? found.dump() : found.type_name()) +
                  (" stands where " + wanted + " belongs"));
}

/// A whole number from `least` to `most`, both inclusive; anything else is refused. The JSON
/// library's own conversions cut decimals off, wrap what does not fit and take true for 1.
template <typename Number, typename Json>
Number whole_number(const Json& json, Number least = std::numeric_limits<Number>::min(),
                    Number most = std::numeric_limits<Number>::max()) {
  const auto is_within = [least, most](auto value) {
    return std::cmp_less_equal(least, value) && std::cmp_less_equal(value, most);
  };
  const bool is_good = json.is_number_unsigned() ? is_within(json.template get<std::uint64_t>())
                                                 : json.is_number_integer() &&
                                                       is_within(json.template get<std::int64_t>());
  if (is_good) return json.template get<Number>();
  refuse_number(json,
                "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
}

/// The largest count, place or score of a stored genome, and its opposite the least. No genome
/// comes near, and sums over thousands of such numbers stay within 64 bits.
inline constexpr std::int64_t kMostStored = 1'000'000'000'000'000;

template <typename Json>
std::int64_t stored_number(const Json& json) {
  return whole_number<std::int64_t>(json, -kMostStored, kMostStored);
}

}  // namespace vorlan_tools
