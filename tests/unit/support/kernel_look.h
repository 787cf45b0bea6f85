// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "imperfect/filter/candidate_filter.h"
#include "imperfect/filter/candidate_filter_kernel.h"
#include "search/bit_planes.h"
#include "support/dna.h"

namespace vorlan {

/// Adds to a plan what follows from the rest of it.
inline FilterPlan completed(FilterPlan plan) {
  plan.max_edits = (plan.horizon + plan.max_gain - 1 - plan.floor) / plan.penalty + 1;
  plan.row_size = 2 * plan.max_edits + 5;
  return plan;
}

/// Looks of the kernels of the candidate filter at one sequence, with a plan of the caller. The
/// memory of the kernels is as large as they may use, no larger, and full of other bits at first.
class KernelLook {
 public:
  using Bits = std::array<std::uint64_t, kFilterWords>;
  using Starts = std::array<std::ptrdiff_t, kFilterStarts>;

  /// `plan` must be complete; `dna` must outlive this.
  KernelLook(const Dna& dna, const FilterPlan& plan)
      : plan_(plan),
        planes_(dna.at(0), dna.residues.size,
                static_cast<std::size_t>(filter_offsets(plan)) + kFilterStarts + 2 * kBitsPerWord) {
    const auto row = static_cast<std::size_t>(plan.row_size);
    const std::size_t shifted = 3 * static_cast<std::size_t>(filter_offsets(plan));
    const std::size_t cells = row * static_cast<std::size_t>(plan.max_edits + 1);
    const auto forward = static_cast<std::size_t>(plan.max_gain) + 1;
    const auto backward = static_cast<std::size_t>(std::min(plan.min_score, plan.horizon)) + 1;
    const std::size_t bytes = (shifted + cells + 4 * row + forward + backward) * sizeof(Lanes);
    memory_.reset(new (kAlignment) std::byte[bytes]);
    std::fill_n(memory_.get(), bytes, std::byte{0x5A});
    buffers_.shifted = static_cast<Lanes*>(static_cast<void*>(memory_.get()));
    buffers_.cells = buffers_.shifted + shifted;
    buffers_.mismatches = buffers_.cells + cells;
    buffers_.leaving = buffers_.mismatches + row;
    buffers_.nothing = buffers_.leaving + 2 * row;
    std::fill_n(buffers_.nothing, row, Lanes{});
    buffers_.forward_gains = buffers_.nothing + row;
    buffers_.backward_gains = buffers_.forward_gains + forward;
  }

  /// What is left of `candidates` among the starts from `first_word` * 64 on.
  Bits judged_block(const FilterKernel& kernel, std::ptrdiff_t first_word, Bits candidates) {
    kernel.judge_block(plan_, planes_.words(), first_word, buffers_, candidates.data());
    return candidates;
  }

  /// The same for starts that lie anywhere, in order.
  Bits judged_starts(const FilterKernel& kernel, const Starts& starts, Bits candidates) {
    kernel.judge_starts(plan_, planes_.words(), starts.data(), buffers_, candidates.data());
    return candidates;
  }

 private:
  /// Of a whole register.
  static constexpr std::align_val_t kAlignment{sizeof(Lanes)};
  struct FreeAligned {
    void operator()(std::byte* memory) const { ::operator delete[](memory, kAlignment); }
  };

  FilterPlan plan_;
  BitPlanes planes_;
  std::unique_ptr<std::byte[], FreeAligned> memory_;
  FilterBuffers buffers_{};
};

}  // namespace vorlan
