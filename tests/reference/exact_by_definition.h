// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Perfect repeats by their definition, for residues without N.
//
// Idea: a stretch has period u when each of its residues equals the one u further on. For each u
// the maximal runs of positions i with x[i] == x[i + u] are found by looking at every i; a run of r
// positions from i is the stretch [i, i + r + u): the r residues of the run and the u that the last
// of them are compared with. Its score is r, its length less the first copy of the unit.
//
// How the exact search relates to this, for residues without N:
//  - every record of an exact search is one of these stretches, with its unit anywhere inside;
//  - at unit length 1 alone the records are exactly the stretches that reach the thresholds;
//  - at one single unit length u of 2 or more, with a minimum score of at least u, the records are
//    the stretches that reach the thresholds and are not one residue repeated. With a lower minimum
//    score a stretch may be missing, when its start is closed by another of the same period;
//  - over a range of unit lengths the marks of shorter units also hide stretches whose unit is not
//    primitive, and stretches that are wholly covered by shorter repeats.
//
// Example: x = GACACAT, u = 2: x[i] == x[i + 2] holds for i = 1, 2, 3, but not for 0 (G against C)
// and 4 (C against T). One run of 3 positions from 1: the stretch [1, 6) = ACACA, score 3.
#ifndef VORLAN_TESTS_REFERENCE_EXACT_BY_DEFINITION_H_
#define VORLAN_TESTS_REFERENCE_EXACT_BY_DEFINITION_H_

#include <compare>
#include <cstddef>
#include <string_view>
#include <vector>

namespace reference {

// The residues [begin, end), in which each residue but the last unit_length ones equals the one
// unit_length further on. Ordered by begin, then end, then unit length.
struct PerfectStretch {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t unit_length = 0;
  std::size_t score() const { return end - begin - unit_length; }
  auto operator<=>(const PerfectStretch&) const = default;
};

// All maximal stretches with a score of at least 1, for unit lengths min_unit_length to
// max_unit_length, ordered.
// REQUIRES: min_unit_length >= 1; no residue is N.
// Cost: number of residues times number of unit lengths.
std::vector<PerfectStretch> perfect_stretches(std::string_view residues,
                                              std::size_t min_unit_length,
                                              std::size_t max_unit_length);

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_EXACT_BY_DEFINITION_H_
