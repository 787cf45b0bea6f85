// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/csearchcontroller.h"

#include <gmock/gmock.h>

#include <limits>
#include <vector>

#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

std::vector<int> values(const UnitLengthThresholds& thresholds, unsigned first, unsigned last) {
  std::vector<int> result;
  for (unsigned u = first; u <= last; ++u) result.push_back(thresholds[u]);
  return result;
}

TEST(Thresholds, RoundUpTheLineAndTakeTheConstantWhereThatIsMore) {
  EXPECT_THAT(values({0, 0, 1.5F}, 1, 4), ElementsAre(2, 3, 5, 6));
  EXPECT_THAT(values({6, 0, 1.5F}, 1, 5), ElementsAre(6, 6, 6, 6, 8));
  EXPECT_THAT(values({0, 2, 0.5F}, 1, 4), ElementsAre(3, 3, 4, 4));
  EXPECT_THAT(values({-9, 1, -1.5F}, 1, 4), ElementsAre(0, -2, -3, -5));  // -0.5, -2, -3.5, -5
}

// 1.1 is 1.10000002384 in single precision. Ten times that rounds to 11; in double precision it
// would stay above 11 and be rounded up to 12.
TEST(Thresholds, TheProductIsRoundedToSinglePrecision) {
  EXPECT_EQ(UnitLengthThresholds(0, 0, 1.1F)[10], 11);
}

// 2^24 + 1 is no number in single precision.
TEST(Thresholds, TheSumIsRoundedToSinglePrecision) {
  EXPECT_EQ(UnitLengthThresholds(0, 16777216, 1.0F)[1], 16777216);
}

// A fused multiply-add would see 0.000000238 and round it up to 1.
TEST(Thresholds, TheProductIsRoundedBeforeTheSum) {
  EXPECT_EQ(UnitLengthThresholds(-100, -11, 1.1F)[10], 0);
}

TEST(Thresholds, SaturateWhere32BitsEnd) {
  constexpr int kLargest = std::numeric_limits<int>::max();
  constexpr int kSmallest = std::numeric_limits<int>::min();
  EXPECT_EQ(UnitLengthThresholds(0, 0, 3e9F)[1], kLargest);
  EXPECT_EQ(UnitLengthThresholds(0, 0, 2147483648.0F)[1], kLargest);
  EXPECT_EQ(UnitLengthThresholds(0, 0, 2147483520.0F)[1], 2147483520);  // the number before 2^31
  EXPECT_EQ(UnitLengthThresholds(kSmallest, 0, -3e9F)[1], kSmallest);
  EXPECT_EQ(UnitLengthThresholds(-7, 0, -3e9F)[1], -7);
}

class Controller : public FreshSettings {
 protected:
  Dna dna_{"ACGT"};
};

TEST_F(Controller, DefaultThresholdsAre6OrTheUnitLengthForScoresAnd0ForLengths) {
  const CSearchController controller(1, dna_);
  EXPECT_THAT(values(*CSearchController::minScores, 1, 10),
              ElementsAre(6, 6, 6, 6, 6, 6, 7, 8, 9, 10));
  EXPECT_THAT(values(*CSearchController::minLengths, 1, 10), Each(0));
}

// ceil(1.5 * 3) = 5
TEST_F(Controller, ASlopeThatStaysBelowTheMinimumScoreDoesNotCount) {
  global_min_score_bx = 1.5F;
  const CSearchController controller(1, dna_);
  EXPECT_EQ((*CSearchController::minScores)[3], 6);
  EXPECT_EQ((*CSearchController::minScores)[5], 8);
}

TEST_F(Controller, WithoutASlopeEveryThresholdIsTheConstant) {
  global_min_score = 9;
  global_min_score_a = 8;
  global_min_score_bx = 0.0F;
  const CSearchController controller(1, dna_);
  EXPECT_THAT(values(*CSearchController::minScores, 0, 10), Each(9));
}

TEST_F(Controller, TheLineAloneSetsThresholdsWhenTheConstantIs0) {
  global_min_score = 0;
  global_min_score_bx = 1.5F;
  global_min_length_a = 1;
  global_min_length_bx = 2.5F;
  const CSearchController controller(1, dna_);
  EXPECT_THAT(values(*CSearchController::minScores, 1, 4), ElementsAre(2, 3, 5, 6));
  EXPECT_THAT(values(*CSearchController::minLengths, 1, 4), ElementsAre(4, 6, 9, 11));
}

TEST_F(Controller, SeedsNeedAScoreOf4OrTheirUnitLengthAndNoLength) {
  global_min_score = 20;
  global_min_length = 20;
  const CSearchController controller(1, dna_);
  EXPECT_THAT(values(*CSearchController::minScores_intern, 1, 6), ElementsAre(4, 4, 4, 4, 5, 6));
  EXPECT_THAT(values(*CSearchController::minLengths_intern, 1, 10), Each(0));
}

// 2^24 + 1 has no exact value in single precision, but seeds compare unit lengths themselves.
TEST_F(Controller, SeedThresholdsAreExactForEveryUnitLength) {
  const CSearchController controller(1, dna_);
  EXPECT_EQ((*CSearchController::minScores_intern)[16777217], 16777217);
}

TEST_F(Controller, ASecondOneKeepsTheThresholdsOfTheFirst) {
  { const CSearchController first(1, dna_); }
  global_min_score = 99;
  global_min_length = 99;
  const CSearchController second(2, dna_);
  EXPECT_EQ((*CSearchController::minScores)[1], 6);
  EXPECT_EQ((*CSearchController::minLengths)[1], 0);
}

TEST_F(Controller, ThresholdsAreTakenAgainAfterTheyWereReset) {
  { const CSearchController first(1, dna_); }
  CSearchController::reset_minimum_arrays();
  EXPECT_EQ(CSearchController::minScores, nullptr);
  EXPECT_EQ(CSearchController::minLengths, nullptr);
  global_min_score = 99;
  const CSearchController second(2, dna_);
  EXPECT_EQ((*CSearchController::minScores)[1], 99);
}

TEST_F(Controller, GivesItsRecordsBackImperfectOnesFirst) {
  const EmptyPool empty_pool;
  Csat* exact = new_sat(dna_.at(0), dna_.at(2));
  Csat* imperfect = new_sat(dna_.at(1), dna_.at(3));
  {
    CSearchController controller(1, dna_);
    EXPECT_TRUE(controller.exact_sats.empty());
    EXPECT_TRUE(controller.imperfect_sats.empty());
    controller.exact_sats.push_back(exact);
    controller.imperfect_sats.push_back(imperfect);
  }
  EXPECT_THAT(sat_alloc, ElementsAre(imperfect, exact));
}

}  // namespace
}  // namespace vorlan
