// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/parameter_report.h"

#include <gmock/gmock.h>

#include <string>

#include "driver/console.h"
#include "support/captured_output.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ParameterReport : public FreshSettings {
 protected:
  ParameterReport() { global_input_filename = "in.fa"; }

  static std::string report(const char* prefix = "") {
    CapturedStream out;
    print_search_parameters(out.stream(), prefix);
    return out.text();
  }
};

constexpr const char* kDefaultReport =
    "Parameter settings used in this search: \n"
    "Input file name:                         in.fa\n"
    "   Sequence range to process:            1 - last sequence\n"
    "   Satellites searched for:              imperfect repeats\n"
    "   Recursion depth:                      5\n"
    "   Maximum score reduction:              -\n"
    "   Minimum unit length:                  1\n"
    "   Maximum unit length:                  10\n"
    "   Minimum score:                        maximum (6, 0+1*unitlength )\n"
    "   Minimum length:                       maximum (0, 0+0*unitlength )\n"
    "   Min. to max. perfection range:        0 % - 100 %\n"
    "   Treat N's as:                         neutral\n"
    "   Max. succesive N's allowed:           2\n"
    "   Mismatch score:                       -5\n"
    "   Indel score:                          -5\n"
    "   Show shorter (not longer) of two repeat variants with equal score:  no\n"
    "   Number of flanking nucletides:        0\n"
    "   Remove mostly overlapping satellites: yes\n"
    "   Write file with masked seq.:          no\n"
    "   Computing perfections treat N's:      asMismatch\n"
    "   Report units as:                      alphabetical normal form using reverse complement\n"
    "   Output format:                        extended vorlan format\n"
    "   Print sequence mode:                  print alignment\n";

TEST_F(ParameterReport, ShowsTheDefaults) { EXPECT_EQ(report(), kDefaultReport); }

TEST_F(ParameterReport, EveryLineBeginsWithThePrefix) {
  std::string expected = "# ";
  for (const char* byte = kDefaultReport; *byte != '\0'; ++byte) {
    expected += *byte;
    if (*byte == '\n' && byte[1] != '\0') expected += "# ";
  }
  EXPECT_EQ(report("# "), expected);
}

TEST_F(ParameterReport, ShowsEverySettingThatIsNotAtItsDefault) {
  global_output_filename = "out.txt";
  global_sequence_from = 3;
  global_sequence_to = 4;
  global_search_mode = kExtendExact;
  global_maximum_recursion_depth = 7;
  global_maximum_scorereduction = 30;
  global_min_unit_length = 2;
  global_max_unit_length = 4294967295U;
  global_min_score = -8;
  global_min_score_a = -3;
  global_min_score_bx = 1.5F;
  global_min_length = 20;
  global_min_length_a = 4;
  global_min_length_bx = 0.1F;
  global_min_perfection = 60.5F;
  global_max_perfection = 99.0F;
  global_treat_Ns_as_missense = true;
  global_Ns_allowed_in_a_row = 0;
  global_mismatch_score = -7;
  global_indel_score = -9;
  global_prefer_longer_repeat = 0;
  global_flanking = 50;
  global_remove_mostly_hidden = false;
  global_mask_repeats = true;
  global_N_and_perfection_mode = kNsAsNeutral;
  global_report_unit_mode = kUnitAsIs;
  global_print_sat_mode = kFormatVorlan;
  global_print_sat_seq_mode = kNoSequence;
  EXPECT_EQ(report(),
            "Parameter settings used in this search: \n"
            "Input file name:                         in.fa\n"
            "Output file name:                        out.txt\n"
            "   Sequence range to process:            3 - 4\n"
            "   Satellites searched for:              exact repeats which are extended to "
            "imperfect repeats\n"
            "   Recursion depth:                      7\n"
            "   Maximum score reduction:              30\n"
            "   Minimum unit length:                  2\n"
            "   Maximum unit length:                  4294967295\n"
            "   Minimum score:                        maximum (-8, -3+1.5*unitlength )\n"
            "   Minimum length:                       maximum (20, 4+0.1*unitlength )\n"
            "   Min. to max. perfection range:        60.5 % - 99 %\n"
            "   Treat N's as:                         missense\n"
            "   Max. succesive N's allowed:           0\n"
            "   Mismatch score:                       -7\n"
            "   Indel score:                          -9\n"
            "   Show shorter (not longer) of two repeat variants with equal score:  yes\n"
            "   Number of flanking nucletides:        50\n"
            "   Remove mostly overlapping satellites: no\n"
            "   Write file with masked seq.:          yes\n"
            "   Computing perfections treat N's:      asNeutral\n"
            "   Report units as:                      as they are\n"
            "   Output format:                        vorlan format\n"
            "   Print sequence mode:                  don't print sequence\n");
}

