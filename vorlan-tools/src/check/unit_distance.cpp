// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_distance.h"

#include <algorithm>
#include <vector>

// Edit distance with wraparound: cost[phase] is the least number of edits that explain the bases so
// far if the next expected base is unit[phase]. Every phase may begin, at no cost. A base either
// meets unit[phase] and moves on, or is inserted and stays; expected bases can be skipped, which
// runs through the cycle at most twice before nothing improves.
//
//     unit AC, bases ACAAC: ACA|C|... -> A C A C A C with one C missing: A C A - A C, one edit

namespace vorlan_tools {

std::int64_t distance_from_unit(std::string_view bases, std::string_view unit, bool ns_fit) {
  const std::size_t length = unit.size();
  std::vector<std::int64_t> cost(length, 0);
  std::vector<std::int64_t> next(length);
  for (const char base : bases) {
    const bool fits_all = ns_fit && base == 'N';
    for (std::size_t phase = 0; phase < length; ++phase) {
      const std::size_t before = phase == 0 ? length - 1 : phase - 1;
      const std::int64_t aligned = cost[before] + (fits_all || base == unit[before] ? 0 : 1);
      next[phase] = std::min(aligned, cost[phase] + 1);
    }
    for (std::size_t step = 1; step < 2 * length; ++step) {
      const std::size_t phase = step % length;
      const std::size_t before = phase == 0 ? length - 1 : phase - 1;
      next[phase] = std::min(next[phase], next[before] + 1);
    }
    cost.swap(next);
  }
  return *std::min_element(cost.begin(), cost.end());
}

}  // namespace vorlan_tools
