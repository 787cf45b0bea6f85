// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter of several records together, against the extension of every start of each record by
// the slow twin. That searches come out the same is tested with whole searches.

#include "imperfect/filter/series_filter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "config/settings.h"
#include "description.h"
#include "extension_settings.h"
#include "plain_candidate.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

/// Records that are judged together.
struct JudgedSeries {
  explicit JudgedSeries(const std::vector<std::string>& records) {
    for (const std::string& record : records) offsets.push_back(filter.append(record));
    filter.judge(UnitLengthThresholds::of_scores());
  }

  SeriesSurvivors of(std::size_t record) const { return filter.record(offsets[record]); }

  /// Requires that the unit length is known.
  bool survives(std::size_t record, unsigned unit_length, std::size_t start) const {
    const auto position = static_cast<std::ptrdiff_t>(start);
    return (of(record).survivors(unit_length, position) & 1) != 0;
  }

  SeriesFilter filter;
  std::vector<std::size_t> offsets;
};

using SeriesFilterTest = FreshSettings;

TEST_F(SeriesFilterTest, KeepsEveryStartThatTheSlowTwinAcceptsInItsRecord) {
  std::size_t accepted = 0;
  for (int seed = 0; seed < 40 * kWorkload; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.maximum_recursion_depth = random.between(1, 2);
    settings.min_score = global_min_score = random.between(1, 12);
    reference::set_settings_of_the_product(settings);
    std::vector<std::string> records;
    for (int i = 0; i < 12; ++i) {
      records.push_back(differential::random_record(random, random.below(i == 0 ? 1'600 : 150)));
    }
    const JudgedSeries series(records);
    for (std::size_t i = 0; i < records.size(); ++i) {
      const auto unit_length = static_cast<unsigned>(random.between(
          static_cast<int>(global_min_unit_length), static_cast<int>(global_max_unit_length)));
      if (!series.of(i).know(unit_length)) continue;
      const std::string_view record = records[i];
      const int min_score = reference::user_thresholds(settings, unit_length).score;
      for (std::size_t start = 0; start + unit_length < record.size(); ++start) {
        if (!holds_only_bases(record.substr(start, unit_length))) continue;
        if (extended_plainly(record, settings, start, unit_length).score < min_score) continue;
        ++accepted;
        ASSERT_TRUE(series.survives(i, unit_length, start))
            << "seed " << seed << ", unit length " << unit_length << ", start " << start << "\n"
            << differential::describe(settings) << "\n"
            << record;
      }
    }
  }
  EXPECT_GT(accepted, 1'000U * kWorkload);
}

TEST_F(SeriesFilterTest, RejectsNearlyAllOfTheBackground) {
  constexpr std::size_t kRecords = 60;
  constexpr std::size_t kLength = 150;
  Random random(1);
  std::vector<std::string> records;
  for (std::size_t i = 0; i < kRecords; ++i) {
    records.push_back(differential::random_residues(random, kLength, "ACGT"));
  }
  const JudgedSeries series(records);
  for (unsigned unit_length = 2; unit_length <= 10; ++unit_length) {
    std::size_t survivors = 0;
    for (std::size_t record = 0; record < kRecords; ++record) {
      for (std::size_t start = 0; start + unit_length < kLength; ++start) {
        survivors += series.survives(record, unit_length, start) ? 1 : 0;
      }
    }
    EXPECT_LT(survivors, kRecords * kLength * 3 / 100) << "unit length " << unit_length;
  }
}

// In both records the array begins at the last start with room, which the other record follows.
TEST_F(SeriesFilterTest, StartsWithoutRoomInTheirRecordAreNotCandidates) {
  search_only(2);
  const JudgedSeries series({"GTCTACACAC", "ACACACAC"});
  EXPECT_TRUE(series.survives(0, 2, 7));
  EXPECT_FALSE(series.survives(0, 2, 8));
  EXPECT_FALSE(series.survives(0, 2, 9));
  EXPECT_TRUE(series.survives(1, 2, 0));
}

TEST_F(SeriesFilterTest, SaysWhetherAnyOfTheStartsSurvives) {
  search_only(2);
  const std::string background = repeated("AGTC", 16);
  const JudgedSeries series({background, background + "ACACACACAC", "AGTC"});
  const SeriesSurvivors record = series.of(1);
  EXPECT_FALSE(record.any_survives(2, 50));
  EXPECT_TRUE(record.any_survives(2, 66));
  EXPECT_FALSE(series.of(0).any_survives(2, 50));
  EXPECT_FALSE(series.of(2).any_survives(2, 2));
}

TEST_F(SeriesFilterTest, KnowsTheUnitLengthsOfTheSettings) {
  global_min_unit_length = 3;
  global_max_unit_length = 5;
  const JudgedSeries series({"ACGTTGCATCGA", "ACGT"});
  const SeriesSurvivors record = series.of(0);
  EXPECT_FALSE(record.know(2));
  EXPECT_TRUE(record.know(3));
  EXPECT_TRUE(record.know(5));
  EXPECT_FALSE(record.know(6));
}

TEST_F(SeriesFilterTest, KnowsNoUnitLengthBeyondTheLongestRecord) {
  global_max_unit_length = 1'000'000;
  const JudgedSeries series({"ACGTTGCATCGA", "ACGT"});
  EXPECT_TRUE(series.of(0).know(11));
  EXPECT_FALSE(series.of(0).know(13));
}

TEST_F(SeriesFilterTest, KnowsNoUnitLengthThatIsTooDearToJudgeForARecordThatMayNotNeedIt) {
  global_max_unit_length = 1'000'000;
  Random random(3);
  const std::string record = differential::random_residues(random, 300, "ACGT");
  const JudgedSeries series({record, record});
  EXPECT_TRUE(series.of(0).know(SeriesFilter::kLongestUnit));
  EXPECT_FALSE(series.of(0).know(SeriesFilter::kLongestUnit + 1));
}

// AC survives everywhere; its marks will close the records for longer units.
TEST_F(SeriesFilterTest, KnowsNoUnitLengthBehindOneThatSurvivesInManyPlaces) {
  const JudgedSeries series(std::vector(4, repeated("AC", 50)));
  EXPECT_TRUE(series.of(0).know(2));
  EXPECT_FALSE(series.of(0).know(3));
}

// Looks and answers go beyond the ends; a sanitizer sees if they go too far.
TEST_F(SeriesFilterTest, KeepsArraysAtBothEndsOfTheSeries) {
  constexpr std::size_t kArray = 120;
  for (const std::size_t residues : {511U, 512U, 513U, 1023U, 1535U, 1536U, 1600U}) {
    for (const unsigned unit_length : {1U, 2U, 10U, SeriesFilter::kLongestUnit}) {
      SCOPED_TRACE(std::to_string(residues) + " residues, unit length " +
                   std::to_string(unit_length));
      search_only(unit_length);
      Random random(residues);
      const std::string unit = differential::random_residues(random, unit_length, "ACGT");
      const std::string array = differential::array_of(unit, kArray);
      const std::string background =
          differential::random_residues(random, residues - 2 * kArray, "ACGT");
      const JudgedSeries series({array, background, array});
      EXPECT_TRUE(series.survives(0, unit_length, 0));
      EXPECT_TRUE(series.survives(2, unit_length, kArray - unit_length - 1));
      EXPECT_TRUE(series.of(2).any_survives(unit_length, kArray - unit_length));
    }
  }
}

TEST_F(SeriesFilterTest, KnowsNothingOfUnitsThatAreAllTooLong) {
  global_min_unit_length = SeriesFilter::kLongestUnit + 1;
  global_max_unit_length = 400;
  const JudgedSeries series(std::vector(2, repeated("ACGT", 200)));
  EXPECT_FALSE(series.of(0).know(SeriesFilter::kLongestUnit));
  EXPECT_FALSE(series.of(0).know(SeriesFilter::kLongestUnit + 1));
}

TEST_F(SeriesFilterTest, KnowsNothingBeforeItHasJudged) {
  SeriesFilter filter;
  filter.append("ACACACACAC");
  EXPECT_FALSE(filter.record(0).know(1));
  filter.judge(UnitLengthThresholds::of_scores());
  EXPECT_TRUE(filter.record(0).know(1));
  filter.clear();
  filter.append("ACACACACAC");
  EXPECT_FALSE(filter.record(0).know(1));
}

}  // namespace
}  // namespace vorlan
