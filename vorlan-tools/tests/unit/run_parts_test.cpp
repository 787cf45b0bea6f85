// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gtest/gtest.h>

#include <limits>

#include "errors.h"
#include "run/progress.h"
#include "run/slice.h"
#include "run/vorlan_arguments.h"

namespace vorlan_tools {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

Slice slice(std::uint64_t before, std::uint64_t records) {
  Slice result;
  result.records_before = before;
  result.counts.records = records;
  return result;
}

TEST(RangeWithin, selects_the_same_records_as_the_whole_range) {
  // Every range over 6 records, every slice of them: a record is selected in the slice if and only
  // if it is in the whole.
  for (std::uint32_t first = 0; first < 8; ++first) {
    for (std::uint32_t last = 0; last < 9; ++last) {
      RecordRange whole{first, last};
      if (last == 8) whole.last.reset();
      for (std::uint64_t before = 0; before < 6; ++before) {
        for (std::uint64_t records = 1; before + records <= 6; ++records) {
          const RecordRange within = range_within(whole, slice(before, records));
          for (std::uint64_t number = 1; number <= records; ++number) {
            const std::uint64_t global = before + number;
            const bool expected = global >= first && (!whole.last || global <= *whole.last);
            const bool found = number >= within.first && (!within.last || number <= *within.last);
            ASSERT_EQ(found, expected)
                << first << '-' << last << " slice " << before << '+' << records;
          }
        }
      }
    }
  }
}

TEST(RangeWithin, leaves_the_usual_range_as_it_is) {
  EXPECT_EQ(range_within({}, slice(0, 3)), RecordRange{});
  EXPECT_EQ(range_within({}, slice(3, 3)), RecordRange{});
  EXPECT_EQ(range_within({kNone, {}}, slice(0, 3)), (RecordRange{kNone, {}}));
}

TEST(VorlanArguments, values_are_values_whatever_they_look_like) {
  const VorlanArguments parts =
      take_apart({"-l", "-f", "in.fa", "--firstSeq", "--lastSeq", "-D", "out"});
  EXPECT_EQ(parts.settings, (std::vector<std::string>{"-l", "-f", "-D"}));
  EXPECT_EQ(parts.range, (std::vector<std::string>{"--firstSeq", "--lastSeq"}));
  EXPECT_EQ(parts.names, (std::vector<std::string>{"in.fa", "out"}));
  EXPECT_FALSE(parts.masks);
}

TEST(VorlanArguments, behind_two_hyphens_all_are_names) {
  const VorlanArguments parts = take_apart({"-", "--maskX", "--", "-l", "--", ""});
  EXPECT_EQ(parts.names, (std::vector<std::string>{"-", "-l", "--", ""}));
  EXPECT_TRUE(parts.masks);
}

TEST(VorlanArguments, unknown_options_and_missing_values_are_refused) {
  EXPECT_THROW(take_apart({"--fast"}), UsageError);
  EXPECT_THROW(take_apart({"-l5"}), UsageError);
  EXPECT_THROW(take_apart({"-l"}), UsageError);
}

TEST(ProgressText, tells_share_rate_and_time_left) {
  ProgressState state;
  EXPECT_EQ(progress_text(state), "0 bp, 0 records");
  state = {.bases = 12'300'000, .records = 17, .share = 0.25, .seconds = 10, .resumed_bases = 0};
  EXPECT_EQ(progress_text(state), " 25 %, 12.30 Mbp, 17 records, 1.23 Mbp/s, 0:30 left");
}

TEST(ProgressText, what_an_earlier_run_has_searched_does_not_count_for_the_rate) {
  // 1 Mbp in 10 s; three quarters, 9 Mbp, are left.
  const ProgressState state{
      .bases = 3'000'000, .records = 1, .share = 0.25, .seconds = 10, .resumed_bases = 2'000'000};
  EXPECT_EQ(progress_text(state), " 25 %, 3.00 Mbp, 1 record, 100.0 kbp/s, 1:30 left");
}

TEST(ProgressText, hours_and_gigabases) {
  const ProgressState state{
      .bases = 1'500'000'000, .records = 9, .share = 0.5, .seconds = 7325, .resumed_bases = 0};
  EXPECT_EQ(progress_text(state), " 50 %, 1.50 Gbp, 9 records, 204.8 kbp/s, 2:02:05 left");
}

}  // namespace
}  // namespace vorlan_tools
