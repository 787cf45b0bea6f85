// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "monomers/higher_order.h"

namespace vorlan_tools {

/// One copy of the unit. `start` and `end` count from 0 at the beginning of the array, the end
/// excluded. The counts are against the consensus.
struct Monomer {
  std::int64_t start = 0;
  std::int64_t end = 0;
  std::int64_t places = 0;  ///< of the unit that it reaches; fewer at an end of the array
  std::int64_t mismatches = 0;
  std::int64_t insertions = 0;
  std::int64_t deletions = 0;

  std::int64_t edits() const { return mismatches + insertions + deletions; }
  std::int64_t columns() const { return places + insertions; }
};

/// An array as its copies.
struct Dissection {
  std::string consensus;
  std::vector<Monomer> monomers;
  HigherOrder higher_order;
};

/// `unit` is a first guess: one copy, in any phase, on either strand. Copies begin where the
/// consensus resembles `begin`; if that is empty, in the phase of the array's first base.
/// Linear in the array for a given unit.
Dissection dissect_array(std::string_view array, const std::string& unit, std::string_view begin);

}  // namespace vorlan_tools
