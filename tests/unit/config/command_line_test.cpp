// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/command_line.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/captured_output.h"
#include "support/default_settings.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using ::testing::Eq;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

class CommandLine : public FreshSettings {
 protected:
  /// Parses "vorlan" with these arguments.
  static int parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vorlan");
    arguments.push_back(nullptr);
    return read_and_init_parameters(static_cast<int>(arguments.size()) - 1, arguments.data());
  }

  /// Parses these options and an input file; keeps the message.
  int parse_options(std::vector<const char*> arguments) {
    arguments.push_back("in.fa");
    CapturedStandardStream errors(stderr);
    const int result = parse(std::move(arguments));
    message_ = errors.text();
    return result;
  }

  /// For a child process: parses and tells the outcome on standard error.
  [[noreturn]] static void parse_and_tell(std::vector<const char*> arguments) {
    const int result = parse(std::move(arguments));
    std::fprintf(stderr, "%d <%s> <%s>\n", result, global_input_filename.c_str(),
                 global_output_filename.c_str());
    std::exit(7);
  }

  std::string message_;
};

using CommandLineDeathTest = CommandLine;

constexpr const char* kThresholdsTooSmall =
    "Sorry, either the minimum score or the minimum length must be larger.\n";
constexpr const char* kMismatchScoreTooLarge =
    "Sorry, the mismatch score must be smaller or equal to -2.\n";
constexpr const char* kIndelScoreTooLarge =
    "Sorry, the indel score must be smaller or equal to -2.\n";
constexpr const char* kRecursionDepthTooSmall =
    "Sorry, the recursion depth must be greater than 0.\n"
    "A value of 0 would corresponds to a perfect search.\n";
constexpr const char* kUnitLengthsCrossed =
    "I think you have made a mistake here: The maximum unit length must be greater\n"
    "or equal to the minimum unit length.\n";

TEST_F(CommandLine, WithoutOptionsEverySettingHasItsDefault) {
  EXPECT_EQ(parse_options({}), 0);
  EXPECT_EQ(message_, "");
  expect_default_settings();
}

TEST_F(CommandLine, SetsEverySetting) {
  EXPECT_EQ(parse_options({"--sequenceInfoAsComment",
                           "-N",
                           "3",
                           "--NsAsMissense",
                           "--preferShorterRepeats",
                           "--reportUnit",
                           "1",
                           "--NPerfectionMode",
                           "2",
                           "--printRepeatSeqMode",
                           "0",
                           "--outputFormat",
                           "3",
                           "--maskX",
                           "-f",
                           "12",
                           "--minPerfection",
                           "60.5",
                           "--maxPerfection",
                           "99.5",
                           "-D",
                           "--firstSeq",
                           "2",
                           "--lastSeq",
                           "9",
                           "-R",
                           "30",
                           "-r",
                           "7",
                           "-u",
                           "4",
                           "-U",
                           "8",
                           "--minLength_b",
                           "1.5",
                           "--minLength_a",
                           "-4",
                           "-l",
                           "20",
                           "--minScore_b",
                           "0.5",
                           "--minScore_a",
                           "5",
                           "-s",
                           "11",
                           "-m",
                           "-7",
                           "-g",
                           "-8",
                           "-M",
                           "exact"}),
            0);
  EXPECT_EQ(message_, "");
  EXPECT_TRUE(global_sequenceInfoAsComment);
  EXPECT_EQ(global_Ns_allowed_in_a_row, 3);
  EXPECT_TRUE(global_treat_Ns_as_missense);
  EXPECT_EQ(global_prefer_longer_repeat, 0);
  EXPECT_EQ(global_report_unit_mode, 1);
  EXPECT_EQ(global_N_and_perfection_mode, 2);
  EXPECT_EQ(global_print_sat_seq_mode, 0);
  EXPECT_EQ(global_print_sat_mode, 3);
  EXPECT_TRUE(global_mask_repeats);
  EXPECT_EQ(global_flanking, 12);
  EXPECT_EQ(global_min_perfection, 60.5F);
  EXPECT_EQ(global_max_perfection, 99.5F);
  EXPECT_FALSE(global_remove_mostly_hidden);
  EXPECT_EQ(global_sequence_from, 2);
  EXPECT_EQ(global_sequence_to, 9);
  EXPECT_EQ(global_maximum_scorereduction, 30);
  EXPECT_EQ(global_maximum_recursion_depth, 7);
  EXPECT_EQ(global_min_unit_length, 4U);
  EXPECT_EQ(global_max_unit_length, 8U);
  EXPECT_EQ(global_min_length_bx, 1.5F);
  EXPECT_EQ(global_min_length_a, -4);
  EXPECT_EQ(global_min_length, 20);
  EXPECT_EQ(global_min_score_bx, 0.5F);
  EXPECT_EQ(global_min_score_a, 5);
  EXPECT_EQ(global_min_score, 11);
  EXPECT_EQ(global_mismatch_score, -7);
  EXPECT_EQ(global_indel_score, -8);
  EXPECT_EQ(global_search_mode, 0);
}

