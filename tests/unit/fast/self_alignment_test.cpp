// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The self-alignment, in all its kernels: against the same cells computed plainly, and against the
// extension of every start by the slow twin.

#include "imperfect/self_alignment/self_alignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "all_strings.h"
#include "description.h"
#include "extension_settings.h"
#include "plain_candidate.h"
#include "plain_self_alignment.h"
#include "random.h"
#include "random_residues.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

void do_nothing() {}

FirstCopyBound current_bound(unsigned unit_length) {
  return FirstCopyBound(Scoring::of_the_run(), unit_length);
}

std::vector<bool> survivors_of(const SelfAlignment& alignment, unsigned unit_length,
                               std::size_t starts) {
  SparseStarts::Reader reader(alignment.survivors(unit_length));
  std::vector<bool> survivors;
  for (std::size_t start = 0; start < starts; ++start) {
    const auto word = static_cast<std::ptrdiff_t>(start / 64 * 64);
    survivors.push_back((reader.word(word) >> start % 64 & 1) != 0);
  }
  return survivors;
}

std::size_t starts_of(std::string_view residues, unsigned unit_length) {
  return residues.size() > unit_length ? residues.size() - unit_length : 0;
}

class SelfAlignmentTest : public FreshSettings {
 protected:
  const std::vector<AlignmentKernel> kernels_ = runnable_alignment_kernels();
};

/// Arrays, in which diagonals meet, in background.
std::string random_sequence(Random& random, unsigned unit_length) {
  std::string residues =
      differential::random_residues(random, random.below(300), random.one_of({"ACGT", "AAATTTCG"}));
  for (int i = random.between(0, 3); i > 0; --i) {
    const std::string unit = differential::random_residues(
        random, 1 + random.below(2 * unit_length), random.one_of({"ACGT", "AC"}));
    residues += differential::diverged(
        random, differential::array_of(unit, random.below(4 * unit_length + 1)),
        random.between(0, 150));
    residues += differential::random_residues(random, random.below(60), "ACGT");
  }
  if (random.per_cent(30)) {
    differential::overwrite_with_Ns(random, residues, static_cast<int>(residues.size() / 40), 5);
  }
  return residues;
}

// Unit length 100, bonus 5/4, penalties 5, longer repeats preferred: f = 1 - 100 - 1 = -100, T =
// 125 - 100 = 25 points. All in quarters of a point.
TEST_F(SelfAlignmentTest, TheNumbersOfTheBoundAreThoseOfTheProof) {
  constexpr unsigned kLength = 100;
  constexpr int kMuch = 1'000'000;
  global_prefer_longer_repeat = 1;
  const FirstCopyBound bound = current_bound(kLength);
  // T * (1 + b) / (2 + b) = 25 * 9/13 = 17 4/13 points; min_score * (1 + b) / 2 = 8 * 9/8 = 9.
  EXPECT_EQ(bound.wanted(kLength, kMuch), 69);
  EXPECT_EQ(bound.wanted(kLength, 8), 36);

  const AlignmentCosts costs = bound.costs();
  EXPECT_EQ(costs.match, 4 + 5);
  EXPECT_EQ(costs.mismatch, 20 - 5);
  EXPECT_EQ(costs.insertion, 20);
  EXPECT_EQ(costs.deletion, 20 - 5);

  // b * (u - n). Ten deletions consume ten unit bases, which pay for them: n = 10. Thirty edits
  // cost 150 points, 42 more than the 100 below zero and the 8 that the other side has gained: as
  // many matches are consumed as well.
  EXPECT_EQ(bound.cap(100, kLength, kMuch), 5 * 100);
  EXPECT_EQ(bound.cap(90, kLength, kMuch), 5 * 90);
  EXPECT_EQ(bound.cap(70, kLength, kMuch), 5 * (100 - 30 - 42));
  EXPECT_EQ(bound.cap(130, kLength, kMuch), 5 * (100 - 42));
}

