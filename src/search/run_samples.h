// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>

#include "search/bit_planes.h"

namespace vorlan {

/// Finds the blocks of starts in which a perfect repeat of a long unit can begin at all, without
/// looking at the others.
///
/// Idea: a perfect repeat of unit length u with score S is a run of S positions whose residue
/// equals the one u to the right (exact_filter.h). Wherever the run lies, it covers one of the
/// stretches of kSample positions that begin at every (S - kSample + 1)-th position. So only those
/// are compared; in background they differ, 1 - 4^-16 of them, and the longer the run that is asked
/// for, the fewer there are. The starts that a run leads to lie inside it or right behind it.
///
/// Why nothing is lost: a run of more than S positions consists of runs of S, each with a sample of
/// its own, and every start inside or right behind the long run is so for one of them. An N that
/// may be bridged counts as equal, as in the filter behind.
///
/// Example, with samples of 2 positions and S = 4: they begin at 0, 3, 6.. A run from 2 to 5 covers
/// the sample at 3. A run from 1 to 3 covers none: it is too short.
class RunSamples {
 public:
  /// Shorter runs are not worth it: their samples would overlap, or nearly.
  static constexpr int kShortestRun = 31;

  /// For units of `unit_length` bases that need `min_score`, in a sequence that has `starts`
  /// starts; with a score below kShortestRun every block is worth a look. Requires that `planes`
  /// outlives this and has the margin of ExactFilter.
  RunSamples(const BitPlanes& planes, std::size_t unit_length, int min_score,
             std::ptrdiff_t starts);

  /// The first block from `begin` on that may hold starts of a repeat, or the number of starts if
  /// none does. `begin` is where a block begins, and never less than before.
  std::ptrdiff_t next_block(std::ptrdiff_t begin);

 private:
  /// Long enough to be rare, short enough to leave few of them.
  static constexpr std::ptrdiff_t kSample = 16;

  bool are_equal(std::ptrdiff_t first) const;

  BitPlanes::Words planes_;
  std::ptrdiff_t unit_length_;
  std::ptrdiff_t run_length_;
  std::ptrdiff_t starts_;
  bool bridges_N_;
  std::ptrdiff_t next_sample_ = 0;
  std::ptrdiff_t end_of_hit_ = 0;  ///< One past the last start that the last equal sample leads to.
};

}  // namespace vorlan
