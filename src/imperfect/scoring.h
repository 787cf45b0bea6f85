// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "config/settings.h"

namespace vorlan {

/// What alignments score and how far they may fall: the settings of the extension, copied once, so
/// that inner loops read no globals. A match scores +1. Scores are 64 bits wide: penalties and the
/// limit of the score reduction may be any 32-bit number, and sums of them must not overflow.
struct Scoring {
  std::int64_t mismatch_score = 0;  ///< Negative, like `indel_score`.
  std::int64_t indel_score = 0;     ///< Of one inserted or deleted base.
  std::int64_t maximum_scorereduction = 0;
  std::int64_t prefer_longer_repeat = 0;  ///< 1: of equal scores the later state is better; or 0.
  int maximum_recursion_depth = 0;

  /// Longest N run that is bridged; 0 when N is an ordinary residue that matches nothing.
  std::ptrdiff_t longest_N_run = 0;

  /// As the settings say.
  static Scoring of_the_run() {
    return {.mismatch_score = global_mismatch_score,
            .indel_score = global_indel_score,
            .maximum_scorereduction = global_maximum_scorereduction,
            .prefer_longer_repeat = global_prefer_longer_repeat,
            .maximum_recursion_depth = global_maximum_recursion_depth,
            .longest_N_run = global_treat_Ns_as_missense ? 0 : global_Ns_allowed_in_a_row};
  }

  /// The same for a sequence of so many residues. A limit of the score reduction that can never be
  /// reached there is left out, so that it does not cost what other limits cost: a repeat scores at
  /// most one point for each residue behind its first unit, and falls at most one unit below 0.
  static Scoring for_sequence(std::size_t residues) {
    Scoring scoring = of_the_run();
    if (scoring.maximum_scorereduction >= static_cast<std::int64_t>(residues)) {
      scoring.maximum_scorereduction = kNoScoreLimit;
    }
    return scoring;
  }

  std::int64_t dearest_edit() const { return std::min(mismatch_score, indel_score); }
  std::int64_t cheapest_edit() const { return std::max(mismatch_score, indel_score); }

  /// Whether the best score does not enter the threshold, which is then the floor.
  bool has_constant_threshold() const { return maximum_scorereduction == kNoScoreLimit; }

  /// What every threshold is at least: one unit length below zero, so that an extension costs at
  /// most about one unit of mismatches when it leads nowhere.
  std::int64_t floor(std::ptrdiff_t unit_length) const {
    return -unit_length - prefer_longer_repeat;
  }

  /// An edit is tried only if the score behind it is greater than this.
  std::int64_t threshold(std::int64_t best_score, std::ptrdiff_t unit_length) const {
    return std::max(best_score - maximum_scorereduction - prefer_longer_repeat, floor(unit_length));
  }

  /// The level at which the look-ahead ends. Levels are counted in 8 bits, so a depth that does not
  /// fit is never met, and only the threshold ends it: -1.
  int deepest_level() const {
    return maximum_recursion_depth <= kLargestLevel ? maximum_recursion_depth : -1;
  }
  static constexpr int kLargestLevel = 255;
};

}  // namespace vorlan
