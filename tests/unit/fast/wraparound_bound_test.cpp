// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The wraparound bound, in all its kernels, against its definition and against the extension of
// the slow twin.

#include "imperfect/wraparound/wraparound_bound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "all_strings.h"
#include "description.h"
#include "extension_settings.h"
#include "plain_candidate.h"
#include "plain_wraparound.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using differential::random_residues;
using reference::Settings;

using Starts = std::vector<std::ptrdiff_t>;

/// One sequence, and one unit length or several in a row.
class BoundedSequence {
 public:
  BoundedSequence(std::string residues, const Settings& settings, std::size_t unit_length,
                  std::size_t more_lengths = 0)
      : residues_(std::move(residues)),
        settings_(settings),
        first_length_(unit_length),
        last_length_(unit_length + more_lengths),
        dna_(residues_) {
    reference::set_settings_of_the_product(settings);
    for (std::size_t start = 0; start + last_length_ < residues_.size(); ++start) {
      if (is_unit(start, first_length_)) starts_.push_back(static_cast<std::ptrdiff_t>(start));
    }
  }

  /// All that can be units, or those that are left by `thin_out`.
  const Starts& starts() const { return starts_; }

  void thin_out(Random& random, std::size_t most) {
    while (starts_.size() > most) {
      starts_.erase(starts_.begin() + static_cast<std::ptrdiff_t>(random.below(starts_.size())));
    }
  }

  /// Of each start, the bound of all that are judged together with it.
  std::vector<std::int64_t> bounds(std::ptrdiff_t group) const {
    std::vector<std::int64_t> bounds;
    while (bounds.size() < starts_.size()) {
      const auto first = starts_.begin() + static_cast<std::ptrdiff_t>(bounds.size());
      const auto end = std::lower_bound(first, starts_.end(), *first + group);
      const std::int64_t bound = plain_wraparound_bound(
          residues_, settings_,
          {static_cast<std::size_t>(*first), static_cast<std::size_t>(*(end - 1)), first_length_,
           last_length_});
      bounds.insert(bounds.end(), static_cast<std::size_t>(end - first), bound);
    }
    return bounds;
  }

  std::ptrdiff_t largest_group() const { return static_cast<std::ptrdiff_t>(first_length_); }

  /// The best that the extension reaches with one of the unit lengths.
  int score(std::ptrdiff_t first_residue) const {
    const auto start = static_cast<std::size_t>(first_residue);
    int best = std::numeric_limits<int>::min();
    for (std::size_t length = first_length_; length <= last_length_; ++length) {
      if (!is_unit(start, length)) continue;
      best = std::max(best, extended_plainly(residues_, settings_, start, length).score);
    }
    return best;
  }

  Starts survivors(int min_score, std::span<const WraparoundKernel> kernels,
                   std::ptrdiff_t group = 1) const {
    const UnitLengths lengths{static_cast<std::ptrdiff_t>(first_length_),
                              static_cast<std::ptrdiff_t>(last_length_)};
    WraparoundBound bound(dna_.residues.view(), lengths, min_score, group, kernels);
    Starts starts = starts_;
    starts.resize(bound.keep_survivors(starts));
    return starts;
  }

  /// What every kernel keeps, and all of them together, must be what the definition asks for.
  void expect_definition(const std::vector<std::int64_t>& bounds, int min_score,
                         std::ptrdiff_t group) const {
    Starts expected;
    for (std::size_t i = 0; i < starts_.size(); ++i) {
      if (bounds[i] >= min_score) expected.push_back(starts_[i]);
    }
    for (const WraparoundKernel& kernel : runnable_wraparound_kernels()) {
      ASSERT_EQ(survivors(min_score, {&kernel, 1}, group), expected)
          << "groups of " << group << ", " << description(min_score);
    }
    ASSERT_EQ(survivors(min_score, runnable_wraparound_kernels(), group), expected);
  }

  std::string description(int min_score) const {
    return "unit lengths " + std::to_string(first_length_) + " to " + std::to_string(last_length_) +
           ", score " + std::to_string(min_score) + "\n" + differential::describe(settings_) +
           "\n" + residues_;
  }

 private:
  bool is_unit(std::size_t start, std::size_t length) const {
    return holds_only_bases(std::string_view(residues_).substr(start, length));
  }

  std::string residues_;
  const Settings& settings_;
  std::size_t first_length_;
  std::size_t last_length_;
  Dna dna_;
  Starts starts_;
};

