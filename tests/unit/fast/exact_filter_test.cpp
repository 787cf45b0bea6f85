// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter of the exact search against the slow twin of that search.

#include "search/exact_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "description.h"
#include "extension_settings.h"
#include "filter_blocks.h"
#include "plain_candidate.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

constexpr int kLongestRunAskedFor = 256;

/// The starts from which the exact extension reaches `min_score`. Repeats that the user would not
/// see close nothing, so the slow twin finds each of them again from every start; only for unit
/// length 1 it goes on behind a repeat, where all bases are starts of the same one.
StartBits accepted_starts(std::string_view residues, Settings settings, unsigned unit_length,
                          int min_score) {
  settings.min_unit_length = settings.max_unit_length = unit_length;
  settings.min_score = settings.min_score_a = min_score;
  settings.min_score_bx = 0;
  settings.max_perfection = -1;
  StartBits accepted = no_starts(residues.size());
  for (const reference::Repeat& repeat : reference::exact_search(residues, settings)) {
    if (unit_length > 1) add_start(accepted, repeat.unit_begin);
    for (std::size_t start = repeat.begin; unit_length == 1 && start < repeat.end; ++start) {
      if (residues[start] != 'N' && start + 1 < residues.size()) add_start(accepted, start);
    }
  }
  return accepted;
}

/// Whether the searches can try the start at all.
bool may_be_tried(std::string_view residues, std::size_t start, unsigned unit_length) {
  const std::string_view unit = residues.substr(start, unit_length);
  const bool is_homopolymer = unit.find_first_not_of(unit.front()) == std::string_view::npos;
  return holds_only_bases(unit) && (unit_length == 1 || !is_homopolymer);
}

class ExactFilterTest : public FreshSettings {
 protected:
  StartBits survivors_of(std::string_view residues, unsigned unit_length, int min_score) {
    const Dna dna(residues);
    const BitPlanes planes(dna.at(0), residues.size(), ExactFilter::margin(unit_length));
    const ExactFilter filter(planes, unit_length, min_score);
    return survivors(filter, all_starts(residues.size(), unit_length));
  }

  /// Without N the filter is exact, up to the run length that it asks for.
  void expect_accepted_survive(std::string_view residues, const Settings& settings,
                               unsigned unit_length, int min_score) {
    reference::set_settings_of_the_product(settings);
    const StartBits accepted = accepted_starts(residues, settings, unit_length, min_score);
    const StartBits left = survivors_of(residues, unit_length, min_score);
    const bool is_exact = holds_only_bases(residues) && min_score <= kLongestRunAskedFor;
    for (std::size_t start = 0; start + unit_length < residues.size(); ++start) {
      if (!may_be_tried(residues, start, unit_length)) continue;
      const bool is_accepted = has_start(accepted, start);
      ASSERT_FALSE(is_accepted && !has_start(left, start))
          << "lost start " << start << " of unit length " << unit_length << " score " << min_score
          << "\n"
          << differential::describe(settings) << "\n"
          << residues;
      ASSERT_FALSE(is_exact && !is_accepted && has_start(left, start))
          << "kept start " << start << " of unit length " << unit_length << " score " << min_score
          << "\n"
          << residues;
    }
    accepted_ += count_starts(accepted);
  }

  std::size_t accepted_ = 0;
};

/// Background with one perfect array whose run of equal pairs has this length and begins at
/// `begin`.
std::string with_run(Random& random, std::size_t unit_length, std::size_t begin, std::size_t run) {
  std::string residues =
      differential::random_residues(random, begin + run + unit_length + 300, "ACGT");
  const std::string unit = differential::random_residues(random, unit_length, "ACGT");
  const std::string array = differential::array_of(unit, run + unit_length);
  std::copy(array.begin(), array.end(), residues.begin() + static_cast<std::ptrdiff_t>(begin));
  return residues;
}

TEST_F(ExactFilterTest, KeepsRunsOfEveryLengthAtBlockBoundaries) {
  constexpr std::size_t kBlock = StartBlock::kStarts;
  for (std::size_t run = 1; run <= 300; ++run) {
    SCOPED_TRACE(run);
    Random random(run);
    const std::size_t unit_length = 1 + random.below(random.per_cent(70) ? 10 : 150);
    // The run begins or ends near the boundary, or lies across it.
    const std::size_t before = random.one_of<std::size_t>({0, 1, run / 2, run, run + unit_length});
    const std::size_t begin = 2 * kBlock - std::min(before + random.below(3), 2 * kBlock);
    const std::string residues = with_run(random, unit_length, begin, run);
    for (const int less : {-1, 0, 1}) {
      const int min_score = static_cast<int>(run) - less;
      if (min_score < 1) continue;
      ASSERT_NO_FATAL_FAILURE(expect_accepted_survive(
          residues, Settings(), static_cast<unsigned>(unit_length), min_score));
    }
  }
  EXPECT_GT(accepted_, 50'000U);
}

TEST_F(ExactFilterTest, KeepsWhatTheSlowTwinFindsInAnyRecord) {
  for (int seed = 0; seed < 500 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const Settings settings = random_unlimited_settings(random);
    const std::size_t length = random.per_cent(80) ? 1 + random.below(600) : 1 + random.below(1700);
    std::string residues = differential::random_record(random, length);
    if (random.per_cent(20)) differential::overwrite_with_Ns(random, residues, 20, 3);
    const auto unit_length =
        static_cast<unsigned>(random.between(1, random.per_cent(80) ? 12 : 70));
    const int min_score = random.between(1, random.per_cent(80) ? 12 : 60);
    ASSERT_NO_FATAL_FAILURE(expect_accepted_survive(residues, settings, unit_length, min_score));
  }
  EXPECT_GT(accepted_, 5'000U);
}

TEST_F(ExactFilterTest, RejectsNearlyAllOfTheBackground) {
  Random random(1);
  const std::string residues = differential::random_residues(random, 20'000, "ACGT");
  for (unsigned unit_length = 2; unit_length <= 10; ++unit_length) {
    const int min_score = std::max(6, static_cast<int>(unit_length));
    // A run of six begins at one position of 4^6; with its followers about 8 starts belong to it.
    EXPECT_LT(count_starts(survivors_of(residues, unit_length, min_score)), 100U) << unit_length;
  }
}

TEST_F(ExactFilterTest, RejectsNothingWhenEveryScoreIsEnough) {
  Random random(2);
  const std::string residues = differential::random_record(random, 1000);
  for (const int min_score : {0, -1, -100}) {
    EXPECT_EQ(survivors_of(residues, 3, min_score), all_starts(residues.size(), 3)) << min_score;
  }
}

}  // namespace
}  // namespace vorlan
