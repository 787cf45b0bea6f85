// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter before the extension, written slowly and plainly.
//
// Idea: the paths of one start are a set of cells (e, d): e edits so far, and d of the insertions
// more than deletions. A step over one residue moves each cell for itself; nothing is shared
// between starts, and no two starts stand in one word. What decides whether a start survives is
// written here once more, from the rules and not from the kernels, so that these can be held
// against it bit by bit.
//
// Example, unit AC, floor -3, penalty 5, at AC|ACAGAC: after ACA the only cell is (0, 0), with at
// most 3 points. At G, where C is due, an edit would leave -2: the cells behind it are (1, 0) after
// a mismatch and (1, 1) after an insertion; a deletion makes A due, which G is not either, and -2
// does not allow another edit. At the next A the first goes on, and the second, where C is due, is
// lost.
//
// Cost: residues x cells for each start. Nothing here depends on the product.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace reference {

/// What one look at the starts of one unit length goes by. Scores are points, distances residues.
struct FilterRules {
  int unit_length;          ///< At least 1.
  int floor;                ///< An edit is made only if the bound of the score stays above it.
  int penalty;              ///< What an edit costs at least; positive.
  int min_score;            ///< At least 1.
  int horizon;              ///< How many residues are looked at in each direction, at most.
  int first_check;          ///< After so many residues the starts that are left are first counted,
                            ///< then after every second one.
  int few_enough_to_stop;   ///< The look ends when no more than these are left,
  int checks_without_loss;  ///< and when more counts in a row than these have shown no loss.
  int max_gain;             ///< A start that gains this much forward survives; at most min_score.
  bool bridges_N;           ///< N meets every unit base; else it meets none.
};

/// For each of `starts` (offsets in `residues`, which hold A, C, G, T and N) whether it is wanted
/// and survives, when they are looked at together: the starts that are left are counted over all
/// wanted ones. Requires that the unit of each wanted start lies in the residues. An N in a unit
/// counts as A there: such a start is never a candidate, but may stand among those counted.
std::vector<bool> filter_survivors(std::string_view residues, const FilterRules& rules,
                                   const std::vector<std::ptrdiff_t>& starts,
                                   const std::vector<bool>& wanted);

}  // namespace reference
