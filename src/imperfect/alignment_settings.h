// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "config/settings.h"

namespace vorlan {

/// What the extension needs of the settings, copied once, so that inner loops read no globals.
/// Scores are 64 bits wide: penalties and the limit of the score reduction may be any 32-bit
/// number, and sums of them must not overflow.
struct AlignmentSettings {
  std::int64_t mismatch_score = global_mismatch_score;
  std::int64_t indel_score = global_indel_score;
  std::int64_t maximum_scorereduction = global_maximum_scorereduction;
  std::int64_t prefer_longer_repeat = global_prefer_longer_repeat;
  int maximum_recursion_depth = global_maximum_recursion_depth;

  /// Longest N run that is bridged; 0 when N is an ordinary residue that matches nothing.
  std::ptrdiff_t longest_N_run = global_treat_Ns_as_missense ? 0 : global_Ns_allowed_in_a_row;

  /// The settings for a sequence of so many residues. A limit of the score reduction that can never
  /// be reached there is left out, so that it does not cost what other limits cost: a repeat scores
  /// at most one point for each residue behind its first unit, and falls at most one unit below 0.
  static AlignmentSettings for_sequence(std::size_t residues) {
    AlignmentSettings settings;
    if (settings.maximum_scorereduction >= static_cast<std::int64_t>(residues)) {
      settings.maximum_scorereduction = kNoScoreLimit;
    }
    return settings;
  }

  /// Whether the best score does not enter the threshold, which makes it a constant.
  bool has_constant_threshold() const { return maximum_scorereduction == kNoScoreLimit; }

  /// The level at which the look-ahead ends. Levels are counted in 8 bits, so a depth that does not
  /// fit is never met, and only the threshold ends it: -1.
  int deepest_level() const {
    return maximum_recursion_depth <= kLargestLevel ? maximum_recursion_depth : -1;
  }
  static constexpr int kLargestLevel = 255;

  /// The score below which no edit is tried. It falls no further than the unit length below zero,
  /// so that an extension costs at most about one unit of mismatches when it leads nowhere.
  std::int64_t threshold(std::int64_t best_score, std::ptrdiff_t unit_length) const {
    return std::max<std::int64_t>(best_score - maximum_scorereduction, -unit_length) -
           prefer_longer_repeat;
  }
};

}  // namespace vorlan
