// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The blocks that samples lead to against all runs of equal pairs, found one by one.

#include "search/run_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/settings.h"
#include "extension_settings.h"
#include "random.h"
#include "random_residues.h"
#include "search/exact_filter.h"
#include "search/start_block.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;

class RunSamplesTest : public FreshSettings {};

bool are_equal(char a, char b) {
  const bool bridges_N = !global_treat_Ns_as_missense && global_Ns_allowed_in_a_row > 0;
  if (a == 'N' || b == 'N') return bridges_N;
  return a == b;
}

/// Whether a start leads to a run that is long enough, for each start.
std::vector<bool> starts_of_runs(const std::string& text, std::size_t unit_length,
                                 std::size_t min_score) {
  const std::size_t starts = text.size() - unit_length;
  std::vector<bool> leads(starts, false);
  for (std::size_t begin = 0; begin < starts;) {
    std::size_t end = begin;
    while (end < starts && are_equal(text[end], text[end + unit_length])) ++end;
    if (end - begin >= min_score) {
      for (std::size_t i = begin; i <= end && i < starts; ++i) leads[i] = true;
    }
    begin = end + 1;
  }
  return leads;
}

/// Which blocks the scan looks at.
std::vector<bool> visited_blocks(RunSamples& samples, std::ptrdiff_t starts) {
  std::vector<bool> visited(static_cast<std::size_t>(starts / StartBlock::kStarts) + 1, false);
  for (std::ptrdiff_t begin = 0; begin < starts; begin += StartBlock::kStarts) {
    begin = samples.next_block(begin);
    if (begin == starts) break;
    EXPECT_EQ(begin % StartBlock::kStarts, 0);
    visited[static_cast<std::size_t>(begin / StartBlock::kStarts)] = true;
  }
  return visited;
}

/// Random residues in which stretches are copied one unit further on, about as long as is asked
/// for, and some N.
std::string text_with_runs(Random& random, std::size_t unit_length, int min_score) {
  std::string text = differential::random_residues(random, 500 + random.below(6000), "ACGT");
  for (std::size_t i = random.below(4); i > 0; --i) {
    const auto run = static_cast<std::size_t>(std::max(1, min_score + random.between(-2, 2)));
    if (run + unit_length >= text.size()) continue;
    const std::size_t room = text.size() - run - unit_length;
    const std::size_t begin = random.per_cent(20) ? room : random.below(room + 1);
    for (std::size_t k = begin; k < begin + run; ++k) text[k + unit_length] = text[k];
  }
  if (random.per_cent(30)) differential::overwrite_with_Ns(random, text, 3, 40);
  return text;
}

TEST_F(RunSamplesTest, LeadToEveryBlockWithAStartOfALongRun) {
  long needed = 0;
  long skipped = 0;
  for (int seed = 0; seed < 400 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    global_Ns_allowed_in_a_row = random.one_of({0, 2, 5});
    global_treat_Ns_as_missense = random.per_cent(30);
    const std::size_t unit_length = 1 + random.below(400);
    const int min_score = random.per_cent(50) ? RunSamples::kShortestRun + random.between(0, 20)
                                              : RunSamples::kShortestRun + random.between(0, 900);
    const std::string text = text_with_runs(random, unit_length, min_score);
    if (text.size() <= unit_length) continue;
    const BitPlanes planes(text.data(), text.size(), ExactFilter::margin(unit_length));
    const auto starts = static_cast<std::ptrdiff_t>(text.size() - unit_length);
    RunSamples samples(planes, unit_length, min_score, starts);
    const std::vector<bool> visited = visited_blocks(samples, starts);
    const auto leads = starts_of_runs(text, unit_length, static_cast<std::size_t>(min_score));
    for (std::size_t start = 0; start < leads.size(); ++start) {
      if (!leads[start]) continue;
      ++needed;
      ASSERT_TRUE(visited[start / static_cast<std::size_t>(StartBlock::kStarts)])
          << "start " << start << " of " << starts << ", unit length " << unit_length << ", score "
          << min_score;
    }
    skipped += std::count(visited.begin(), visited.end(), false);
  }
  EXPECT_GT(needed, 10'000);
  EXPECT_GT(skipped, 1000);
}

TEST_F(RunSamplesTest, LookAtEveryBlockWhenShortRunsAreAskedFor) {
  const std::string text(2000, 'A');
  const BitPlanes planes(text.data(), text.size(), ExactFilter::margin(7));
  for (const int min_score : {-5, 0, RunSamples::kShortestRun - 1}) {
    RunSamples samples(planes, 7, min_score, 1993);
    EXPECT_EQ(samples.next_block(0), 0);
    EXPECT_EQ(samples.next_block(512), 512);
    EXPECT_EQ(samples.next_block(1536), 1536);
  }
}

}  // namespace
}  // namespace vorlan
