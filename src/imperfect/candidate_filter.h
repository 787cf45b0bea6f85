// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imperfect/candidate_filter_kernel.h"
#include "search/bit_planes.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<FilterKernel*>& runnable_filter_kernels();

/// Tells which start positions of one unit length cannot lead to an accepted repeat, 512 at a time.
/// It never rejects a candidate that the extension would accept; see candidate_filter_kernel.h for
/// why, and for when there is nothing to judge by.
class CandidateFilter {
 public:
  /// For units of `unit_length` bases that need `min_score`, with the penalties of the settings.
  /// Requires that the planes have a margin of `margin(unit_length)` positions and outlive this.
  CandidateFilter(const BitPlanes& planes, unsigned unit_length, int min_score,
                  FilterKernel* kernel = runnable_filter_kernels().back());

  /// How many positions outside the sequence it looks at, for units up to `unit_length`.
  static std::size_t margin(unsigned unit_length);

  /// Clears in `candidates`, kFilterWords words for the positions from `first_word` * 64 on, the
  /// starts that cannot lead to a repeat.
  void keep_survivors(std::ptrdiff_t first_word, std::uint64_t* candidates);

 private:
  struct FreeAligned {
    void operator()(std::byte* memory) const;
  };

  BitPlanes::Words planes_;
  bool can_judge_;
  FilterPlan plan_;
  FilterKernel* kernel_;
  std::unique_ptr<std::byte[], FreeAligned> memory_;
  FilterBuffers buffers_{};
};

}  // namespace vorlan
