// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "calibrate/calibration.h"

#include <gtest/gtest.h>

namespace vorlan_tools {
namespace {

Calibration evaluated(const ScoreCounts& counts, std::int64_t copies) {
  Calibration calibration;
  calibration.copies = copies;
  evaluate(counts, calibration);
  return calibration;
}

TEST(Calibration, PoolsScoresThatContradictEachOther) {
  const Calibration calibration =
      evaluated({{2, {{6, {100, 180}}, {7, {40, 24}}, {8, {40, 32}}, {9, {50, 2}}}}}, 2);
  EXPECT_DOUBLE_EQ(*calibration.share(2, 6), 0.90);
  EXPECT_DOUBLE_EQ(*calibration.share(2, 7), 0.35);
  EXPECT_DOUBLE_EQ(*calibration.share(2, 8), 0.35);
  EXPECT_DOUBLE_EQ(*calibration.share(2, 9), 0.02);
  // Outside of what was seen the next score speaks, of another unit length nothing.
  EXPECT_DOUBLE_EQ(*calibration.share(2, 5), 0.90);
  EXPECT_DOUBLE_EQ(*calibration.share(2, 100), 0.02);
  EXPECT_FALSE(calibration.share(3, 9).has_value());
}

TEST(Calibration, SumsFromAScoreUpwards) {
  const Calibration calibration =
      evaluated({{1, {{6, {100, 180}}, {7, {40, 24}}, {8, {40, 32}}, {9, {50, 2}}}}}, 2);
  const std::vector<ScoreShare>& scores = calibration.by_unit_length.at(1).scores;
  EXPECT_DOUBLE_EQ(scores[0].share_from, 119.0 / 230);  // (180 + 24 + 32 + 2) / 2 of 230
  EXPECT_DOUBLE_EQ(scores[1].share_from, 29.0 / 130);
  EXPECT_DOUBLE_EQ(scores[2].share_from, 17.0 / 90);
  EXPECT_DOUBLE_EQ(scores[3].share_from, 1.0 / 50);
}

TEST(Calibration, AThresholdHoldsWithOneMoreOfChance) {
  // From 9 on (2 + 1) / 2 = 1.5 of 50 are 3 %: below 5 %, not below 1 %. From 10 on 0.5 of 40 are
  // 1.25 %, from 11 on 0.5 of 30 more: nothing is sure at 1 %, and 10 is above all of chance.
  const ScoreCounts counts = {{1, {{8, {40, 32}}, {9, {10, 2}}, {10, {10, 0}}, {11, {30, 0}}}}};
  const Calibration calibration = evaluated(counts, 2);
  const UnitLengthShares& shares = calibration.by_unit_length.at(1);
  EXPECT_EQ(shares.thresholds[0].score, 9);
  EXPECT_TRUE(shares.thresholds[0].is_sure);
  EXPECT_EQ(shares.thresholds[1].score, 10);
  EXPECT_FALSE(shares.thresholds[1].is_sure);
}

TEST(Calibration, ALineIsNowhereBelowTheThresholds) {
  // Thresholds at 5 %: 8, 10 and 12, a line of slope 2; nothing is lost by it.
  ScoreCounts counts;
  for (const std::int64_t length : {1, 2, 3}) {
    const std::int64_t threshold = 6 + 2 * length;
    counts[length][threshold - 1] = {10, 100};
    counts[length][threshold] = {100, 0};
  }
  const Calibration calibration = evaluated(counts, 1);
  const ThresholdLine& line = calibration.lines[0];
  for (const std::int64_t length : {1, 2, 3}) EXPECT_EQ(line.score(length), 6 + 2 * length);
  EXPECT_EQ(line.kept, 300);
  EXPECT_DOUBLE_EQ(line.expected_false, 0);
}

TEST(Calibration, WhatChanceAloneHasIsFalse) {
  const Calibration calibration = evaluated({{1, {{6, {0, 5}}, {7, {3, 0}}}}}, 1);
  EXPECT_DOUBLE_EQ(*calibration.share(1, 6), 1);
  EXPECT_DOUBLE_EQ(*calibration.share(1, 7), 0);
}

}  // namespace
}  // namespace vorlan_tools
