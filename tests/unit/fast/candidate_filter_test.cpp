// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter of the imperfect search, in all its kernels, against the extension of every start by
// the slow twin.

#include "imperfect/filter/candidate_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "all_strings.h"
#include "description.h"
#include "extension_settings.h"
#include "filter_blocks.h"
#include "plain_candidate.h"
#include "random.h"
#include "random_cases.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

/// For starts that are no unit, because of an N in it.
constexpr int kNoScore = std::numeric_limits<int>::min();

/// The score that the slow twin gives the candidate at each start.
std::vector<int> scores_of_starts(std::string_view residues, const Settings& settings,
                                  std::size_t unit_length) {
  std::vector<int> scores;
  for (std::size_t start = 0; start + unit_length < residues.size(); ++start) {
    scores.push_back(holds_only_bases(residues.substr(start, unit_length))
                         ? extended_plainly(residues, settings, start, unit_length).score
                         : kNoScore);
  }
  return scores;
}

/// One sequence and one unit length, with what the slow twin makes of it.
class FilteredSequence {
  /// More than any sequence that is looked at closely at once.
  static constexpr std::ptrdiff_t kManyStarts = 1 << 20;

 public:
  FilteredSequence(std::string_view residues, const Settings& settings, unsigned unit_length)
      : residues_(residues),
        settings_(settings),
        unit_length_(unit_length),
        dna_(residues),
        planes_(dna_.at(0), residues.size(), CandidateFilter::margin(unit_length)),
        all_(all_starts(residues.size(), unit_length)) {
    reference::set_settings_of_the_product(settings);
    scores_ = scores_of_starts(residues, settings, unit_length);
  }

  const std::vector<int>& scores() const { return scores_; }

  StartBits survivors_of(StartBits starts, int min_score, const FilterKernel& kernel) const {
    StartBits at_once = left_by(starts, 0, min_score, kernel);
    const StartBits after_glances = left_by(starts, kManyStarts, min_score, kernel);
    // What must survive must survive both.
    for (std::size_t word = 0; word < starts.size(); ++word) at_once[word] &= after_glances[word];
    return at_once;
  }

  StartBits left_by(StartBits starts, std::ptrdiff_t number_of_starts, int min_score,
                    const FilterKernel& kernel) const {
    CandidateFilter filter(planes_, unit_length_, min_score, number_of_starts, kernel);
    std::vector<std::ptrdiff_t> survivors;
    const auto look_closely = [&] {
      const std::span<const std::ptrdiff_t> kept = filter.look_closely();
      survivors.insert(survivors.end(), kept.begin(), kept.end());
    };
    for (std::size_t word = 0; word < starts.size(); word += kFilterWords) {
      filter.glance(static_cast<std::ptrdiff_t>(word), starts.data() + word);
      while (filter.doubts() >= kFilterStarts) look_closely();
    }
    while (filter.doubts() > 0) look_closely();
    EXPECT_TRUE(std::is_sorted(survivors.begin(), survivors.end()));
    for (const std::ptrdiff_t start : survivors) add_start(starts, static_cast<std::size_t>(start));
    return starts;
  }

  /// Among `starts`, all that reach `min_score` must be left, and no others come in.
  void expect_accepted_survive(const StartBits& starts, int min_score,
                               const FilterKernel& kernel) const {
    const StartBits left = survivors_of(starts, min_score, kernel);
    for (std::size_t word = 0; word < left.size(); ++word) {
      ASSERT_EQ(left[word] & ~starts[word], 0U) << description(min_score);
    }
    for (std::size_t start = 0; start < scores_.size(); ++start) {
      if (scores_[start] == kNoScore || scores_[start] < min_score) continue;
      ASSERT_TRUE(has_start(left, start) || !has_start(starts, start))
          << "lost start " << start << " with score " << scores_[start] << "\n"
          << description(min_score);
    }
  }

  void expect_accepted_survive(int min_score, const FilterKernel& kernel) const {
    expect_accepted_survive(all_, min_score, kernel);
  }

  void expect_all_kernels_agree(int min_score) const {
    const std::vector<FilterKernel> kernels = runnable_filter_kernels();
    const StartBits left = survivors_of(all_, min_score, kernels.front());
    for (const FilterKernel& kernel : kernels) {
      ASSERT_EQ(survivors_of(all_, min_score, kernel), left) << description(min_score);
    }
  }

