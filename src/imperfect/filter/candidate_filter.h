// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "imperfect/filter/candidate_filter_kernel.h"
#include "imperfect/vector_level.h"
#include "search/bit_planes.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<FilterKernel>& runnable_filter_kernels();

/// Tells which start positions of one unit length cannot lead to an accepted repeat. It never
/// rejects a candidate that the extension would accept; see candidate_filter_kernel.h for why, and
/// for when there is nothing to judge by.
///
/// It looks twice. A glance over a few residues rejects some nine in ten starts, a block at a time.
/// Those that are in doubt are collected over several blocks, so that they fill the lanes again,
/// and then looked at closely. A sequence too short for that is looked at closely at once.
class CandidateFilter {
 public:
  /// Starts of longer units all survive: the tables would outgrow the cache and then the memory
  /// that a search may use.
  static constexpr unsigned kLongestUnit = 256;

  /// For units of `unit_length` bases that need `min_score`, with the penalties of the settings.
  /// `starts` is how many starts the sequence has, which matters only for speed. Requires that the
  /// planes have a margin of `margin(unit_length)` positions and outlive this.
  CandidateFilter(const BitPlanes& planes, unsigned unit_length, int min_score,
                  std::ptrdiff_t starts,
                  const FilterKernel& kernel = runnable_filter_kernels().back());

  /// How many positions outside the sequence it looks at, for units up to `unit_length`.
  static std::size_t margin(unsigned unit_length);

  /// Glances first also in a short sequence, for a close look that needs few lanes. Returns whether
  /// it can.
  bool glance_always() {
    glances_ = can_judge_;
    return glances_;
  }

  /// How many edits a path can afford as far as a close look goes, whose cost grows with the square
  /// of that; the largest number when it cannot judge.
  int most_edits() const {
    return can_judge_ ? close_look_.max_edits : std::numeric_limits<int>::max();
  }

  /// Glances at a block, from left to right: takes starts out of `candidates`, kFilterWords words
  /// for the positions from `first_word` * 64 on. Those in doubt are kept for `look_closely`. What
  /// stays survives. Requires that less than kFilterStarts are in doubt.
  void glance(std::ptrdiff_t first_word, std::uint64_t* candidates);

  /// Whether there is anything to judge by; if not, all starts survive.
  bool can_judge() const { return can_judge_; }

  /// Adds a start that is in doubt for other reasons, from left to right. Requires less than
  /// 2 * kFilterStarts doubts.
  void doubt(std::ptrdiff_t start) {
    assert(doubt_count_ < doubts_.size());
    doubts_[doubt_count_++] = start;
  }

  /// How many starts are in doubt, and the first of them.
  std::size_t doubts() const { return doubt_count_; }
  std::ptrdiff_t first_doubt() const { return doubts_[0]; }

  /// Looks closely at the first kFilterStarts starts in doubt, or all when there are fewer. Returns
  /// those that survive, in order; valid until the next call. Requires that some are in doubt.
  std::span<std::ptrdiff_t> look_closely();

  /// Instead of a glance at a block: all its candidates are in doubt.
  void doubt_all(std::ptrdiff_t first_word, std::uint64_t* candidates);

  /// Instead of a close look: returns the first starts in doubt, `most` of them or all when there
  /// are fewer. Requires that `most` is no more than kFilterStarts.
  std::span<std::ptrdiff_t> take_doubts(std::size_t most);

 private:
  void allocate();
  /// Keeps of the first `count` starts in `survivors_` those that survive; returns how many.
  std::size_t keep_survivors(std::size_t count);

  BitPlanes::Words planes_;
  bool can_judge_;
  bool glances_;
  FilterPlan glance_;
  FilterPlan close_look_;
  FilterKernel kernel_;
  RegisterMemory memory_;
  FilterBuffers buffers_{};
  /// Less than kFilterStarts when a block is added.
  std::array<std::ptrdiff_t, 2 * std::size_t{kFilterStarts}> doubts_;
  std::size_t doubt_count_ = 0;
  std::array<std::ptrdiff_t, kFilterStarts> survivors_;
};

}  // namespace vorlan
