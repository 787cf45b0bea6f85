// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/wraparound/wraparound_bound.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <limits>
#include <new>

#include "imperfect/scoring.h"

namespace vorlan {
namespace {

constexpr std::size_t kMostLanes = 64;

/// Sequence that is not related to the unit is left after two or three units; what resembles the
/// unit a little, such as the copies of another satellite, after some ten.
/// The rows for each base: chosen by the bench, table "Tuning".
constexpr std::ptrdiff_t kMostRows = 1024;
constexpr std::ptrdiff_t kMostRowsPerBase = 32;

constexpr std::int64_t kLargestNarrow = std::numeric_limits<std::uint8_t>::max();
constexpr std::int64_t kLargestWide = std::numeric_limits<std::int16_t>::max();

/// What starts that are not related to their unit hardly ever gain. Chosen by the bench, table
/// "Tuning".
constexpr std::int64_t kWorthALook = 32;

/// A look is worth its time if it leaves less than so many of ten starts; it is tried once in so
/// many calls even if not. The bench varies both: table "Tuning".
constexpr std::size_t kOfTen = 4;
constexpr unsigned kCallsPerTry = 16;

/// With fewer starts nothing is known of a look yet; of more, those that were judged long ago count
/// half.
constexpr std::size_t kEnoughJudged = 512;
constexpr std::size_t kManyJudged = 4'096;

/// The highest score that can be asked for: above it lanes must hold what is gained until that is
/// noticed.
std::int64_t highest_min_score(std::ptrdiff_t unit_length, std::int64_t largest_lane) {
  const std::int64_t floor = Scoring::of_the_run().floor(unit_length);
  return largest_lane + floor - kWraparoundRowsPerLook;
}

}  // namespace

bool LookRecord::is_worth_it() {
  return judged_ < kEnoughJudged || kept_ * 10 < judged_ * kOfTen ||
         ++passed_over_ % kCallsPerTry == 0;
}

void LookRecord::add(std::size_t judged, std::size_t kept) {
  judged_ += judged;
  kept_ += kept;
  for (; judged_ > kManyJudged; judged_ /= 2) kept_ /= 2;
}

bool WraparoundBound::can_judge(std::ptrdiff_t unit_length, int min_score) {
  return min_score > 0 && min_score <= highest_min_score(unit_length, kLargestWide);
}

WraparoundBound::WraparoundBound(std::string_view residues, const UnitLengths& lengths,
                                 int min_score, std::ptrdiff_t group,
                                 std::span<const WraparoundKernel> kernels, LookRecords* records)
    : group_(group), kernels_(kernels), records_(records) {
  assert(group >= 1 && group <= lengths.first);
  const Scoring scoring = Scoring::of_the_run();
  const auto plan_for = [&](std::int64_t score, std::int64_t largest_lane) {
    // A path has less than the largest lane, so that an edit that costs more ends it all the same.
    const auto cost = [=](std::int64_t edit) {
      return static_cast<int>(std::min(-edit, largest_lane));
    };
    return WraparoundPlan{.seq_begin = residues.data(),
                          .seq_end = residues.data() + residues.size(),
                          .first_length = lengths.first,
                          .last_length = lengths.last,
                          .floor = static_cast<int>(scoring.floor(lengths.last)),
                          .mismatch_cost = cost(scoring.mismatch_score),
                          .indel_cost = cost(scoring.indel_score),
                          .min_score = static_cast<int>(score),
                          .longest_N_run = scoring.longest_N_run,
                          .most_rows = kMostRows + kMostRowsPerBase * lengths.last};
  };
  const std::int64_t narrow_score =
      std::min<std::int64_t>(min_score, highest_min_score(lengths.last, kLargestNarrow));
  if (narrow_score == min_score || narrow_score >= kWorthALook) {
    looks_.push_back({plan_for(narrow_score, kLargestNarrow), true});
  }
  if (narrow_score == min_score) return;
  looks_.push_back({plan_for(min_score, kLargestWide), false});
}

void WraparoundBound::allocate() {
  const WraparoundPlan& plan = looks_.front().plan;
  const auto registers = wraparound_registers(static_cast<std::size_t>(plan.first_length),
                                              static_cast<std::size_t>(plan.last_length),
                                              static_cast<std::size_t>(group_));
  memory_ = allocate_registers(registers * kernels_.back().register_bytes);
}

std::size_t WraparoundBound::keep_survivors(std::span<std::ptrdiff_t> starts) {
  if (memory_ == nullptr) allocate();
  for (const Look& look : looks_) {
    if (records_ == nullptr) {
      starts = starts.first(keep_survivors(look, starts));
      continue;
    }
    LookRecord& record = look.is_narrow ? records_->narrow : records_->wide;
    if (!record.is_worth_it()) continue;
    const std::size_t judged = starts.size();
    starts = starts.first(keep_survivors(look, starts));
    record.add(judged, starts.size());
  }
  return starts.size();
}

std::size_t WraparoundBound::keep_survivors(const Look& look, std::span<std::ptrdiff_t> starts) {
  const std::size_t most_groups = lanes(look, kernels_.back());
  std::array<StartGroup, kMostLanes> groups;
  std::array<bool, kMostLanes> can_reach{};
  std::size_t kept = 0;
  for (std::size_t next = 0; next < starts.size();) {
    const std::size_t first = next;
    std::size_t count = 0;
    for (; count < most_groups && next < starts.size(); ++count) {
      const std::ptrdiff_t begin = starts[next];
      while (next < starts.size() && starts[next] - begin < group_) ++next;
      groups[count] = {begin, starts[next - 1]};
    }
    judge(look, std::span(groups).first(count), can_reach.data());
    std::size_t judged = 0;
    for (std::size_t i = first; i < next; ++i) {
      if (starts[i] > groups[judged].last) ++judged;
      if (can_reach[judged]) starts[kept++] = starts[i];
    }
  }
  return kept;
}

// Where lanes would be left over, narrower registers take less time.
void WraparoundBound::judge(const Look& look, std::span<const StartGroup> groups, bool* can_reach) {
  const WraparoundKernel& kernel =
      *std::find_if(kernels_.begin(), kernels_.end() - 1,
                    [&](const auto& one) { return lanes(look, one) >= groups.size(); });
  const auto judge = look.is_narrow ? kernel.judge_narrow : kernel.judge_wide;
  judge(look.plan, groups.data(), groups.size(), memory_.get(), can_reach);
}

namespace {

std::vector<WraparoundKernel> kernels_of_this_processor() {
  std::vector<WraparoundKernel> kernels{portable::kWraparoundKernel};
#ifdef VORLAN_X86_KERNELS
  if (runs_avx2()) kernels.push_back(avx2::kWraparoundKernel);
  if (runs_avx512()) kernels.push_back(avx512::kWraparoundKernel);
#endif
  return kernels;
}

}  // namespace

const std::vector<WraparoundKernel>& runnable_wraparound_kernels() {
  static const std::vector<WraparoundKernel> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
