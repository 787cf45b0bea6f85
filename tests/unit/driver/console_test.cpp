// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/console.h"

#include <gmock/gmock.h>

#include <ctime>
#include <functional>
#include <string>

#include "support/captured_output.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

using Console = FreshSettings;

/// Runs `action` with the current time until the clock did not move on meanwhile, so that what it
/// finds belongs to that second.
void within_one_second(const std::function<void(std::int64_t now)>& action) {
  std::time_t before = 0;
  do {
    before = std::time(nullptr);
    action(before);
  } while (std::time(nullptr) != before);
}

std::string progress_line(std::int64_t seconds_since_start, unsigned sequence_number,
                          const std::string& name, unsigned unit_length) {
  std::string line;
  within_one_second([&](std::int64_t now) {
    time_analysis_started = static_cast<std::time_t>(now - seconds_since_start);
    CapturedStandardStream errors(stderr);
    report_status(sequence_number, name.c_str(), unit_length, 'r');
    line = errors.text();
  });
  return line;
}

std::string on_standard_error(const std::function<void()>& action) {
  CapturedStandardStream errors(stderr);
  action();
  return errors.text();
}

TEST_F(Console, AProgressLineShowsTimeRecordUnitLengthAndName) {
  // 3725 = 1 h 2 min 5 s
  EXPECT_EQ(progress_line(3725, 12, "chr1", 4), "01.02.05 - #  12 -    4bp - chr1\n");
  EXPECT_EQ(progress_line(0, 1, "s", 10), "00.00.00 - #   1 -   10bp - s\n");
  EXPECT_EQ(progress_line(86399, 1234, "s", 12345), "23.59.59 - # 1234 - 12345bp - s\n");
}

TEST_F(Console, HoursGrowPastTwoDigits) {
  EXPECT_EQ(progress_line(360000, 1, "s", 1), "100.00.00 - #   1 -    1bp - s\n");
}

// The elapsed time is an unsigned 32-bit number and hours a signed 16-bit one: 32768 hours wrap,
// and a clock put back by one second gives 2^32 - 1 s = 1193046 h 28 min 15 s, of which hours
// modulo 65536 are 13398.
TEST_F(Console, TimesBeyondTheirWidthWrap) {
  EXPECT_EQ(progress_line(std::int64_t{32768} * 3600, 1, "s", 1),
            "-32768.00.00 - #   1 -    1bp - s\n");
  EXPECT_EQ(progress_line(-1, 1, "s", 1), "13398.28.15 - #   1 -    1bp - s\n");
}

TEST_F(Console, ANameIsCutAfter70Bytes) {
  const std::string first_70 = std::string(69, 'a') + "b";
  EXPECT_EQ(progress_line(0, 1, first_70 + std::string(30, 'c'), 1),
            "00.00.00 - #   1 -    1bp - " + first_70 + "\n");
}

TEST_F(Console, ANameMayHoldPerCentSigns) {
  EXPECT_EQ(progress_line(0, 1, "%s%n%%", 1), "00.00.00 - #   1 -    1bp - %s%n%%\n");
}

// Instead of waiting, the time at which the next line is due is moved towards now.
TEST_F(Console, ATimedLineIsDueAgain60SecondsAfterTheLastOne) {
  within_one_second([](std::int64_t now) {
    time_next_status_report = now - 1;
    const bool first = check_report_status();
    const bool again = check_report_status();
    time_next_status_report -= 59;
    const bool after_59_seconds = check_report_status();
    time_next_status_report -= 1;
    const bool after_60_seconds = check_report_status();
    if (std::time(nullptr) != now) return;
    EXPECT_TRUE(first);
    EXPECT_FALSE(again);
    EXPECT_FALSE(after_59_seconds);
    EXPECT_TRUE(after_60_seconds);
  });
}

TEST_F(Console, ALineThatIsNotDueYetChangesNothing) {
  within_one_second([](std::int64_t now) {
    time_next_status_report = now;
    const bool due = check_report_status();
    if (std::time(nullptr) != now) return;
    EXPECT_FALSE(due);
    EXPECT_EQ(time_next_status_report, now);
  });
}

TEST_F(Console, ALineThatIsDuePutsTheNextOneOffBy59Seconds) {
  within_one_second([](std::int64_t now) {
    time_next_status_report = 0;
    const bool due = check_report_status();
    if (std::time(nullptr) != now) return;
    EXPECT_TRUE(due);
    EXPECT_EQ(time_next_status_report, now + 59);
  });
}

