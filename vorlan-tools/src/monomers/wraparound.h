// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vorlan_tools {

/// One column of the alignment of an array with its unit, repeated for ever.
struct UnitStep {
  enum class Kind : std::uint8_t {
    kAligned,   ///< a base of the array and a base of the unit, equal or not
    kInserted,  ///< a base of the array; stands behind the base `place` of the unit
    kDeleted,   ///< a base of the unit
  };
  std::uint32_t place;  ///< in the unit, from 0
  Kind kind;
};

/// Whether `array` is `unit` written again and again, from its first base on; the end may be cut.
bool is_repetition(std::string_view array, std::string_view unit);

/// The best alignment of all of `array` with `unit` repeated for ever, in any phase: 2 for a
/// mismatch, 3 for an inserted or deleted base. Both may hold any letters; `unit` must not be
/// empty. Time: bases of the array times bases of the unit, twice. Memory: 20 MB, plus 8 bytes for
/// each base of the array.
std::vector<UnitStep> align_to_unit(std::string_view array, std::string_view unit);

/// Only what that alignment costs; half the time, memory of the unit. If it costs `limit` or more,
/// the result may be any number from `limit` on, which is found as soon as it is certain.
std::int64_t unit_alignment_cost(std::string_view array, std::string_view unit,
                                 std::int64_t limit = INT64_MAX);

}  // namespace vorlan_tools
