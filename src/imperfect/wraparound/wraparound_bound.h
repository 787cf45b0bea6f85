// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imperfect/vector_level.h"
#include "imperfect/wraparound/wraparound_kernel.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<WraparoundKernel>& runnable_wraparound_kernels();

/// Tells which candidates of one unit length cannot reach the least score, whatever way their
/// extension takes. It never rejects one that the extension would accept; see wraparound_kernel.h
/// for why.
class WraparoundBound {
 public:
  /// Whether there is anything to judge by: no start is hopeless where no score is asked for, and
  /// scores must fit the lanes.
  static bool can_judge(std::ptrdiff_t unit_length, int min_score);

  /// For units of `unit_length` bases in the sequence, which must outlive this, with the penalties
  /// of the settings. Requires that it can judge.
  WraparoundBound(const char* seq_begin, const char* seq_end, std::ptrdiff_t unit_length,
                  int min_score,
                  std::span<const WraparoundKernel> kernels = runnable_wraparound_kernels());

  /// Moves those of `starts` that are not hopeless to the front, in the same order. Returns how
  /// many they are. Starts less than `group` bases apart are judged together: that is faster where
  /// most are hopeless, and leaves more. Requires rising order, that the units of all starts lie in
  /// the sequence, and 1 <= `group` <= unit length. Throws std::bad_alloc.
  std::size_t keep_survivors(std::span<std::ptrdiff_t> starts, std::ptrdiff_t group = 1);

 private:
  struct Look {
    WraparoundPlan plan;
    bool is_narrow;
  };

  static std::size_t lanes(const Look& look, const WraparoundKernel& kernel) {
    return kernel.register_bytes / (look.is_narrow ? sizeof(std::uint8_t) : sizeof(std::int16_t));
  }

  void allocate();
  std::size_t keep_survivors(const Look& look, std::span<std::ptrdiff_t> starts,
                             std::ptrdiff_t group);
  void judge(const Look& look, std::span<const StartGroup> groups, bool* can_reach);

  /// One, or two for units whose scores do not fit 8 bits: most starts gain so little that those
  /// are enough to reject them.
  std::vector<Look> looks_;
  std::span<const WraparoundKernel> kernels_;  ///< The narrowest registers first.
  RegisterMemory memory_;
};

}  // namespace vorlan