TEST_F(Console, UpdatingTheReportTimePutsTheNextLineOffBy59Seconds) {
  within_one_second([](std::int64_t now) {
    time_next_status_report = 0;
    update_report_time();
    if (std::time(nullptr) != now) return;
    EXPECT_EQ(time_next_status_report, now + 59);
  });
}

TEST_F(Console, PiecesOfAMessageAreWrittenOneBehindTheOther) {
  CapturedStream out;
  general_PrintMessage(out.stream(), "a");
  general_PrintMessage(out.stream(), "b", "c");
  general_PrintMessage(out.stream(), "1", "2", "3", "4", "5\n");
  EXPECT_EQ(out.text(), "abc12345\n");
}

TEST_F(Console, TwoPerCentSignsInAPieceAreOne) {
  CapturedStream out;
  general_PrintMessage(out.stream(), "10 %% - ", "%%%%", "%%\n");
  EXPECT_EQ(out.text(), "10 % - %%%\n");
  EXPECT_EQ(on_standard_error([] { general_PrintMessage(stderr, "5 %%", " %%%%\n"); }), "5 % %%\n");
}

TEST_F(Console, TextsOfTheUserAreWrittenByteForByte) {
  using namespace std::string_view_literals;
  CapturedStream out;
  general_PrintText(out.stream(), "%s%n%%\0x"sv);
  EXPECT_EQ(out.text(), "%s%n%%\0x"sv);
}

TEST_F(Console, TheBannerNamesProgramAndVersionAndEndsWithABlankLine) {
  CapturedStream out;
  vorlan_welcome(out.stream());
  const std::string banner = out.text();
  EXPECT_THAT(banner, StartsWith("\n\n      Welcome to Vorlan, version 3.3.10,\n"
                                 "      a microsatellite and satellite search tool.\n      "));
  EXPECT_THAT(banner, EndsWith(".\n\n"));
}

TEST_F(Console, TheCreatorIsNamedBehindThePrefix) {
  CapturedStream out;
  creator_message(out.stream(), "# ");
  creator_message(out.stream(), "");
  EXPECT_EQ(out.text(),
            "# Results computed with:\n#    Vorlan, version 3.3.10\n"
            "Results computed with:\n   Vorlan, version 3.3.10\n");
}

TEST_F(Console, TheClosingLineOfTheReportDependsOnTheFormat) {
  const auto closing_line = [](int format) {
    global_print_sat_mode = format;
    CapturedStream out;
    EXPECT_EQ(on_standard_error([&out] { good_bye(out.stream()); }),
              "\nAnalysis finished successfully.\n\nVorlan says goodbye.\n\n");
    return out.text();
  };
  EXPECT_EQ(closing_line(kFormatVorlan), "## Finished successfully. ##\n");
  EXPECT_EQ(closing_line(kFormatExtended), "## Finished successfully. ##\n");
  EXPECT_EQ(closing_line(kFormatGff), "# End tandem repeats\n");
  EXPECT_EQ(closing_line(kFormatOnePerLine), "## Finished successfully. ##\n");
  EXPECT_EQ(closing_line(kFormatFasta), "");
}

TEST_F(Console, AnEarlyEndIsExplainedByItsCode) {
  const auto closing_words = [](int code) {
    return on_standard_error([code] { good_bye_on_error(code); });
  };
  EXPECT_EQ(closing_words(-2), "\nAnalysis has been aborted due to errors. Error number: -2\n\n");
  EXPECT_EQ(closing_words(-101),
            "\nAnalysis has been aborted due to errors. Error number: -101\n\n");
  EXPECT_EQ(closing_words(-1), "\n\n");
  EXPECT_EQ(closing_words(0), "");
  EXPECT_EQ(closing_words(1), "\nAnalysis has been stopped by the user.\n\n");
}

TEST_F(Console, SearchesSeeTheSameConsole) {
  const SearchConsole console = search_console();
  EXPECT_EQ(console.check_report_status, &check_report_status);
  EXPECT_EQ(console.report_status, &report_status);
  EXPECT_EQ(on_standard_error([&] { console.announce("  Searching.\n"); }), "  Searching.\n");
}

}  // namespace
}  // namespace vorlan
