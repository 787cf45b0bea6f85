// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/filter/candidate_filter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>

#include "imperfect/scoring.h"
#include "search/start_block.h"

namespace vorlan {
namespace {

static_assert(sizeof(Lanes) == static_cast<std::size_t>(kRegisterAlignment));

static_assert(kFilterWords == StartBlock::kWords);

// All numbers up to kFewestToLookAt were chosen by the bench: table "Tuning", rows of their names.

/// How far to look at most. Random sequence loses about two points a residue even on the best of
/// all paths, so a path is dead after about half a unit length on top of what its first edits
/// allow. With full lanes it pays to look further, for sequence that is poor in some bases.
int horizon_of_glance(int unit_length) { return 6 + unit_length; }
int horizon_of_short_sequence(int unit_length) { return 16 + unit_length; }

/// With full lanes it depends on what comes behind. Extensions of units of up to 4 are cheap, and
/// behind units of 7 and more there is the wraparound bound: for units of up to 10 the nearer
/// horizon is as far as 64 offsets show. Units of 5 and 6 have neither, so the look goes further.
constexpr int kFarBeyondUnit = 32;
constexpr int kNearBeyondUnit = 16;
int horizon_of_full_lanes(int unit_length) {
  const bool is_near = unit_length < 5 || (unit_length > 6 && unit_length <= 10);
  return unit_length + (is_near ? kNearBeyondUnit : kFarBeyondUnit);
}

/// An extension of a short unit costs little more than a step of the filter with a few starts; one
/// of a long unit so much that the filter is never too dear.
constexpr int kShortUnit = 6;
int checks_without_loss_of(int unit_length) { return unit_length <= kShortUnit ? 1 : unit_length; }
constexpr int kChecksWithoutLossOfFullLanes = 8;

/// Residues after which a path of random sequence is rarely alive (4^-10 without edits): counting
/// before that costs more than it can save.
constexpr int kFirstCheck = 10;

/// A start that gains this much forward survives without looking backward. Rare in background
/// (4^-8), and small enough to keep the floor of the backward automaton tight.
constexpr int kMaxGain = 8;

/// A glance asks for little: some starts may stay in doubt, and those that gain a little forward
/// are in doubt anyway, so that looking backward is cheap.
constexpr int kFirstCheckOfGlance = 4;
constexpr int kFewDoubts = kFilterStarts / 32;
constexpr int kMaxGainOfGlance = 3;

/// With fewer starts the doubts would not fill the lanes of one close look.
constexpr std::ptrdiff_t kFewestStartsForGlances = 3 * std::ptrdiff_t{kFilterStarts};

/// Fewer starts of a short unit are extended sooner than looked at.
constexpr std::size_t kFewestToLookAt = 8;

constexpr std::size_t kLanes = kFilterStarts;

void set_lowest_bits(std::array<std::uint64_t, kFilterWords>& words, std::size_t count) {
  constexpr auto kBits = static_cast<std::size_t>(kBitsPerWord);
  std::fill_n(words.begin(), count / kBits, ~std::uint64_t{0});
  if (count % kBits != 0) words[count / kBits] = (std::uint64_t{1} << count % kBits) - 1;
}

FilterPlan plan_of(int unit_length, int min_score, int horizon, int max_gain) {
  const Scoring scoring = Scoring::of_the_run();
  FilterPlan plan{};
  plan.unit_length = unit_length;
  plan.floor = static_cast<int>(scoring.floor(unit_length));
  // A dearer edit is as good as one that costs this much: no path can afford either.
  constexpr std::int64_t kDearest = std::int64_t{1} << 20;
  plan.penalty = static_cast<int>(std::min(-scoring.cheapest_edit(), kDearest));
  plan.min_score = min_score;
  plan.horizon = horizon;
  plan.max_gain = std::min(min_score, max_gain);
  plan.max_edits = (horizon + plan.max_gain - 1 - plan.floor) / plan.penalty + 1;
  plan.row_size = 2 * plan.max_edits + 5;
  plan.bridges_N = scoring.longest_N_run != 0;
  plan.checks_without_loss = checks_without_loss_of(unit_length);
  return plan;
}

FilterPlan plan_of_glance(int unit_length, int min_score) {
  FilterPlan plan =
      plan_of(unit_length, min_score, horizon_of_glance(unit_length), kMaxGainOfGlance);
  plan.first_check = kFirstCheckOfGlance;
  plan.few_enough_to_stop = kFewDoubts;
  return plan;
}

FilterPlan plan_of_short_sequence(int unit_length, int min_score) {
  FilterPlan plan =
      plan_of(unit_length, min_score, horizon_of_short_sequence(unit_length), kMaxGain);
  plan.first_check = kFirstCheck;
  return plan;
}

FilterPlan plan_of_full_lanes(int unit_length, int min_score) {
  FilterPlan plan = plan_of(unit_length, min_score, horizon_of_full_lanes(unit_length), kMaxGain);
  plan.first_check = kFirstCheck;
  plan.checks_without_loss += kChecksWithoutLossOfFullLanes;
  return plan;
}

}  // namespace

std::size_t CandidateFilter::margin(unsigned unit_length) {
  const unsigned filtered = std::min(unit_length, kLongestUnit);
  return filtered + 2 * (filtered + kFarBeyondUnit) + StartBlock::kStarts + 2 * kBitsPerWord;
}

CandidateFilter::CandidateFilter(const BitPlanes& planes, unsigned unit_length, int min_score,
                                 std::ptrdiff_t starts, const FilterKernel& kernel)
    : planes_(planes.words()),
      can_judge_(unit_length <= kLongestUnit && min_score > 0),
      glances_(starts >= kFewestStartsForGlances),
      kernel_(kernel) {
  if (!can_judge_) return;
  assert(planes.margin() >= margin(unit_length));
  const int length = static_cast<int>(unit_length);
  glance_ = plan_of_glance(length, min_score);
  close_look_ =
      glances_ ? plan_of_full_lanes(length, min_score) : plan_of_short_sequence(length, min_score);
}

// The close look needs more of everything than the glance.
void CandidateFilter::allocate() {
  const FilterPlan& plan = close_look_;
  const auto size = [](int lanes) { return static_cast<std::size_t>(lanes); };
  const std::size_t row = size(plan.row_size);
  const std::size_t shifted = 3 * size(filter_offsets(plan));
  const std::size_t cells = size(plan.max_edits + 1) * row;
  const std::size_t forward_gains = size(plan.max_gain + 1);
  const std::size_t backward_gains = size(std::min(plan.min_score, plan.horizon) + 1);
  const std::size_t lanes = shifted + cells + 4 * row + forward_gains + backward_gains;
  memory_ = allocate_registers(lanes * sizeof(Lanes));
  buffers_.shifted = static_cast<Lanes*>(static_cast<void*>(memory_.get()));
  buffers_.cells = buffers_.shifted + shifted;
  buffers_.mismatches = buffers_.cells + cells;
  buffers_.leaving = buffers_.mismatches + row;
  Lanes* const nothing = buffers_.leaving + 2 * row;
  std::fill_n(nothing, row, Lanes{});
  buffers_.nothing = nothing;
  buffers_.forward_gains = nothing + row;
  buffers_.backward_gains = buffers_.forward_gains + forward_gains;
}

void CandidateFilter::glance(std::ptrdiff_t first_word, std::uint64_t* candidates) {
  if (!can_judge_) return;
  assert(doubt_count_ < kLanes);
  if (memory_ == nullptr) allocate();
  if (!glances_) return kernel_.judge_block(close_look_, planes_, first_word, buffers_, candidates);
  kernel_.judge_block(glance_, planes_, first_word, buffers_, candidates);
  doubt_all(first_word, candidates);
}

void CandidateFilter::doubt_all(std::ptrdiff_t first_word, std::uint64_t* candidates) {
  for (std::size_t i = 0; i < kFilterWords; ++i) {
    const std::ptrdiff_t begin = (first_word + static_cast<std::ptrdiff_t>(i)) * kBitsPerWord;
    for (std::uint64_t left = candidates[i]; left != 0; left &= left - 1) {
      doubts_[doubt_count_++] = begin + std::countr_zero(left);
    }
    candidates[i] = 0;
  }
}

std::span<std::ptrdiff_t> CandidateFilter::take_doubts(std::size_t most) {
  assert(most <= kLanes);
  const std::size_t count = std::min(doubt_count_, most);
  const auto taken_end = doubts_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(doubts_.begin(), taken_end, survivors_.begin());
  std::copy_n(taken_end, doubt_count_ - count, doubts_.begin());
  doubt_count_ -= count;
  return {survivors_.data(), count};
}

std::span<std::ptrdiff_t> CandidateFilter::look_closely() {
  assert(doubt_count_ > 0);
  const std::size_t count = take_doubts(kLanes).size();
  const bool is_worth_it = close_look_.unit_length > kShortUnit || count >= kFewestToLookAt;
  return {survivors_.data(), is_worth_it ? keep_survivors(count) : count};
}

std::size_t CandidateFilter::keep_survivors(std::size_t count) {
  if (memory_ == nullptr) allocate();
  // The lanes that are left over look at the last start once more.
  std::fill(survivors_.begin() + count, survivors_.end(), survivors_[count - 1]);
  std::array<std::uint64_t, kFilterWords> left{};
  set_lowest_bits(left, count);
  kernel_.judge_starts(close_look_, planes_, survivors_.data(), buffers_, left.data());
  std::size_t kept = 0;
  for (std::size_t word = 0; word < kFilterWords; ++word) {
    for (std::uint64_t bits = left[word]; bits != 0; bits &= bits - 1) {
      const auto bit = static_cast<std::size_t>(std::countr_zero(bits));
      survivors_[kept++] = survivors_[word * kBitsPerWord + bit];
    }
  }
  return kept;
}

namespace {

std::vector<FilterKernel> kernels_of_this_processor() {
  std::vector<FilterKernel> kernels{{portable::judge_block, portable::judge_starts, "portable"}};
#ifdef VORLAN_X86_KERNELS
  if (runs_avx2()) {
    kernels.push_back({avx2::judge_block, avx2::judge_starts, "avx2"});
  }
  if (runs_avx512()) {
    kernels.push_back({avx512::judge_block, avx512::judge_starts, "avx512"});
  }
#endif
  return kernels;
}

}  // namespace

const std::vector<FilterKernel>& runnable_filter_kernels() {
  static const std::vector<FilterKernel> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