  std::size_t count_survivors(int min_score, const FilterKernel& kernel) const {
    return count_starts(survivors_of(all_, min_score, kernel));
  }

 private:
  std::string description(int min_score) const {
    return "unit length " + std::to_string(unit_length_) + ", score " + std::to_string(min_score) +
           "\n" + differential::describe(settings_) + "\n" + std::string(residues_);
  }

  std::string_view residues_;
  const Settings& settings_;
  unsigned unit_length_;
  Dna dna_;
  BitPlanes planes_;
  StartBits all_;
  std::vector<int> scores_;
};

class CandidateFilterTest : public FreshSettings {
 protected:
  const std::vector<FilterKernel> kernels_ = runnable_filter_kernels();
};

std::string random_sequence(Random& random) {
  const std::size_t length = random.per_cent(85) ? 1 + random.below(600) : 1 + random.below(1300);
  switch (random.between(0, 5)) {
    case 0:
      return differential::random_residues(random, length, "ACGT");
    case 1:
      return differential::random_residues(random, length, "AAAATTTTCG");
    case 2: {
      std::string residues = differential::random_record(random, length);
      differential::overwrite_with_Ns(random, residues, static_cast<int>(length / 12 + 1), 3);
      return residues;
    }
    default:
      return differential::random_record(random, length);
  }
}

/// The slow twin extends every start: within a budget, which the depth decides. No depth may change
/// what the filter has to keep.
Settings random_filter_settings(Random& random, unsigned unit_length, std::size_t length) {
  constexpr double kBudget = 200'000;
  Settings settings = random_unlimited_settings(random);
  if (random.per_cent(30)) settings.maximum_scorereduction = random.between(0, 30);
  settings.min_unit_length = settings.max_unit_length = unit_length;
  while (settings.maximum_recursion_depth > 1 &&
         differential::estimated_cost(settings, length) > kBudget) {
    --settings.maximum_recursion_depth;
  }
  return settings;
}

/// A score that some start has, if one is above 0: a start that only just passes.
int random_reached_score(Random& random, const std::vector<int>& scores) {
  std::vector<int> reached;
  std::copy_if(scores.begin(), scores.end(), std::back_inserter(reached),
               [](int score) { return score > 0; });
  return reached.empty() ? 1 : reached[random.below(reached.size())];
}

/// Every other start or so, as when marks are closed.
StartBits some_of(Random& random, StartBits starts) {
  for (std::uint64_t& word : starts) word &= random.next();
  return starts;
}

