// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vorlan {

/// Numbers for units as read from one of their bases: two units that read alike from there, round
/// and round, have the same number, wherever in the sequence they stand.
///
/// Example: AC read from its C and CA read from its C are CACA..: one number. ACAC read from either
/// C as well. AC read from its A is ACAC..: another number.
class UnitPhases {
 public:
  /// The phases of one unit.
  class Unit {
   public:
    /// `offset` is the base that is read first, counted from the begin of the unit.
    std::uint32_t phase(std::uint32_t offset) const {
      return base_ + (offset + length_ - rotation_) % length_ % period_;
    }

   private:
    friend class UnitPhases;
    std::uint32_t base_ = 0;
    std::uint32_t length_ = 1;
    std::uint32_t period_ = 1;    // of the unit itself: 2 for ACAC
    std::uint32_t rotation_ = 0;  // where the alphabetically smallest rotation begins
  };

  /// Cost: quadratic in the length at worst, about linear on the average.
  Unit of(std::string_view unit);

 private:
  /// The first of the numbers of a unit, by the smallest rotation of its shortest period.
  std::unordered_map<std::string, std::uint32_t> bases_;
  std::uint32_t next_base_ = 0;
};

}  // namespace vorlan