TEST_F(CommandLine, LongNamesAreTheSameOptions) {
  EXPECT_EQ(parse_options({"--succN",
                           "1",
                           "--flanking",
                           "2",
                           "--dontRemoveMostlyOverlapping",
                           "--maximum_score_reduction",
                           "3",
                           "--recursion",
                           "4",
                           "--minUnitLen",
                           "5",
                           "--maxUnitLen",
                           "6",
                           "--minLength",
                           "7",
                           "--minScore",
                           "8",
                           "--mismatchScore",
                           "-9",
                           "--indelScore",
                           "-10",
                           "--searchMode",
                           "extendExact"}),
            0);
  EXPECT_EQ(global_Ns_allowed_in_a_row, 1);
  EXPECT_EQ(global_flanking, 2);
  EXPECT_FALSE(global_remove_mostly_hidden);
  EXPECT_EQ(global_maximum_scorereduction, 3);
  EXPECT_EQ(global_maximum_recursion_depth, 4);
  EXPECT_EQ(global_min_unit_length, 5U);
  EXPECT_EQ(global_max_unit_length, 6U);
  EXPECT_EQ(global_min_length, 7);
  EXPECT_EQ(global_min_score, 8);
  EXPECT_EQ(global_mismatch_score, -9);
  EXPECT_EQ(global_indel_score, -10);
  EXPECT_EQ(global_search_mode, 1);
}

TEST_F(CommandLine, TheSearchModeIsNamedInWords) {
  EXPECT_EQ(parse_options({"-M", "extendExact"}), 0);
  EXPECT_EQ(global_search_mode, 1);
  EXPECT_EQ(parse_options({"-M", "exact"}), 0);
  EXPECT_EQ(global_search_mode, 0);
  EXPECT_EQ(parse_options({"-M", "imperfect"}), 0);
  EXPECT_EQ(global_search_mode, 2);
  global_search_mode = 0;
  EXPECT_EQ(parse_options({}), 0);
  EXPECT_EQ(global_search_mode, 2);
}

TEST_F(CommandLine, ARecursionDepthOf0IsRefusedAlthoughItsHelpTextExplainsIt) {
  EXPECT_EQ(parse_options({"-r", "0"}), -1);
  EXPECT_EQ(message_, kRecursionDepthTooSmall);
  EXPECT_EQ(parse_options({"-M", "exact"}), 0);
}

TEST_F(CommandLine, AMinimumScoreOf1NeedsAMinimumLengthOf2) {
  EXPECT_EQ(parse_options({"-s", "1"}), -1);
  EXPECT_EQ(message_, kThresholdsTooSmall);
  EXPECT_EQ(parse_options({"-s", "1", "-l", "2"}), 0);
  EXPECT_EQ(parse_options({"-s", "2"}), 0);
}

// For unit length 1 the thresholds are 0 + 1.5: not rounded up to 2 here.
TEST_F(CommandLine, TheThresholdCheckDoesNotRoundUp) {
  EXPECT_EQ(parse_options({"-s", "0", "--minScore_b", "1.5"}), -1);
  EXPECT_EQ(message_, kThresholdsTooSmall);
  EXPECT_EQ(parse_options({"-s", "0", "--minScore_a", "1", "--minScore_b", "1"}), 0);
  EXPECT_EQ(parse_options({"-s", "0", "--minLength_b", "1.75"}), -1);
  EXPECT_EQ(parse_options({"-s", "0", "--minLength_b", "2"}), 0);
}

TEST_F(CommandLine, AMismatchScoreAboveMinus2IsRefused) {
  EXPECT_EQ(parse_options({"-m", "-1"}), -1);
  EXPECT_EQ(message_, kMismatchScoreTooLarge);
  EXPECT_EQ(parse_options({"-m", "-2"}), 0);
}