TEST_F(CandidateFilterTest, KeepsEveryStartThatTheSlowTwinAccepts) {
  std::size_t positive_scores = 0;
  for (int seed = 0; seed < 150 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const std::string residues = random_sequence(random);
    const auto unit_length =
        static_cast<unsigned>(random.between(1, random.per_cent(70) ? 10 : 60));
    const Settings settings = random_filter_settings(random, unit_length, residues.size());
    const FilteredSequence sequence(residues, settings, unit_length);
    const StartBits some = some_of(random, all_starts(residues.size(), unit_length));
    const int just_reached = random_reached_score(random, sequence.scores());
    for (const int min_score : {random.between(1, 40), just_reached}) {
      ASSERT_NO_FATAL_FAILURE(sequence.expect_all_kernels_agree(min_score));
      for (const FilterKernel& kernel : kernels_) {
        ASSERT_NO_FATAL_FAILURE(sequence.expect_accepted_survive(min_score, kernel));
        ASSERT_NO_FATAL_FAILURE(sequence.expect_accepted_survive(some, min_score, kernel));
      }
    }
    positive_scores += static_cast<std::size_t>(std::count_if(
        sequence.scores().begin(), sequence.scores().end(), [](int score) { return score > 0; }));
  }
  EXPECT_GT(positive_scores, 1'000U * kWorkload);
}

/// All texts and short units, at every score that a start reaches: there it only just passes. The
/// kernels take turns; that they agree is tested for itself.
class AllShortTexts : public CandidateFilterTest {
 protected:
  void expect_accepted_survive(std::string_view alphabet, std::size_t longest,
                               const Settings& settings) {
    differential::for_each_string_up_to(alphabet, longest, [&](const std::string& text) {
      for (unsigned unit_length = 1; unit_length <= 4 && unit_length < text.size(); ++unit_length) {
        const FilteredSequence sequence(text, settings, unit_length);
        std::vector<int> scores = sequence.scores();
        std::sort(scores.begin(), scores.end());
        scores.erase(std::unique(scores.begin(), scores.end()), scores.end());
        for (const int min_score : scores) {
          if (min_score < 1) continue;
          sequence.expect_accepted_survive(min_score, kernels_[tried_++ % kernels_.size()]);
        }
      }
      return !testing::Test::HasFailure();
    });
  }

  std::size_t tried_ = 0;
};

#ifdef VORLAN_FAST_PATH_REDUCED
constexpr std::size_t kShorter = 3;
#else
constexpr std::size_t kShorter = 0;
#endif

Settings cheap_edits(int prefer_longer_repeat) {
  Settings settings;
  settings.mismatch_score = settings.indel_score = -2;
  settings.maximum_recursion_depth = 3;
  settings.prefer_longer_repeat = prefer_longer_repeat;
  return settings;
}

TEST_F(AllShortTexts, OfTwoBasesKeepTheStartsThatTheSlowTwinAccepts) {
  for (const int prefer_longer_repeat : {0, 1}) {
    expect_accepted_survive("AC", 12 - kShorter, cheap_edits(prefer_longer_repeat));
  }
  EXPECT_GT(tried_, 1'000U);
}

TEST_F(AllShortTexts, OfTwoBasesAndNKeepTheStartsThatTheSlowTwinAccepts) {
  for (const int prefer_longer_repeat : {0, 1}) {
    Settings settings = cheap_edits(prefer_longer_repeat);
    expect_accepted_survive("ACN", 8 - kShorter, settings);
    settings.treat_Ns_as_missense = true;
    expect_accepted_survive("ACN", 8 - kShorter, settings);
    settings.treat_Ns_as_missense = false;
    settings.Ns_allowed_in_a_row = 0;
    expect_accepted_survive("ACN", 8 - kShorter, settings);
  }
  EXPECT_GT(tried_, 100U);
}

TEST_F(CandidateFilterTest, KeepsAcceptedStartsOfLongUnits) {
  for (unsigned unit_length = 255; unit_length <= 258; ++unit_length) {
    SCOPED_TRACE(unit_length);
    Random random(unit_length);
    Settings settings;
    settings.maximum_recursion_depth = 1;
    const std::string unit = differential::random_residues(random, unit_length, "ACGT");
    const std::string residues = differential::diverged(
        random, differential::array_of(unit, 3 * unit_length + random.below(unit_length)), 15);
    const FilteredSequence sequence(residues, settings, unit_length);
    ASSERT_GT(*std::max_element(sequence.scores().begin(), sequence.scores().end()), 0);
    const int just_reached = random_reached_score(random, sequence.scores());
    ASSERT_NO_FATAL_FAILURE(sequence.expect_all_kernels_agree(just_reached));
    ASSERT_NO_FATAL_FAILURE(sequence.expect_accepted_survive(just_reached, kernels_.back()));
  }
}

TEST_F(CandidateFilterTest, RejectsNearlyAllOfTheBackground) {
  constexpr std::size_t kLength = 10'000;
  Random random(1);
  const std::string residues = differential::random_residues(random, kLength, "ACGT");
  const Settings settings;
  for (unsigned unit_length = 2; unit_length <= 10; ++unit_length) {
    const FilteredSequence sequence(residues, settings, unit_length);
    const int min_score = reference::user_thresholds(settings, unit_length).score;
    for (const FilterKernel& kernel : kernels_) {
      EXPECT_LT(sequence.count_survivors(min_score, kernel), kLength * 3 / 100)
          << "unit length " << unit_length;
    }
  }
}

TEST_F(CandidateFilterTest, RejectsNothingWhenEveryScoreIsEnough) {
  Random random(2);
  const std::string residues = differential::random_residues(random, 1'000, "ACGT");
  const Settings settings;
  const FilteredSequence sequence(residues, settings, 3);
  for (const int min_score : {0, -1, std::numeric_limits<int>::min()}) {
    for (const FilterKernel& kernel : kernels_) {
      EXPECT_EQ(sequence.count_survivors(min_score, kernel), residues.size() - 3) << min_score;
    }
  }
}

}  // namespace
}  // namespace vorlan
