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
                  const WraparoundKernel& kernel = runnable_wraparound_kernels().back());

  /// How many starts are judged in the time that one takes.
  std::size_t lanes() const { return looks_.front().lanes; }

  /// Moves those of `starts` that are not hopeless to the front, in the same order. Returns how
  /// many they are. Requires that the units of all of them lie in the sequence. Throws
  /// std::bad_alloc.
  std::size_t keep_survivors(std::span<std::ptrdiff_t> starts);

 private:
  struct Look {
    WraparoundPlan plan;
    JudgeWraparound* judge;
    std::size_t lanes;
  };

  void allocate();
  std::size_t keep_survivors(const Look& look, std::span<std::ptrdiff_t> starts);

  /// One, or two for units whose scores do not fit 8 bits: most starts gain so little that those
  /// are enough to reject them.
  std::vector<Look> looks_;
  std::size_t register_bytes_;
  RegisterMemory memory_;
};

}  // namespace vorlan