TEST_F(CommandLine, AnIndelScoreAboveMinus2IsRefused) {
  EXPECT_EQ(parse_options({"-g", "-1"}), -1);
  EXPECT_EQ(message_, kIndelScoreTooLarge);
  EXPECT_EQ(parse_options({"-g", "-2"}), 0);
}

TEST_F(CommandLine, NegativeCountsBecome0WithoutAMessage) {
  EXPECT_EQ(parse_options({"-N", "-3", "-f", "-1"}), 0);
  EXPECT_EQ(message_, "");
  EXPECT_EQ(global_Ns_allowed_in_a_row, 0);
  EXPECT_EQ(global_flanking, 0);
}

TEST_F(CommandLine, TheMaximumUnitLengthMustReachTheMinimum) {
  EXPECT_EQ(parse_options({"-u", "5", "-U", "4"}), -1);
  EXPECT_EQ(message_, kUnitLengthsCrossed);
  EXPECT_EQ(parse_options({"-u", "4", "-U", "4"}), 0);
}

TEST_F(CommandLine, UnitLengthsAreComparedAsUnsigned) {
  EXPECT_EQ(parse_options({"-U", "4294967295"}), 0);
  EXPECT_EQ(global_max_unit_length, UINT_MAX);
}

TEST_F(CommandLine, AMinimumUnitLengthOf0IsRefusedAfterTheRecursionDepth) {
  EXPECT_EQ(parse_options({"-u", "0", "-r", "0"}), -1);
  EXPECT_EQ(message_, kRecursionDepthTooSmall);
  EXPECT_EQ(parse_options({"-u", "0"}), -1);
  EXPECT_EQ(message_, "Sorry, the minimum unit length must be greater than 0.\n");
  EXPECT_EQ(parse_options({"-u", "0", "-U", "0"}), -1);
  EXPECT_EQ(message_, "Sorry, the minimum unit length must be greater than 0.\n");
}

TEST_F(CommandLine, UnknownChoicesAreRefusedWithTheirValue) {
  const std::string begin = "Sorry, a problem occured when parsing the command line options. ";
  EXPECT_EQ(parse_options({"--outputFormat", "5"}), -2);
  EXPECT_EQ(message_, begin + "An outputFormat with a value of 5 is unknown.\n\n");
  EXPECT_EQ(parse_options({"--outputFormat", "-1"}), -2);
  EXPECT_EQ(message_, begin + "An outputFormat with a value of -1 is unknown.\n\n");
  EXPECT_EQ(parse_options({"--printRepeatSeqMode", "3"}), -2);
  EXPECT_EQ(message_, begin + "A printRepeatSeqMode with a value of 3 is unknown.\n\n");
  EXPECT_EQ(parse_options({"--reportUnit", "3"}), -2);
  EXPECT_EQ(message_, begin + "An option value of 3 for the reportUnit option is unknown.\n\n");
}

TEST_F(CommandLine, AnUnknownNPerfectionModeIsReportedUnderTheNameReportUnit) {
  EXPECT_EQ(parse_options({"--NPerfectionMode", "3"}), -2);
  EXPECT_EQ(message_,
            "Sorry, a problem occured when parsing the command line options. An option value of 3 "
            "for the reportUnit option is unknown.\n\n");
}

TEST_F(CommandLine, ChoicesAreCheckedInTheirOrder) {
  EXPECT_EQ(parse_options({"--reportUnit", "6", "--NPerfectionMode", "7", "--printRepeatSeqMode",
                           "8", "--outputFormat", "9"}),
            -2);
  EXPECT_THAT(message_, HasSubstr("outputFormat with a value of 9"));
  EXPECT_EQ(
      parse_options({"--reportUnit", "6", "--NPerfectionMode", "7", "--printRepeatSeqMode", "8"}),
      -2);
  EXPECT_THAT(message_, HasSubstr("printRepeatSeqMode with a value of 8"));
  EXPECT_EQ(parse_options({"--reportUnit", "6", "--NPerfectionMode", "7"}), -2);
  EXPECT_THAT(message_, HasSubstr("An option value of 7"));
}