TEST_F(SelfAlignmentTest, EveryKernelAgreesWithThePlainCells) {
  std::size_t surviving = 0;
  std::size_t rejected = 0;
  for (int seed = 0; seed < 60 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const auto first = static_cast<unsigned>(random.between(1, 90));
    const unsigned last = first + static_cast<unsigned>(random.below(random.per_cent(80) ? 8 : 90));
    const std::string residues = random_sequence(random, last);
    reference::set_settings_of_the_product(random_unlimited_settings(random));
    const FirstCopyBound bound = current_bound(first);
    const int per_cent = random.between(1, 150);
    const MinScoreOf min_score_of = [=](unsigned length) {
      return static_cast<int>(length) * per_cent / 100 + 1;
    };
    const PlainSelfAlignment plain(residues, bound, first, last, min_score_of);
    for (const AlignmentKernel& kernel : kernels_) {
      SelfAlignment alignment(residues, kernel);
      ASSERT_EQ(alignment.judge(bound, first, last, min_score_of, do_nothing), last);
      for (unsigned length = first; length <= last; ++length) {
        const std::vector<bool> survivors =
            survivors_of(alignment, length, starts_of(residues, length));
        for (std::size_t start = 0; start < survivors.size(); ++start) {
          ASSERT_EQ(survivors[start], plain.survives(start, length))
              << "start " << start << ", unit length " << length << "\n"
              << residues;
          ++(survivors[start] ? surviving : rejected);
        }
      }
    }
  }
  EXPECT_GT(surviving, 50'000U * kWorkload * kernels_.size());
  EXPECT_GT(rejected, 50'000U * kWorkload * kernels_.size());
}

/// Compares what the bound rejects with what the slow twin accepts.
class AcceptedStarts : public SelfAlignmentTest {
 protected:
  /// Of all starts of one unit length, at the given score.
  void expect_survive(const std::string& residues, const Settings& settings, unsigned unit_length,
                      int min_score) {
    reference::set_settings_of_the_product(settings);
    const FirstCopyBound bound = current_bound(unit_length);
    SelfAlignment alignment(residues, kernels_[tried_++ % kernels_.size()]);
    alignment.judge(
        bound, unit_length, unit_length, [=](unsigned) { return min_score; }, do_nothing);
    const std::size_t starts = starts_of(residues, unit_length);
    const std::vector<bool> survivors = survivors_of(alignment, unit_length, starts);
    for (std::size_t start = 0; start < starts; ++start) {
      if (!holds_only_bases(std::string_view(residues).substr(start, unit_length))) continue;
      if (!survivors[start]) ++rejected_;
      if (scores_[start] < min_score) continue;
      ++accepted_;
      ASSERT_TRUE(survivors[start])
          << "lost start " << start << " with score " << scores_[start] << ", unit length "
          << unit_length << ", least score " << min_score << "\n"
          << differential::describe(settings) << "\n"
          << residues;
    }
  }

  /// At every score that a start has, where it only just passes, and at the unit length.
  void expect_survive(const std::string& residues, const Settings& settings, unsigned unit_length) {
    extend_all(residues, settings, unit_length);
    std::vector<int> min_scores = scores_;
    min_scores.push_back(static_cast<int>(unit_length));
    std::sort(min_scores.begin(), min_scores.end());
    min_scores.erase(std::unique(min_scores.begin(), min_scores.end()), min_scores.end());
    for (const int min_score : min_scores) {
      if (min_score < 1) continue;
      ASSERT_NO_FATAL_FAILURE(expect_survive(residues, settings, unit_length, min_score));
    }
  }

  void extend_all(const std::string& residues, const Settings& settings, unsigned unit_length) {
    scores_.clear();
    for (std::size_t start = 0; start < starts_of(residues, unit_length); ++start) {
      const bool is_unit = holds_only_bases(std::string_view(residues).substr(start, unit_length));
      scores_.push_back(is_unit ? extended_plainly(residues, settings, start, unit_length).score
                                : -1);
    }
  }

  std::vector<int> scores_;
  std::size_t tried_ = 0;
  std::size_t accepted_ = 0;
  std::size_t rejected_ = 0;
};

Settings random_bound_settings(Random& random) {
  Settings settings = random_unlimited_settings(random);
  settings.maximum_recursion_depth = random.between(1, 3);
  if (random.per_cent(20)) settings.maximum_scorereduction = random.between(0, 60);
  return settings;
}

TEST_F(AcceptedStarts, OfRandomSequencesSurvive) {
  for (int seed = 0; seed < 40 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const auto unit_length = static_cast<unsigned>(random.between(2, 40));
    const std::string residues = random_sequence(random, unit_length);
    ASSERT_NO_FATAL_FAILURE(expect_survive(residues, random_bound_settings(random), unit_length));
  }
  EXPECT_GT(accepted_, 2'000U * kWorkload);
  EXPECT_GT(rejected_, 10'000U * kWorkload);
}

/// Residues that differ from the given ones in every place.
std::string all_replaced(std::string residues) {
  for (char& residue : residues) residue = "CGTA"[std::string_view("ACGT").find(residue)];
  return residues;
}

/// A long repeat of which one kind of trouble makes it only just acceptable, or not quite.
std::string planted_repeat(Random& random, unsigned unit_length, const Settings& settings) {
  const std::string unit = differential::random_residues(random, unit_length, "ACGT");
  const std::string before = differential::random_residues(random, random.below(40), "ACGT");
  const std::string behind = differential::random_residues(random, random.below(40), "ACGT");
  const auto array = [&](std::size_t copies, std::size_t more) {
    return differential::array_of(unit, copies * unit_length + more);
  };
  // As many mismatches or insertions as the floor allows, one less or one more.
  const auto affordable = [&](int penalty) {
    return static_cast<std::size_t>(
        std::max(1, static_cast<int>(unit_length) / -penalty + random.between(-1, 1)));
  };
  std::string residues;
  switch (random.between(0, 5)) {
    case 0:  // two copies, of which a few bases lack
      residues = array(2, 0);
      residues.resize(residues.size() - random.below(3));
      break;
    case 1:  // junk behind the unit, then exact copies
      residues = array(4, 0);
      for (std::size_t i = 0, j = affordable(settings.mismatch_score); i < j; ++i) {
        residues[unit_length + i] = all_replaced(residues.substr(unit_length + i, 1))[0];
      }
      break;
    case 2:  // the same with residues put in
      residues = array(4, 0);
      residues.insert(unit_length, differential::random_residues(
                                       random, affordable(settings.indel_score), "ACGT"));
      break;
    case 3:  // a second copy that lacks bases at the wrap, and a third and fourth that pay
      residues = array(2, 0);
      residues.resize(residues.size() - affordable(settings.indel_score));
      residues += array(2, random.below(unit_length));
      break;
    case 4:  // a second copy that is only just good enough
      residues = array(1, 0) + differential::diverged(random, unit, random.between(100, 250)) +
                 array(2, random.below(unit_length));
      break;
    default:  // many copies that differ
      residues = differential::diverged(random, array(6, random.below(unit_length)),
                                        random.between(20, 120));
  }
  if (random.per_cent(50)) std::reverse(residues.begin(), residues.end());
  return before + residues + behind;
}

TEST_F(AcceptedStarts, OfPlantedLongRepeatsSurvive) {
  for (int seed = 0; seed < 30 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const auto unit_length = static_cast<unsigned>(random.between(20, 70));
    Settings settings = random_bound_settings(random);
    settings.maximum_recursion_depth = random.between(1, 2);
    std::string residues = planted_repeat(random, unit_length, settings);
    if (random.per_cent(20)) differential::overwrite_with_Ns(random, residues, 2, 4);
    ASSERT_NO_FATAL_FAILURE(expect_survive(residues, settings, unit_length));
  }
  EXPECT_GT(accepted_, 20'000U * kWorkload);
  EXPECT_GT(rejected_, 1'000U * kWorkload);
}

/// What a unit gains on one side pays for a copy on the other side that loses all of it, down to
/// the floor; the copies beyond pay it back.
TEST_F(AcceptedStarts, WhoseOneSideSavesTheOtherSurvive) {
  Settings settings;
  settings.maximum_recursion_depth = 2;
  for (unsigned unit_length = 60; unit_length <= 72; unit_length += 3) {
    for (unsigned gain = 1; gain <= unit_length / 9; ++gain) {
      SCOPED_TRACE(testing::Message() << "unit length " << unit_length << ", gain " << gain);
      Random random(unit_length + 100 * gain);
      const std::string unit = differential::random_residues(random, unit_length, "ACGT");
      std::string residues = differential::array_of(unit, 5 * unit_length + gain);
      // Each mismatch costs a match besides the penalty.
      const std::size_t mismatches = (2 * unit_length + gain) / 6;
      for (std::size_t i = 0; i < mismatches; ++i) {
        const std::size_t place = 4 * unit_length - 1 - i * unit_length / mismatches;
        residues[place] = all_replaced(residues.substr(place, 1))[0];
      }
      residues += differential::random_residues(random, 4 * unit_length, "ACGT");
      for (int direction = 0; direction < 2; ++direction) {
        extend_all(residues, settings, unit_length);
        ASSERT_NO_FATAL_FAILURE(expect_survive(residues, settings, unit_length, 1));
        ASSERT_NO_FATAL_FAILURE(
            expect_survive(residues, settings, unit_length, static_cast<int>(unit_length)));
        std::reverse(residues.begin(), residues.end());
      }
    }
  }
  EXPECT_GT(accepted_, 1'250U * kWorkload);
  EXPECT_GT(rejected_, 100U);
}

#ifdef VORLAN_FAST_PATH_REDUCED
constexpr std::size_t kShorter = 2;
#else
constexpr std::size_t kShorter = 0;
#endif

TEST_F(AcceptedStarts, OfAllShortTextsSurvive) {
  for (const int prefer_longer_repeat : {0, 1}) {
    for (const int penalty : {-2, -3}) {
      Settings settings;
      settings.mismatch_score = settings.indel_score = penalty;
      settings.maximum_recursion_depth = 2;
      settings.prefer_longer_repeat = prefer_longer_repeat;
      differential::for_each_string_up_to("AC", 9 - kShorter, [&](const std::string& text) {
        for (unsigned length = 2; length <= 5 && length < text.size(); ++length) {
          expect_survive(text, settings, length);
        }
        return !testing::Test::HasFailure();
      });
    }
  }
  EXPECT_GT(accepted_, 1'250U * kWorkload);
  EXPECT_GT(rejected_, 125U * kWorkload);
}

TEST_F(AcceptedStarts, OfAllShortTextsWithNSurvive) {
  Settings settings;
  settings.mismatch_score = settings.indel_score = -2;
  settings.maximum_recursion_depth = 1;
  for (const int longest_N_run : {0, 1, 2}) {
    settings.Ns_allowed_in_a_row = longest_N_run;
    differential::for_each_string_up_to("ACN", 7 - kShorter, [&](const std::string& text) {
      for (unsigned length = 2; length <= 4 && length < text.size(); ++length) {
        expect_survive(text, settings, length);
      }
      return !testing::Test::HasFailure();
    });
  }
  EXPECT_GT(accepted_, 125U * kWorkload);
  EXPECT_GT(rejected_, 125U * kWorkload);
}

TEST_F(SelfAlignmentTest, RejectsNearlyAllOfTheBackground) {
  constexpr std::size_t kLength = 20'000;
  Random random(1);
  const std::string residues = differential::random_residues(random, kLength, "ACGT");
  reference::set_settings_of_the_product(Settings{});
  SelfAlignment alignment(residues);
  alignment.judge(
      current_bound(100), 100, 200, [](unsigned length) { return static_cast<int>(length); },
      do_nothing);
  for (unsigned length = 100; length <= 200; ++length) {
    EXPECT_LT(alignment.survivors(length).count(), kLength / 100) << length;
  }
}

TEST_F(SelfAlignmentTest, JudgesOnlyWhatThereIsSomethingToJudgeBy) {
  reference::set_settings_of_the_product(Settings{});
  EXPECT_TRUE(current_bound(100).can_judge(100, 100));
  EXPECT_TRUE(current_bound(40).can_judge(40, 40));
  EXPECT_FALSE(current_bound(100).can_judge(40, 40)) << "bonus of long units";
  EXPECT_FALSE(current_bound(40).can_judge(100, 100)) << "bonus of short units";
  EXPECT_FALSE(current_bound(5).can_judge(5, 6)) << "too short";
  EXPECT_FALSE(current_bound(100).can_judge(100, 0)) << "every score is enough";
  EXPECT_FALSE(current_bound(100).can_judge(100, 3)) << "nearly every score is enough";
  constexpr unsigned kLongest = FirstCopyBound::kLongestUnit;
  EXPECT_TRUE(current_bound(kLongest).can_judge(kLongest, 2'000'000'000));
  EXPECT_FALSE(current_bound(kLongest).can_judge(kLongest + 1, 2'000'000'000));
  Settings cheap_indels;
  cheap_indels.indel_score = -2;
  reference::set_settings_of_the_product(cheap_indels);
  EXPECT_FALSE(current_bound(100).can_judge(100, 100)) << "random sequence gains";
}

TEST_F(SelfAlignmentTest, LeavesOutLongUnitsRatherThanToOutgrowItsMemory) {
  constexpr std::size_t kLength = 60'000;
  constexpr std::size_t kMemory = 30'000;
  constexpr unsigned kFirst = 30;
  constexpr unsigned kLast = 200;
  Random random(3);
  const std::string unit = differential::random_residues(random, 40, "ACGT");
  const std::string residues =
      differential::diverged(random, differential::array_of(unit, kLength), 50);
  reference::set_settings_of_the_product(Settings{});
  const MinScoreOf min_score_of = [](unsigned length) { return static_cast<int>(length); };
  const FirstCopyBound bound = current_bound(kFirst);
  SelfAlignment all(residues);
  ASSERT_EQ(all.judge(bound, kFirst, kLast, min_score_of, do_nothing), kLast);
  SelfAlignment banded(residues, kernels_.back(), kMemory);
  unsigned bands = 0;
  for (unsigned first = kFirst; first <= kLast; ++bands) {
    const unsigned last = banded.judge(bound, first, kLast, min_score_of, do_nothing);
    ASSERT_GE(last, first);
    for (unsigned length = first; length <= last; ++length) {
      ASSERT_TRUE(banded.has_judged(length));
      EXPECT_GT(banded.survivors(length).count(), 0U) << length;
      EXPECT_GE(2 * all.survivors(length).count(), banded.survivors(length).count());
    }
    ASSERT_FALSE(banded.has_judged(last + 1));
    first = last + 1;
  }
  EXPECT_GT(bands, 1U);
}

}  // namespace
}  // namespace vorlan
