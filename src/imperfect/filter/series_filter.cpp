// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/filter/series_filter.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>

#include "config/settings.h"
#include "imperfect/filter/start_filter.h"
#include "search/start_block.h"

namespace vorlan {
namespace {

static_assert(SeriesFilter::kLongestUnit <= CandidateFilter::kLongestUnit);

/// With more survivors than one for so many residues, most records hold repeats. Their marks close
/// what longer units would have to judge here. Chosen by the bench, table "Tuning".
constexpr std::size_t kFewResiduesPerSurvivor = 4;

void close(std::vector<std::uint64_t>& starts, std::size_t start) {
  starts[start / 64] &= ~(std::uint64_t{1} << start % 64);
}

// Lets the filter look closely, and opens the starts that survive.
void look_closely(StartFilter& filter, std::uint64_t* survivors) {
  for (const std::ptrdiff_t survivor : filter.look_closely()) {
    const auto start = static_cast<std::size_t>(survivor);
    survivors[start / kBitsPerWord] |= std::uint64_t{1} << start % kBitsPerWord;
  }
}

}  // namespace

void SeriesFilter::judge(const UnitLengthThresholds& min_scores) {
  shortest_unit_ = global_min_unit_length;
  longest_unit_ = static_cast<unsigned>(
      std::min<std::size_t>({global_max_unit_length, kLongestUnit, longest_record_}));
  if (shortest_unit_ > longest_unit_) return;
  const BitPlanes planes(residues_.data(), residues_.size(),
                         CandidateFilter::margin(longest_unit_));
  const auto blocks = residues_.size() / StartBlock::kStarts + 1;
  words_ = blocks * StartBlock::kWords;
  survivors_.resize((longest_unit_ - shortest_unit_ + 1) * words_ + 1);
  const std::uint64_t* const no_base = planes.words().no_base;
  starts_.resize(words_);
  std::transform(no_base, no_base + words_, starts_.begin(), std::bit_not());
  for (unsigned unit_length = 1; unit_length <= longest_unit_; ++unit_length) {
    close_last_starts(unit_length);
    if (unit_length < shortest_unit_) continue;
    const std::size_t survivors = judge(planes, unit_length, min_scores[unit_length]);
    if (survivors > residues_.size() / kFewResiduesPerSurvivor) longest_unit_ = unit_length;
  }
}

// A unit that is one base longer has one start less in each record.
void SeriesFilter::close_last_starts(unsigned unit_length) {
  std::size_t begin = 0;
  for (const std::size_t end : ends_) {
    if (end - begin >= unit_length) close(starts_, end - unit_length);
    begin = end;
  }
}

std::size_t SeriesFilter::judge(const BitPlanes& planes, unsigned unit_length, int min_score) {
  const auto residues = static_cast<std::ptrdiff_t>(residues_.size());
  StartFilter filter(residues_, planes, unit_length, min_score, residues, {});
  std::uint64_t* const survivors = survivors_.data() + (unit_length - shortest_unit_) * words_;
  std::copy(starts_.begin(), starts_.end(), survivors);
  for (std::size_t word = 0; word < words_; word += StartBlock::kWords) {
    filter.glance(static_cast<std::ptrdiff_t>(word), survivors + word);
    while (filter.doubts() >= filter.enough_doubts()) look_closely(filter, survivors);
  }
  while (filter.doubts() != 0) look_closely(filter, survivors);
  return std::transform_reduce(survivors, survivors + words_, std::size_t{0}, std::plus(),
                               [](std::uint64_t word) { return std::popcount(word); });
}

}  // namespace vorlan