TEST_F(CommandLine, ChoicesAreCheckedBeforeCombinationsAndTheseInTheirOrder) {
  EXPECT_EQ(parse_options({"-s", "1", "--outputFormat", "9"}), -2);
  EXPECT_EQ(parse_options({"-u", "5", "-U", "4", "-r", "0", "-g", "0", "-m", "0", "-s", "1"}), -1);
  EXPECT_EQ(message_, kThresholdsTooSmall);
  EXPECT_EQ(parse_options({"-u", "5", "-U", "4", "-r", "0", "-g", "0", "-m", "0"}), -1);
  EXPECT_EQ(message_, kMismatchScoreTooLarge);
  EXPECT_EQ(parse_options({"-u", "5", "-U", "4", "-r", "0", "-g", "0"}), -1);
  EXPECT_EQ(message_, kIndelScoreTooLarge);
  EXPECT_EQ(parse_options({"-u", "5", "-U", "4", "-r", "0"}), -1);
  EXPECT_EQ(message_, kRecursionDepthTooSmall);
}

TEST_F(CommandLine, AMissingFileNameIsReportedBeforeAnythingElse) {
  CapturedStandardStream errors(stderr);
  EXPECT_EQ(parse({"--outputFormat", "9", "-s", "1"}), -1);
  EXPECT_EQ(errors.text(),
            "Error: No input file has been specified. Type vorlan --help for more information.\n");
}

TEST_F(CommandLine, OneFileNameIsTheInput) {
  EXPECT_EQ(parse({"in.fa"}), 0);
  EXPECT_EQ(global_input_filename, "in.fa");
  EXPECT_EQ(global_output_filename, "");
}

TEST_F(CommandLine, TwoFileNamesAreInputAndOutput) {
  EXPECT_EQ(parse({"in.fa", "-s", "7", "out.txt"}), 0);
  EXPECT_EQ(global_input_filename, "in.fa");
  EXPECT_EQ(global_output_filename, "out.txt");
  EXPECT_EQ(global_min_score, 7);
}

TEST_F(CommandLine, OfThreeFileNamesNoneIsTaken) {
  EXPECT_EQ(parse({"a", "b", "c"}), 0);
  EXPECT_EQ(global_input_filename, "");
  EXPECT_EQ(global_output_filename, "");
}

TEST_F(CommandLine, ALoneMinusIsAFileName) {
  EXPECT_EQ(parse({"-"}), 0);
  EXPECT_EQ(global_input_filename, "-");
}

// In a child process: "--" puts the parser's library into a state that would last.
TEST_F(CommandLineDeathTest, BehindTwoMinusesNamesMayBeginWithAMinus) {
  EXPECT_EXIT(parse_and_tell({"--", "-in.fa", "--out"}), ExitedWithCode(7),
              Eq("0 <-in.fa> <--out>\n"));
}

TEST_F(CommandLineDeathTest, AnUnknownOptionIsNotTakenForAFileName) {
  EXPECT_EXIT(parse_and_tell({"in.fa", "--foo"}), ExitedWithCode(1), HasSubstr("--foo"));
  EXPECT_EXIT(parse_and_tell({"-x", "in.fa"}), ExitedWithCode(1), HasSubstr("-x"));
}

TEST_F(CommandLineDeathTest, FaultsThatTheParserFindsEndTheProcessWithStatus1) {
  EXPECT_EXIT(parse_and_tell({"in.fa", "-s"}), ExitedWithCode(1), HasSubstr("minScore"));
  EXPECT_EXIT(parse_and_tell({"in.fa", "-s", "many"}), ExitedWithCode(1), HasSubstr("many"));
  EXPECT_EXIT(parse_and_tell({"in.fa", "-s", "6", "-s", "7"}), ExitedWithCode(1),
              HasSubstr("minScore"));
  EXPECT_EXIT(parse_and_tell({"in.fa", "-M", "Exact"}), ExitedWithCode(1), HasSubstr("searchMode"));
}

TEST_F(CommandLineDeathTest, HelpAndVersionEndTheProcessWithStatus0) {
  const std::string version =
      "3.3.10.\nThis is a " + std::to_string(sizeof(void*) * CHAR_BIT) + " bit version of Vorlan.";
  EXPECT_EXIT(
      {
        send_standard_output_to_standard_error();
        parse_and_tell({"--version"});
      },
      ExitedWithCode(0), HasSubstr(version));
  EXPECT_EXIT(
      {
        send_standard_output_to_standard_error();
        parse_and_tell({"--help"});
      },
      ExitedWithCode(0),
      HasSubstr("This program searches for tandemly repeated patterns in DNA sequences."));
}

}  // namespace
}  // namespace vorlan