class WraparoundBoundTest : public FreshSettings {
 protected:
  /// At every bound and just above it, where the starts that have it are rejected.
  void expect_definition_at_all_bounds(const BoundedSequence& sequence, std::ptrdiff_t group = 1) {
    const std::vector<std::int64_t> bounds = sequence.bounds(group);
    std::set<int> min_scores;
    for (const std::int64_t bound : bounds) {
      min_scores.insert({static_cast<int>(bound), static_cast<int>(bound) + 1});
    }
    for (const int min_score : min_scores) {
      if (min_score < 1) continue;
      ASSERT_NO_FATAL_FAILURE(sequence.expect_definition(bounds, min_score, group));
      ++tried_;
    }
  }

  /// One by one, and in groups of several sizes.
  void expect_definition_in_groups(const BoundedSequence& sequence) {
    const std::ptrdiff_t largest = sequence.largest_group();
    for (const std::ptrdiff_t group : std::set<std::ptrdiff_t>{1, (largest + 2) / 3, largest}) {
      ASSERT_NO_FATAL_FAILURE(expect_definition_at_all_bounds(sequence, group));
    }
  }

  /// Whatever the slow twin reaches must be within reach: at the score that a start has, it
  /// survives. Counts the starts that gain something.
  void expect_scores_within_reach(const BoundedSequence& sequence) {
    std::vector<int> scores;
    for (const std::ptrdiff_t start : sequence.starts()) scores.push_back(sequence.score(start));
    for (const int min_score : std::set<int>(scores.begin(), scores.end())) {
      if (min_score < 1) continue;
      const auto kernels = runnable_wraparound_kernels();
      const std::ptrdiff_t group = tried_ % 2 == 0 ? 1 : sequence.largest_group();
      const WraparoundKernel& kernel = kernels[tried_++ / 2 % kernels.size()];
      const Starts kept = sequence.survivors(min_score, {&kernel, 1}, group);
      rejected_ += sequence.starts().size() - kept.size();
      for (std::size_t i = 0; i < scores.size(); ++i) {
        if (scores[i] < min_score) continue;
        ++accepted_;
        ASSERT_TRUE(std::binary_search(kept.begin(), kept.end(), sequence.starts()[i]))
            << "lost start " << sequence.starts()[i] << "\n"
            << sequence.description(min_score);
      }
    }
  }

  std::size_t tried_ = 0;
  std::size_t accepted_ = 0;
  std::size_t rejected_ = 0;
};

#ifdef VORLAN_FAST_PATH_REDUCED
constexpr std::size_t kShorter = 3;
#else
constexpr std::size_t kShorter = 0;
#endif

Settings cheap_edits(int mismatch_score, int indel_score) {
  Settings settings;
  settings.mismatch_score = mismatch_score;
  settings.indel_score = indel_score;
  settings.maximum_recursion_depth = 3;
  return settings;
}

