// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/head.h"

#include <gtest/gtest.h>

#include "errors.h"
#include "temporary_file.h"

namespace vorlan_tools {
namespace {

/// The head of a run with default settings on t.fa, as the manual lays it out.
const std::string kDefaultHead =
    "# Results computed with:\n"
    "#    Vorlan, version 3.3.10\n"
    "# Parameter settings used in this search: \n"
    "# Input file name:                         t.fa\n"
    "#    Sequence range to process:            1 - last sequence\n"
    "#    Satellites searched for:              imperfect repeats\n"
    "#    Recursion depth:                      5\n"
    "#    Maximum score reduction:              -\n"
    "#    Minimum unit length:                  1\n"
    "#    Maximum unit length:                  10\n"
    "#    Minimum score:                        maximum (6, 0+1*unitlength )\n"
    "#    Minimum length:                       maximum (0, -3+0.5*unitlength )\n"
    "#    Min. to max. perfection range:        0 % - 100 %\n"
    "#    Treat N's as:                         neutral\n"
    "#    Max. succesive N's allowed:           2\n"
    "#    Mismatch score:                       -5\n"
    "#    Indel score:                          -7\n"
    "#    Show shorter (not longer) of two repeat variants with equal score:  no\n"
    "#    Number of flanking nucletides:        0\n"
    "#    Remove mostly overlapping satellites: yes\n"
    "#    Write file with masked seq.:          no\n"
    "#    Computing perfections treat N's:      asMismatch\n"
    "#    Report units as:                      alphabetical normal form using reverse complement\n"
    "#    Output format:                        fasta format\n"
    "#    Print sequence mode:                  print alignment\n";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  if (at == std::string::npos) throw std::logic_error("nothing to replace");
  return text.replace(at, from.size(), to);
}

Head head_of(const std::string& text) {
  const TemporaryFile file(text);
  LineReader lines(file.path());
  return read_head(lines);
}

TEST(Head, SettingsAreReadAsValues) {
  const Head head = head_of(kDefaultHead);
  EXPECT_EQ(head.version, "3.3.10");
  EXPECT_EQ(head.input_name, "t.fa");
  EXPECT_FALSE(head.output_name);
  EXPECT_EQ(head.settings.format, Format::kFasta);
  EXPECT_EQ(head.settings.first_sequence, 1U);
  EXPECT_FALSE(head.settings.last_sequence);
  EXPECT_EQ(head.settings.recursion_depth, 5);
  EXPECT_FALSE(head.settings.max_score_reduction);
  EXPECT_EQ(head.settings.min_score.constant, 6);
  EXPECT_EQ(head.settings.min_length.intercept, -3);
  EXPECT_EQ(head.settings.min_length.slope, 0.5F);
  EXPECT_EQ(head.settings.indel_score, -7);
  EXPECT_EQ(head.settings.unit_mode, UnitMode::kReverseComplement);
  EXPECT_EQ(head.closing_line(), "");
}

TEST(Head, BodyBeginsBehindTheLastLineOfTheHead) {
  const TemporaryFile file(kDefaultHead + ">#\nACGT\n");
  LineReader lines(file.path());
  read_head(lines);
  std::string_view line;
  ASSERT_TRUE(lines.next(line));
  EXPECT_EQ(line, ">#");
}

TEST(Head, NamesMayHoldLineFeedsAndLookLikeSettings) {
  const std::string odd = "a\n# End tandem repeats\n\nb";
  const Head head = head_of(
      replaced(kDefaultHead, "t.fa\n",
               odd + "\n# Output file name:                        #    Sequence\nrange\n"));
  EXPECT_EQ(head.input_name, odd);
  EXPECT_EQ(head.output_name, "#    Sequence\nrange");
}

TEST(Head, TextForPutsNamesAndRangeInPlace) {
  const Head head = head_of(replaced(kDefaultHead, "1 - last sequence", "3 - 7"));
  EXPECT_EQ(head.settings.first_sequence, 3U);
  EXPECT_EQ(head.settings.last_sequence, 7U);
  EXPECT_EQ(head.text_for("t.fa", std::nullopt, 1, std::nullopt), kDefaultHead);
  EXPECT_EQ(head.text_for("t.fa", "r.txt", 1, 9U),
            replaced(replaced(kDefaultHead, "t.fa\n",
                              "t.fa\n# Output file name:                        r.txt\n"),
                     "1 - last sequence", "1 - 9"));
}

TEST(Head, SettingsAreComparedWithoutNamesAndRange) {
  const Head head = head_of(kDefaultHead);
  EXPECT_TRUE(head.has_same_settings(head_of(replaced(kDefaultHead, "t.fa", "u.fa"))));
  EXPECT_TRUE(head.has_same_settings(head_of(replaced(kDefaultHead, "1 - last", "2 - last"))));
  EXPECT_FALSE(head.has_same_settings(head_of(replaced(kDefaultHead, "3.3.10", "3.3.9"))));
  EXPECT_FALSE(head.has_same_settings(head_of(replaced(kDefaultHead, "-5", "-6"))));
}

TEST(Head, EveryLineMustBeInItsPlace) {
  std::size_t begin = 0;
  while (begin < kDefaultHead.size()) {
    const std::size_t end = kDefaultHead.find('\n', begin) + 1;
    const std::string without = kDefaultHead.substr(0, begin) + kDefaultHead.substr(end);
    EXPECT_THROW(head_of(without), DataError) << kDefaultHead.substr(begin, end - begin);
    EXPECT_THROW(head_of(kDefaultHead.substr(0, end - 1)), DataError);
    begin = end;
  }
}

}  // namespace
}  // namespace vorlan_tools
