// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/run_samples.h"

#include <algorithm>

#include "config/settings.h"
#include "search/start_block.h"

namespace vorlan {

RunSamples::RunSamples(const BitPlanes& planes, std::size_t unit_length, int min_score,
                       std::ptrdiff_t starts)
    : planes_(planes.words()),
      unit_length_(static_cast<std::ptrdiff_t>(unit_length)),
      run_length_(min_score),
      starts_(starts),
      bridges_N_(!global_treat_Ns_as_missense && global_Ns_allowed_in_a_row > 0),
      end_of_hit_(min_score < kShortestRun ? starts : 0) {}

std::ptrdiff_t RunSamples::next_block(std::ptrdiff_t begin) {
  while (begin >= end_of_hit_) {
    // Equal pairs lie at starts: the residue to the right must be in the sequence as well.
    if (next_sample_ + kSample > starts_) return starts_;
    const std::ptrdiff_t sample = next_sample_;
    next_sample_ += run_length_ - kSample + 1;
    if (!are_equal(sample)) continue;
    end_of_hit_ = std::min(sample + run_length_ + 1, starts_);
    const std::ptrdiff_t first = std::max(sample + kSample - run_length_, std::ptrdiff_t{0});
    begin = std::max(begin, first - first % StartBlock::kStarts);
  }
  return begin;
}

bool RunSamples::are_equal(std::ptrdiff_t first) const {
  constexpr std::uint64_t kAll = (std::uint64_t{1} << kSample) - 1;
  const std::uint64_t equal = BitPlanes::equal_residues(
      BitPlanes::read(planes_, first), BitPlanes::read(planes_, first + unit_length_), bridges_N_);
  return (equal & kAll) == kAll;
}

}  // namespace vorlan