TEST_F(WraparoundBoundTest, IsWhatItsDefinitionSaysForAllShortTexts) {
  for (const Settings& settings : {cheap_edits(-2, -2), cheap_edits(-3, -2), cheap_edits(-2, -4)}) {
    differential::for_each_string_up_to("AC", 10 - kShorter, [&](const std::string& text) {
      for (std::size_t unit_length = 1; unit_length <= 4 && unit_length < text.size();
           ++unit_length) {
        expect_definition_in_groups({text, settings, unit_length});
      }
      return !HasFailure();
    });
  }
  EXPECT_GT(tried_, 1'000U);
}

TEST_F(WraparoundBoundTest, IsWhatItsDefinitionSaysForSeveralUnitLengthsInAllShortTexts) {
  for (const Settings& settings : {cheap_edits(-2, -2), cheap_edits(-2, -1), cheap_edits(-3, -2)}) {
    differential::for_each_string_up_to("AC", 9 - kShorter, [&](const std::string& text) {
      for (std::size_t unit_length = 1; unit_length <= 3; ++unit_length) {
        for (std::size_t more = 1; more <= 3 && unit_length + more < text.size(); ++more) {
          expect_definition_in_groups({text, settings, unit_length, more});
        }
      }
      return !HasFailure();
    });
  }
  EXPECT_GT(tried_, 1'000U);
}

TEST_F(WraparoundBoundTest, IsWhatItsDefinitionSaysForAllShortTextsWithN) {
  for (const int allowed : {0, 1, 2}) {
    Settings settings = cheap_edits(-2, -2);
    settings.Ns_allowed_in_a_row = allowed;
    settings.prefer_longer_repeat = allowed == 1 ? 0 : 1;
    differential::for_each_string_up_to("ACN", 8 - kShorter, [&](const std::string& text) {
      for (std::size_t unit_length = 1; unit_length <= 3 && unit_length < text.size();
           ++unit_length) {
        expect_definition_in_groups({text, settings, unit_length});
        if (text.size() > unit_length + 2) {
          expect_definition_in_groups({text, settings, unit_length, 2});
        }
      }
      return !HasFailure();
    });
  }
  EXPECT_GT(tried_, 1'000U);
}

TEST_F(WraparoundBoundTest, IsNeverBelowTheScoreOfAShortText) {
  for (const int prefer_longer_repeat : {0, 1}) {
    Settings settings = cheap_edits(-2, -2);
    settings.prefer_longer_repeat = prefer_longer_repeat;
    differential::for_each_string_up_to("AC", 11 - kShorter, [&](const std::string& text) {
      for (std::size_t unit_length = 1; unit_length <= 4 && unit_length < text.size();
           ++unit_length) {
        expect_scores_within_reach({text, settings, unit_length});
        if (text.size() > unit_length + 1) {
          expect_scores_within_reach({text, settings, unit_length, 1});
        }
      }
      return !HasFailure();
    });
  }
  EXPECT_GT(accepted_, 1'000U);
  EXPECT_GT(rejected_, 1'000U);
}

Settings random_bound_settings(Random& random) {
  Settings settings = random_unlimited_settings(random);
  if (random.per_cent(40)) settings.mismatch_score = settings.indel_score = random.between(-3, -2);
  if (random.per_cent(5)) settings.mismatch_score = std::numeric_limits<int>::min();
  if (random.per_cent(5)) settings.indel_score = -300;
  return settings;
}

std::string background(Random& random, std::size_t most) {
  return random_residues(random, random.below(most), random.per_cent(60) ? "ACGT" : "AAACTTTG");
}

/// Of those that are judged together with one: none, a few, or as many as a search takes or more.
std::size_t random_more_lengths(Random& random, std::size_t unit_length) {
  return random.per_cent(40) ? 0 : random.below(unit_length / 4 + 3);
}

/// Copies of one unit that differ, with junk around them and between some of them.
std::string planted_repeat(Random& random, std::size_t unit_length) {
  const std::string unit =
      random_residues(random, unit_length, random.per_cent(70) ? "ACGT" : "AC");
  std::string residues = background(random, 2 * unit_length + 10);
  const int divergence = random.one_of({0, 20, 60, 100, 160});
  for (int copies = random.one_of({1, 2, 2, 3, 3, 6}); copies > 0; --copies) {
    // Begins and ends anywhere in the unit, so that wraps fall into edits too.
    const std::size_t length = unit_length + random.below(unit_length);
    residues += differential::diverged(random, differential::array_of(unit, length), divergence);
    if (random.per_cent(25)) residues += background(random, unit_length / 4 + 2);
  }
  residues += background(random, 2 * unit_length + 10);
  if (random.per_cent(25)) {
    differential::overwrite_with_Ns(random, residues, 1 + static_cast<int>(random.below(4)), 3);
  }
  return residues;
}

TEST_F(WraparoundBoundTest, IsWhatItsDefinitionSaysForPlantedRepeats) {
  for (std::uint64_t seed = 0; seed < 25 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const auto unit_length = static_cast<std::size_t>(random.between(1, 70));
    const Settings settings = random_bound_settings(random);
    BoundedSequence sequence(planted_repeat(random, unit_length), settings, unit_length,
                             random_more_lengths(random, unit_length));
    sequence.thin_out(random, 1 + random.below(100));
    ASSERT_NO_FATAL_FAILURE(expect_definition_in_groups(sequence));
  }
  EXPECT_GT(tried_, 50U * kWorkload);
}

// Scores up to which lanes of 8 bits suffice, and beyond.
TEST_F(WraparoundBoundTest, IsWhatItsDefinitionSaysForLongUnits) {
  for (const std::size_t unit_length : {110U, 119U, 123U, 124U, 125U, 126U, 128U, 200U, 256U}) {
    for (std::uint64_t seed = 0; seed < 2; ++seed) {
      SCOPED_TRACE(unit_length);
      Random random(1000 * unit_length + seed);
      const Settings settings = random_bound_settings(random);
      BoundedSequence sequence(planted_repeat(random, unit_length), settings, unit_length,
                               seed * 3);
      sequence.thin_out(random, 12);
      ASSERT_NO_FATAL_FAILURE(expect_definition_in_groups(sequence));
    }
  }
  EXPECT_GT(tried_, 50U);
}

TEST_F(WraparoundBoundTest, IsNeverBelowTheScoreOfAPlantedRepeat) {
  for (std::uint64_t seed = 0; seed < 60 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const auto unit_length =
        static_cast<std::size_t>(random.between(1, random.per_cent(70) ? 12 : 90));
    Settings settings = random_bound_settings(random);
    settings.maximum_recursion_depth = random.between(1, 2);
    if (random.per_cent(30)) settings.maximum_scorereduction = random.between(0, 60);
    BoundedSequence sequence(planted_repeat(random, unit_length), settings, unit_length,
                             random_more_lengths(random, unit_length));
    sequence.thin_out(random, 40);
    ASSERT_NO_FATAL_FAILURE(expect_scores_within_reach(sequence));
  }
  EXPECT_GT(accepted_, 1'000U * kWorkload);
  EXPECT_GT(rejected_, 1'000U * kWorkload);
}

TEST_F(WraparoundBoundTest, IsNeverBelowThatOfACandidateOfTheGroup) {
  std::size_t higher = 0;
  for (std::uint64_t seed = 0; seed < 60 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const auto unit_length = static_cast<std::size_t>(random.between(4, 20));
    const std::size_t more = random.below(3);
    const Settings settings = random_bound_settings(random);
    const std::string residues = planted_repeat(random, unit_length);
    const BoundedSequence sequence(residues, settings, unit_length, more);
    const std::vector<std::int64_t> together = sequence.bounds(sequence.largest_group());
    for (std::size_t i = 0; i < together.size(); ++i) {
      const auto start = static_cast<std::size_t>(sequence.starts()[i]);
      for (std::size_t length = unit_length; length <= unit_length + more; ++length) {
        if (!holds_only_bases(std::string_view(residues).substr(start, length))) continue;
        const std::int64_t alone = plain_wraparound_bound(residues, settings, start, length);
        ASSERT_GE(together[i], alone) << "start " << start << ", unit length " << length;
        if (together[i] > alone) ++higher;
      }
    }
  }
  EXPECT_GT(higher, 100U * kWorkload);
}

/// Whether the first start is left when `min_score` is asked for.
bool is_left(const std::string& residues, const Settings& settings, std::size_t unit_length,
             int min_score, const WraparoundKernel& kernel) {
  const Starts kept =
      BoundedSequence(residues, settings, unit_length).survivors(min_score, {&kernel, 1});
  return !kept.empty() && kept.front() == 0;
}

// Two matches and a mismatch for -2: the score of AAC at copies of AAG goes from 0 to 2 and back,
// whatever the length. With that few copies it is seen that 3 is never reached.
TEST_F(WraparoundBoundTest, LeavesToTheExtensionWhatIsUndecidedForLong) {
  const Settings settings = cheap_edits(-2, -9);
  for (const WraparoundKernel& kernel : runnable_wraparound_kernels()) {
    EXPECT_FALSE(is_left("AAC" + repeated("AAG", 300), settings, 3, 3, kernel));
    EXPECT_TRUE(is_left("AAC" + repeated("AAG", 300), settings, 3, 2, kernel));
    EXPECT_TRUE(is_left("AAC" + repeated("AAG", 600), settings, 3, 3, kernel));
  }
}

TEST_F(WraparoundBoundTest, CannotJudgeWhereNoScoreIsAskedForOrScoresDoNotFit) {
  reference::set_settings_of_the_product({});
  EXPECT_FALSE(WraparoundBound::can_judge(10, 0));
  EXPECT_FALSE(WraparoundBound::can_judge(10, -5));
  EXPECT_TRUE(WraparoundBound::can_judge(10, 1));
  EXPECT_TRUE(WraparoundBound::can_judge(2'000, 2'000));
  // 2,001 below 0, 8 above what is asked for, and the largest number of 16 bits with a sign.
  EXPECT_TRUE(WraparoundBound::can_judge(2'000, 32'767 - 2'001 - 8));
  EXPECT_FALSE(WraparoundBound::can_judge(2'000, 32'767 - 2'001 - 7));
  EXPECT_FALSE(WraparoundBound::can_judge(10, std::numeric_limits<int>::max()));
}

}  // namespace
}  // namespace vorlan
