// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The joint bound against the bound by its definition and the extension by the slow twin.

#include "imperfect/wraparound/joint_bound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

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
using reference::Settings;

/// The starts of several unit lengths in a row of one sequence, at first all of them.
class JointlyJudged {
 public:
  JointlyJudged(std::string residues, unsigned first_length, unsigned lengths)
      : dna_(residues),
        residues_(std::move(residues)),
        anchors_(dna_.at(0), residues_.size()),
        first_length_(first_length),
        sets_(lengths),
        bound_(dna_.residues.view()) {
    for (unsigned i = 0; i < lengths; ++i) {
      for (std::size_t word = 0; word + first_length + i < residues_.size(); word += 64) {
        sets_[i].add_rising(static_cast<std::ptrdiff_t>(word), ~std::uint64_t{0});
      }
    }
  }

  CAnchorSeq& anchors() { return anchors_; }
  const char* residue(std::ptrdiff_t offset) const { return dna_.at(0) + offset; }

  /// Narrows down for all unit lengths, each when its turn comes. Returns whether all were judged.
  bool narrow_down(const UnitLengthThresholds& min_scores) {
    bool are_judged = true;
    for (unsigned i = 0; i < sets_.size(); ++i) {
      are_judged &= bound_.narrow_down(first_length_ + i, std::span(sets_).subspan(i), min_scores,
                                       anchors_, [this] { ++signs_of_work_; });
    }
    return are_judged;
  }

  bool is_left(std::size_t start, unsigned unit_length) const {
    SparseStarts::Reader reader(sets_[unit_length - first_length_]);
    return (reader.word(static_cast<std::ptrdiff_t>(start - start % 64)) >> start % 64 & 1) != 0;
  }

  std::size_t left() const {
    std::size_t left = 0;
    for (const SparseStarts& set : sets_) left += set.count();
    return left;
  }

  int signs_of_work() const { return signs_of_work_; }

  /// Calls `take(start, unit length)` for all candidates.
  template <class Take>
  void for_each_candidate(const Take& take) const {
    for (unsigned length = first_length_; length < first_length_ + sets_.size(); ++length) {
      for (std::size_t start = 0; start + length < residues_.size(); ++start) {
        if (holds_only_bases(std::string_view(residues_).substr(start, length))) {
          take(start, length);
        }
      }
    }
  }

 private:
  Dna dna_;
  std::string residues_;
  CAnchorSeq anchors_;
  unsigned first_length_;
  std::vector<SparseStarts> sets_;
  JointBound bound_;
  int signs_of_work_ = 0;
};

/// Background with two copies of some units, near each other.
std::string residues_with_copies(Random& random, std::size_t length) {
  std::string residues;
  while (residues.size() < length) {
    residues += differential::random_residues(random, random.below(200), "ACGT");
    const std::string copy = differential::random_residues(random, 20 + random.below(40), "ACGT");
    residues += copy + differential::random_residues(random, random.below(6), "ACGT");
    residues += differential::diverged(random, copy, random.one_of({0, 30, 80}));
  }
  return residues;
}

Settings settings_with_penalty(int penalty) {
  Settings settings;
  settings.mismatch_score = settings.indel_score = penalty;
  settings.maximum_recursion_depth = 2;
  return settings;
}

UnitLengthThresholds constant(int min_score) { return {min_score, 0, 0.0F}; }

class JointBoundTest : public FreshSettings {};

