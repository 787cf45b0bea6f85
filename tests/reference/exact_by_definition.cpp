// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Looks at every position for every unit length; a run begins where the position before does not
// repeat. Idea and example: see the header.

#include "exact_by_definition.h"

#include <algorithm>

namespace reference {
namespace {

// Whether x[i] == x[i + u]; false where there is no such pair.
bool repeats_after(std::string_view x, std::size_t i, std::size_t u) {
  return i + u < x.size() && x[i] == x[i + u];
}

}  // namespace

std::vector<PerfectStretch> perfect_stretches(std::string_view residues,
                                              std::size_t min_unit_length,
                                              std::size_t max_unit_length) {
  std::vector<PerfectStretch> stretches;
  for (std::size_t u = min_unit_length; u <= max_unit_length && u < residues.size(); ++u) {
    for (std::size_t i = 0; i < residues.size(); ++i) {
      const bool run_begins =
          repeats_after(residues, i, u) && (i == 0 || !repeats_after(residues, i - 1, u));
      if (!run_begins) continue;
      std::size_t run_end = i;
      while (repeats_after(residues, run_end, u)) ++run_end;
      stretches.push_back({i, run_end + u, u});
    }
  }
  std::sort(stretches.begin(), stretches.end());
  return stretches;
}

}  // namespace reference