TEST_F(ParameterReport, ExactModeHasNoLinesAboutAlignments) {
  global_search_mode = kExact;
  const std::string text = report();
  EXPECT_THAT(text, HasSubstr("   Satellites searched for:              exact repeats\n"
                              "   Minimum unit length:  "));
  EXPECT_THAT(text, HasSubstr("   Max. succesive N's allowed:           2\n"
                              "   Show shorter "));
  EXPECT_THAT(text, Not(HasSubstr("Recursion")));
  EXPECT_THAT(text, Not(HasSubstr("reduction")));
  EXPECT_THAT(text, Not(HasSubstr("Mismatch score")));
  EXPECT_THAT(text, Not(HasSubstr("Indel")));
}

TEST_F(ParameterReport, TabSeparatedFormatsHaveTabsAndOneMoreLine) {
  global_search_mode = kExact;
  global_print_sat_mode = kFormatGff;
  EXPECT_EQ(report(),
            "Parameter settings used in this search:\t\n"
            "Input file name:                        \tin.fa\n"
            "   Sequence range to process:           \t1 - last sequence\n"
            "   Satellites searched for:             \texact repeats\n"
            "   Minimum unit length:                 \t1\n"
            "   Maximum unit length:                 \t10\n"
            "   Minimum score:                       \tmaximum (6, 0+1*unitlength )\n"
            "   Minimum length:                      \tmaximum (0, 0+0*unitlength )\n"
            "   Min. to max. perfection range:       \t0 % - 100 %\n"
            "   Treat N's as:                        \tneutral\n"
            "   Max. succesive N's allowed:          \t2\n"
            "   Show shorter (not longer) of two repeat variants with equal score: \tno\n"
            "   Number of flanking nucletides:       \t0\n"
            "   Remove mostly overlapping satellites:\tyes\n"
            "   Write file with masked seq.:         \tno\n"
            "   Computing perfections treat N's:     \tasMismatch\n"
            "   Report units as:                     \talphabetical normal form using reverse "
            "complement\n"
            "   Output format:                       \tgff\n"
            "   Print sequence mode:                 \tprint alignment\n"
            "   Print seq. info as comment:          \tno\n");
  global_print_sat_mode = kFormatOnePerLine;
  global_sequenceInfoAsComment = true;
  const std::string text = report();
  EXPECT_THAT(text, HasSubstr("   Output format:                       \tone-per-line format\n"));
  EXPECT_THAT(text, HasSubstr("   Print seq. info as comment:          \tyes\n"));
}

TEST_F(ParameterReport, NamesEveryChoice) {
  global_print_sat_seq_mode = kSequence;
  global_N_and_perfection_mode = kNsAsMatch;
  global_report_unit_mode = kUnitMinimal;
  const std::string text = report();
  EXPECT_THAT(text, HasSubstr("   Computing perfections treat N's:      asMatch\n"
                              "   Report units as:                      alphabetical normal form\n"
                              "   Output format:  "));
  EXPECT_THAT(text, HasSubstr("   Print sequence mode:                  print sequence\n"));
  global_print_sat_mode = kFormatFasta;
  EXPECT_THAT(report(), HasSubstr("   Output format:                        fasta format\n"));
  global_print_sat_mode = kFormatOld;
  EXPECT_THAT(report(), HasSubstr("   Output format:                        old format\n"));
}

TEST_F(ParameterReport, AnUnknownFormatLeavesItsLineUnfinished) {
  global_print_sat_mode = 6;
  EXPECT_THAT(report(), HasSubstr("   Output format:                           Print sequence"));
}

TEST_F(ParameterReport, SequenceNumbersAreShownAsUnsigned) {
  global_sequence_from = -1;
  global_sequence_to = -2;
  EXPECT_THAT(report(), HasSubstr("   Sequence range to process:            4294967295 - "
                                  "4294967294\n"));
}

TEST_F(ParameterReport, FileNamesAreShownAsTheyAre) {
  global_input_filename = "%s%%n.fa";
  EXPECT_THAT(report(), HasSubstr("Input file name:                         %s%%n.fa\n"));
}

}  // namespace
}  // namespace vorlan
