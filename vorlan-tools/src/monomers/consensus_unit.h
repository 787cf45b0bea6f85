// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "monomers/wraparound.h"

namespace vorlan_tools {

struct ConsensusUnit {
  std::string unit;             ///< never empty
  std::vector<UnitStep> steps;  ///< the array aligned to it, if all of the array was looked at
};

/// What most copies of an array agree on, made from a first guess of the unit: any one copy, in any
/// phase, on the strand of the array. It may get longer or shorter than the guess.
/// Linear in the array for a given unit.
ConsensusUnit consensus_unit(std::string_view array, std::string unit);

/// `unit` turned so that it begins with what resembles `begin` most (fewest mismatches, no gaps).
std::string turned_to_begin(const std::string& unit, std::string_view begin);

}  // namespace vorlan_tools
