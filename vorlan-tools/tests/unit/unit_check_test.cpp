// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_check.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "io/output_file.h"

namespace vorlan_tools {
namespace {

/// One check for all repeats of a report; what passes is remembered.
class UnitCheckTest : public testing::Test {
 protected:
  std::uint64_t faults_of(const std::string& unit, std::int64_t unit_length,
                          std::string_view motif) {
    Repeat repeat;
    repeat.unit = unit;
    repeat.unit_length = unit_length;
    const std::uint64_t before = findings_.count();
    check_.run(repeat, motif);
    return findings_.count() - before;
  }

  Settings settings_;
  OutputFile output_{"/dev/null", Compression::kPlain};
  Findings findings_{output_, "report", 0};
  UnitCheck check_{settings_, findings_};
};

TEST_F(UnitCheckTest, APairThatHasPassedExcusesNoOther) {
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(faults_of("AC", 2, "GT"), 0U);
    EXPECT_EQ(faults_of("AC", 2, "CA"), 0U);
    EXPECT_EQ(faults_of("AG", 2, "GA"), 0U);
    EXPECT_EQ(faults_of("AC", 2, ""), 0U);
    // Another motif, another length, a unit that is shown otherwise, and repetitions.
    EXPECT_EQ(faults_of("AC", 2, "GA"), 1U);
    EXPECT_EQ(faults_of("AG", 2, "CA"), 1U);
    EXPECT_EQ(faults_of("AC", 3, "GT"), 1U);
    EXPECT_EQ(faults_of("CA", 2, "CA"), 1U);
    EXPECT_EQ(faults_of("ACAC", 4, "ACAC"), 2U);
    EXPECT_EQ(faults_of("AN", 2, ""), 1U);
  }
}

TEST_F(UnitCheckTest, TheRangeOfTheRunHoldsForPairsThatHavePassed) {
  settings_.max_unit_length = 3;
  EXPECT_EQ(faults_of("AACC", 4, "AACC"), 1U);
  EXPECT_EQ(faults_of("AACC", 4, "AACC"), 1U);
}

/// Five T stand only at the beginning, so that no unit is a repetition.
TEST_F(UnitCheckTest, MorePairsThanAreRemembered) {
  settings_.unit_mode = UnitMode::kAsIs;
  settings_.max_unit_length = 14;
  for (int round = 0; round < 2; ++round) {
    for (unsigned code = 0; code < 12'000; ++code) {
      std::string unit = "TTTTT";
      for (unsigned rest = code, place = 0; place < 9; ++place, rest /= 3) unit += "ACG"[rest % 3];
      std::string other = unit;
      other.back() = unit.back() == 'G' ? 'C' : 'G';
      ASSERT_EQ(faults_of(unit, 14, unit), 0U) << unit;
      ASSERT_EQ(faults_of(unit, 14, other), 1U) << unit;
    }
  }
}

}  // namespace
}  // namespace vorlan_tools
