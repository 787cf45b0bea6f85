// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/candidate_filter.h"

#include <algorithm>
#include <new>

#include "imperfect/alignment_settings.h"
#include "search/start_block.h"

namespace vorlan {
namespace {

/// Of a whole register, which no container of the library guarantees.
constexpr std::align_val_t kLanesAlignment{sizeof(Lanes)};

static_assert(kFilterWords == StartBlock::kWords);

/// Beyond this the tables of the filter outgrow the cache and then the memory that a search may
/// use.
constexpr int kLongestFilteredUnit = 256;

/// How far to look at most. Random sequence loses about two points a residue even on the best of
/// all paths, so a path is dead after about half a unit length on top of what its first edits
/// allow.
int horizon_of(int unit_length) { return 16 + unit_length; }

/// An extension of a short unit costs little more than a step of the filter; one of a long unit so
/// much that the filter is never too dear.
int patience_of(int unit_length) { return unit_length <= 6 ? 1 : unit_length; }

/// Residues after which a path of random sequence is rarely alive (4^-10 without edits): counting
/// before that costs more than it can save.
constexpr int kFirstCheck = 10;

FilterPlan plan_of(int unit_length, int min_score) {
  const AlignmentSettings settings;
  FilterPlan plan{};
  plan.unit_length = unit_length;
  plan.floor = -unit_length - static_cast<int>(settings.prefer_longer_repeat);
  plan.penalty = static_cast<int>(std::min<std::int64_t>(
      -std::max(settings.mismatch_score, settings.indel_score), std::int64_t{1} << 20));
  plan.min_score = min_score;
  plan.horizon = horizon_of(unit_length);
  plan.first_check = kFirstCheck;
  plan.patience = patience_of(unit_length);
  plan.max_gain = std::min(min_score, kMaxGain);
  plan.max_edits = (plan.horizon + plan.max_gain - 1 - plan.floor) / plan.penalty + 1;
  plan.bridges_N = settings.longest_N_run != 0;
  return plan;
}

}  // namespace

std::size_t CandidateFilter::margin(unsigned unit_length) {
  const unsigned filtered = std::min<unsigned>(unit_length, kLongestFilteredUnit);
  return filtered + 2 * static_cast<unsigned>(horizon_of(static_cast<int>(filtered))) +
         StartBlock::kStarts + 2 * BitPlanes::kBitsPerWord;
}

void CandidateFilter::FreeAligned::operator()(std::byte* memory) const {
  ::operator delete[](memory, kLanesAlignment);
}

CandidateFilter::CandidateFilter(const BitPlanes& planes, unsigned unit_length, int min_score,
                                 FilterKernel* kernel)
    : planes_(planes.words()),
      can_judge_(unit_length <= kLongestFilteredUnit && min_score > 0),
      kernel_(kernel) {
  if (!can_judge_) return;
  plan_ = plan_of(static_cast<int>(unit_length), min_score);
  const auto size = [](int lanes) { return static_cast<std::size_t>(lanes); };
  const std::size_t row = size(filter_row_size(plan_));
  const std::size_t shifted = 3 * size(plan_.unit_length + 2 * plan_.horizon);
  const std::size_t cells = size(plan_.max_edits + 1) * row;
  const std::size_t forward_gains = size(plan_.max_gain + 1);
  const std::size_t backward_gains = size(std::min(plan_.min_score, plan_.horizon) + 1);
  const std::size_t lanes = shifted + cells + 3 * row + forward_gains + backward_gains;
  memory_.reset(new (kLanesAlignment) std::byte[lanes * sizeof(Lanes)]);
  buffers_.shifted = static_cast<Lanes*>(static_cast<void*>(memory_.get()));
  buffers_.cells = buffers_.shifted + shifted;
  buffers_.matches = buffers_.cells + cells;
  buffers_.mismatches = buffers_.matches + row;
  buffers_.forward_gains = buffers_.mismatches + 2 * row;
  buffers_.backward_gains = buffers_.forward_gains + forward_gains;
}

void CandidateFilter::keep_survivors(std::ptrdiff_t first_word, std::uint64_t* candidates) {
  if (can_judge_) kernel_(plan_, planes_, first_word, buffers_, candidates);
}

namespace {

std::vector<FilterKernel*> kernels_of_this_processor() {
  std::vector<FilterKernel*> kernels{portable::keep_survivors};
#ifdef VORLAN_X86_KERNELS
  if (__builtin_cpu_supports("avx2")) kernels.push_back(avx2::keep_survivors);
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")) {
    kernels.push_back(avx512::keep_survivors);
  }
#endif
  return kernels;
}

}  // namespace

const std::vector<FilterKernel*>& runnable_filter_kernels() {
  static const std::vector<FilterKernel*> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