TEST_F(JointBoundTest, KeepsWhatIsAccepted) {
  std::size_t accepted = 0;
  std::size_t rejected = 0;
  for (std::uint64_t seed = 0; seed < 12; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const Settings settings = settings_with_penalty(random.one_of({-5, -3}));
    reference::set_settings_of_the_product(settings);
    std::string residues = residues_with_copies(random, 300);
    differential::overwrite_with_Ns(random, residues, 2, 3);
    const auto first_length = static_cast<unsigned>(random.between(18, 40));
    JointlyJudged judged(residues, first_length, 7);
    const int min_score = random.between(8, 24);
    ASSERT_TRUE(judged.narrow_down(constant(min_score)));
    judged.for_each_candidate([&](std::size_t start, unsigned length) {
      if (extended_plainly(residues, settings, start, length).score < min_score) {
        rejected += judged.is_left(start, length) ? 0U : 1U;
        return;
      }
      ++accepted;
      EXPECT_TRUE(judged.is_left(start, length)) << start << ", unit length " << length;
    });
  }
  EXPECT_GT(accepted, 100U);
  EXPECT_GT(rejected, 10'000U);
}

// Larger groups only take away: at last each unit length is judged alone, with its neighbours.
TEST_F(JointBoundTest, LeavesNothingThatItsUnitLengthAloneRejects) {
  Random random(1);
  const Settings settings = settings_with_penalty(-5);
  reference::set_settings_of_the_product(settings);
  const std::string residues = residues_with_copies(random, 280);
  constexpr unsigned kFirstLength = 28;
  constexpr std::size_t kNeighbours = 2 + kFirstLength / 14 - 1;
  constexpr int kMinScore = 12;
  JointlyJudged judged(residues, kFirstLength, 5);
  ASSERT_TRUE(judged.narrow_down(constant(kMinScore)));
  std::size_t left = 0;
  judged.for_each_candidate([&](std::size_t start, unsigned length) {
    if (!judged.is_left(start, length)) return;
    ++left;
    const std::size_t last = residues.size() - length - 1;
    EXPECT_GE(plain_wraparound_bound(residues, settings, start - std::min(start, kNeighbours),
                                     std::min(start + kNeighbours, last), length),
              kMinScore)
        << start << ", unit length " << length;
  });
  EXPECT_GT(left, 10U);
}

// Of the second copy there are 10 of 25 bases, so a unit of 25 has 10 points there, and one of 24
// half as many. A look that asked both for 20, as units of 24 need, would lose the one of 25.
TEST_F(JointBoundTest, AsksForTheLeastScoreOfTheUnitLengths) {
  const std::string copy = "ACGGTCATTGACCAGTACTGCAAGT";
  const std::string residues = "GGTTAACC" + copy + copy.substr(0, 10) + "TTGCACCTAGGATTT";
  reference::set_settings_of_the_product(settings_with_penalty(-5));
  const UnitLengthThresholds falling(0, 260, -10.0F);  // 20 for units of 24, 10 for units of 25
  JointlyJudged judged(residues, 24, 2);
  ASSERT_TRUE(judged.narrow_down(falling));
  EXPECT_TRUE(judged.is_left(8, 25));
  EXPECT_FALSE(judged.is_left(8, 24));
}

TEST_F(JointBoundTest, DoesNotJudgeWhatTheMarksClose) {
  Random random(2);
  const std::string residues = differential::random_residues(random, 400, "ACGT");
  reference::set_settings_of_the_product({});
  JointlyJudged open(residues, 50, 5);
  JointlyJudged closed(residues, 50, 5);
  const std::size_t all = open.left();
  closed.anchors().close(closed.residue(0), closed.residue(400));
  ASSERT_TRUE(open.narrow_down(constant(40)));
  ASSERT_TRUE(closed.narrow_down(constant(40)));
  EXPECT_LT(open.left(), all / 2);
  EXPECT_GT(open.signs_of_work(), 0);
  EXPECT_EQ(closed.left(), all);
  EXPECT_EQ(closed.signs_of_work(), 0);
}

TEST_F(JointBoundTest, CannotJudgeScoresThatDoNotFit) {
  JointlyJudged judged(std::string(100, 'A'), 30, 3);
  const std::size_t all = judged.left();
  EXPECT_FALSE(judged.narrow_down(constant(40'000)));
  EXPECT_EQ(judged.left(), all);
}

TEST(LookRecord, LeavesOutLooksThatRejectLittle) {
  LookRecord record;
  EXPECT_TRUE(record.is_worth_it());
  record.add(1'000, 399);
  EXPECT_TRUE(record.is_worth_it());
  record.add(0, 1);
  EXPECT_FALSE(record.is_worth_it());
}

TEST(LookRecord, TriesNowAndThenAndForgetsWhatIsLongAgo) {
  LookRecord record;
  record.add(4'000, 4'000);
  int tried = 0;
  for (int i = 0; i < 160; ++i) tried += record.is_worth_it() ? 1 : 0;
  EXPECT_EQ(tried, 10);
  for (int i = 0; i < 4; ++i) record.add(4'000, 0);
  EXPECT_TRUE(record.is_worth_it());
}

TEST(LookRecord, DoesNotJudgeByFewStarts) {
  LookRecord record;
  record.add(511, 511);
  EXPECT_TRUE(record.is_worth_it());
  record.add(1, 1);
  EXPECT_FALSE(record.is_worth_it());
}

}  // namespace
}  // namespace vorlan
