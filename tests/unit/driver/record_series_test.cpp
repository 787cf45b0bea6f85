// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/record_series.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using RecordSeriesTest = FreshSettings;

TEST_F(RecordSeriesTest, TakesRecordsThatDoNotFillTheFilterThemselves) {
  EXPECT_TRUE(RecordSeries::is_short(Dna("")));
  EXPECT_TRUE(RecordSeries::is_short(Dna(repeated("A", 4096))));
  EXPECT_FALSE(RecordSeries::is_short(Dna(repeated("A", 4097))));
}

TEST_F(RecordSeriesTest, RecordsWithALongHeaderAreNotCopied) {
  EXPECT_TRUE(RecordSeries::is_short(Dna("ACGT", std::string(RecordSeries::kLongestText, 'h'))));
  EXPECT_FALSE(
      RecordSeries::is_short(Dna("ACGT", std::string(RecordSeries::kLongestText + 1, 'h'))));
}

TEST_F(RecordSeriesTest, OnlyTheImperfectSearchHasAFilterToFill) {
  for (const SearchMode mode : {kExact, kExtendExact}) {
    global_search_mode = mode;
    EXPECT_FALSE(RecordSeries::is_short(Dna("ACGT")));
  }
}

TEST_F(RecordSeriesTest, IsFullWithEnoughResidues) {
  RecordSeries series;
  for (unsigned number = 1; number <= 8; ++number) {
    EXPECT_FALSE(series.is_full()) << number;
    series.add(number, Dna(repeated("A", 4096)));
  }
  EXPECT_TRUE(series.is_full());
}

TEST_F(RecordSeriesTest, IsFullWithManyRecordsOfNothing) {
  RecordSeries series;
  for (unsigned number = 1; number <= 1024; ++number) {
    ASSERT_FALSE(series.is_full()) << number;
    series.add(number, Dna(""));
  }
  EXPECT_TRUE(series.is_full());
}

TEST_F(RecordSeriesTest, KeepsCopiesInOrderUntilCleared) {
  RecordSeries series;
  series.add(7, Dna("ACGTACGT", "a text"));
  series.add(8, Dna("GG", "b"));
  ASSERT_EQ(series.size(), 2U);
  EXPECT_EQ(series[0].number, 7U);
  EXPECT_EQ(series[0].sequence.header.view(), "a text");
  EXPECT_EQ(series[1].number, 8U);
  EXPECT_EQ(series[1].sequence.residues.view(), "GG");
  series.clear();
  EXPECT_EQ(series.size(), 0U);
  series.add(9, Dna("TTT", "c"));
  ASSERT_EQ(series.size(), 1U);
  EXPECT_EQ(series[0].number, 9U);
  EXPECT_EQ(series[0].sequence.residues.view(), "TTT");
}

TEST_F(RecordSeriesTest, JudgesOnlyMoreThanOneRecord) {
  RecordSeries series;
  series.add(1, Dna("ACACACACAC"));
  series.judge();
  EXPECT_FALSE(series.survivors(series[0]).know(2));
  series.add(2, Dna("GGACACACACAC"));
  series.judge();
  EXPECT_TRUE(series.survivors(series[0]).know(2));
  // The array of the second record begins at its base 2.
  EXPECT_EQ(series.survivors(series[1]).survivors(2, 2) & 1, 1U);
  series.clear();
  series.add(3, Dna("ACACACACAC"));
  series.judge();
  EXPECT_FALSE(series.survivors(series[0]).know(2));
}

TEST_F(RecordSeriesTest, LengthsThatRepeatsNeedAreNotLookedAt) {
  global_min_length = 1'000'000;
  RecordSeries series;
  for (unsigned number = 1; number <= 2; ++number) series.add(number, Dna("ACACACACACGT"));
  series.judge();
  EXPECT_EQ(series.survivors(series[0]).survivors(2, 0) & 1, 1U);
  EXPECT_EQ(series.survivors(series[0]).survivors(2, 9) & 1, 0U);
}

}  // namespace
}  // namespace vorlan
