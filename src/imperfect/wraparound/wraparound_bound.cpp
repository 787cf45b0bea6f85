// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/wraparound/wraparound_bound.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "imperfect/alignment_settings.h"

namespace vorlan {
namespace {

constexpr std::align_val_t kRegisterAlignment{64};

constexpr std::size_t kMostLanes = 64;

/// Sequence that is not related to the unit is left after two or three units; what resembles the
/// unit a little, such as the copies of another satellite, after some ten.
constexpr std::ptrdiff_t kMostRows = 1024;
constexpr std::ptrdiff_t kMostRowsPerBase = 32;

/// Scores above the floor that lanes must hold: up to the least score, and what is gained until it
/// is noticed.
std::int64_t highest_lane(std::ptrdiff_t unit_length, int min_score) {
  const std::int64_t floor = -unit_length - AlignmentSettings{}.prefer_longer_repeat;
  return min_score - floor + kWraparoundRowsPerLook;
}

constexpr std::int64_t kLargestNarrow = std::numeric_limits<std::uint8_t>::max();
constexpr std::int64_t kLargestWide = std::numeric_limits<std::int16_t>::max();

}  // namespace

bool WraparoundBound::can_judge(std::ptrdiff_t unit_length, int min_score) {
  return min_score > 0 && highest_lane(unit_length, min_score) <= kLargestWide;
}

void WraparoundBound::FreeAligned::operator()(std::byte* memory) const {
  ::operator delete[](memory, kRegisterAlignment);
}

WraparoundBound::WraparoundBound(const char* seq_begin, const char* seq_end,
                                 std::ptrdiff_t unit_length, int min_score,
                                 const WraparoundKernel& kernel) {
  const AlignmentSettings settings;
  const bool is_narrow = highest_lane(unit_length, min_score) <= kLargestNarrow;
  // A path has less than the largest lane, so that an edit that costs more ends it all the same.
  const auto cost = [&](std::int64_t score) {
    return static_cast<int>(std::min(-score, is_narrow ? kLargestNarrow : kLargestWide));
  };
  plan_ = {.seq_begin = seq_begin,
           .seq_end = seq_end,
           .unit_length = unit_length,
           .floor = static_cast<int>(-unit_length - settings.prefer_longer_repeat),
           .mismatch_cost = cost(settings.mismatch_score),
           .indel_cost = cost(settings.indel_score),
           .min_score = min_score,
           .longest_N_run = settings.longest_N_run,
           .most_rows = kMostRows + kMostRowsPerBase * unit_length};
  judge_ = is_narrow ? kernel.judge_narrow : kernel.judge_wide;
  lanes_ = kernel.register_bytes / (is_narrow ? sizeof(std::uint8_t) : sizeof(std::int16_t));
  register_bytes_ = kernel.register_bytes;
}

void WraparoundBound::allocate() {
  const auto registers = wraparound_registers(static_cast<std::size_t>(plan_.unit_length));
  memory_.reset(new (kRegisterAlignment) std::byte[registers * register_bytes_]);
}

std::size_t WraparoundBound::keep_survivors(std::span<std::ptrdiff_t> starts) {
  if (memory_ == nullptr) allocate();
  std::array<bool, kMostLanes> can_reach{};
  std::size_t kept = 0;
  for (std::size_t first = 0; first < starts.size(); first += lanes_) {
    const auto batch = starts.subspan(first, std::min(lanes_, starts.size() - first));
    judge_(plan_, batch.data(), batch.size(), memory_.get(), can_reach.data());
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (can_reach[i]) starts[kept++] = batch[i];
    }
  }
  return kept;
}

namespace {

std::vector<WraparoundKernel> kernels_of_this_processor() {
  std::vector<WraparoundKernel> kernels{portable::kWraparoundKernel};
#ifdef VORLAN_X86_KERNELS
  if (!__builtin_cpu_supports("bmi2")) return kernels;
  if (__builtin_cpu_supports("avx2")) kernels.push_back(avx2::kWraparoundKernel);
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")) {
    kernels.push_back(avx512::kWraparoundKernel);
  }
#endif
  return kernels;
}

}  // namespace

const std::vector<WraparoundKernel>& runnable_wraparound_kernels() {
  static const std::vector<WraparoundKernel> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
