// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>

#include "search/bit_planes.h"

namespace vorlan {

/// Tells which starts cannot lead to a perfect repeat with enough score, 512 at a time.
///
/// Idea: a perfect repeat of unit length u is a run of positions whose residue equals the one u to
/// the right; its score is the length of that run. A start inside the run, or right behind it,
/// leads to the repeat. So only starts in or right behind a run of at least the minimum score are
/// worth an extension. An N that may be bridged counts as equal: that makes runs longer, never
/// shorter.
///
/// Example, u = 2, minimum score 4: GACACACT has equal pairs at 1 to 4, a run of 4: starts 1 to 5
/// are left. GACACATT has a run of 3 only, at 1 to 3: no start is left.
class ExactFilter {
 public:
  /// For units of `unit_length` bases that need `min_score`; one of 0 or less rejects nothing.
  /// Requires that `planes` outlives this and has a margin of `margin(unit_length)`.
  ExactFilter(const BitPlanes& planes, std::size_t unit_length, int min_score);

  /// How many positions outside the sequence it looks at.
  static std::size_t margin(std::size_t unit_length);

  /// Clears in `starts`, StartBlock::kWords words from `first_word` of the planes on, the starts
  /// that cannot lead to a repeat.
  void keep_survivors(std::ptrdiff_t first_word, std::uint64_t* starts) const;

 private:
  std::uint64_t equal_pairs(std::ptrdiff_t word) const;

  BitPlanes::Words planes_;
  std::ptrdiff_t unit_length_;
  std::size_t run_length_;
  bool bridges_N_;
};

}  // namespace vorlan
