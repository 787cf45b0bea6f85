// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gtest/gtest.h>

#include <string>

#include "output/report.h"
#include "support/captured_output.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

class Legend : public FreshSettings {
 protected:
  static std::string in_format(int format) {
    global_print_sat_mode = format;
    CapturedStream out;
    print_output_format(out.stream(), "# ");
    return out.text();
  }
};

const std::string kCommonColumns =
    "# \n"
    "# Columns in lines of output providing repeat information:\n"
    "# Column  1: Repeat unit length\n"
    "# Column  2: Position at which repeat starts in current sequence\n"
    "# Column  3: Position at which repeat ends in current sequence\n"
    "# Column  4: Length of repeat in original sequence, i.e. (end-start+1)\n"
    "# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)\n"
    "# Column  6: Repeat score\n"
    "# Column  7: Repeat perfection\n";

TEST_F(Legend, OfTheVorlanFormatHas8Columns) {
  EXPECT_EQ(in_format(kFormatVorlan), kCommonColumns + "# Column  8: Repeat unit\n# \n");
  EXPECT_EQ(in_format(kFormatOld), kCommonColumns + "# Column  8: Repeat unit\n# \n");
}

TEST_F(Legend, OfTheExtendedFormatHas12Columns) {
  EXPECT_EQ(in_format(kFormatExtended), kCommonColumns +
                                            "# Column  8: Number of mismatches\n"
                                            "# Column  9: Number of insertions\n"
                                            "# Column 10: Number of deletions\n"
                                            "# Column 11: Number of N's\n"
                                            "# Column 12: Repeat unit\n"
                                            "# \n");
}

TEST_F(Legend, OfTheExtendedFormatHasNoColumnOfNThatAreMissense) {
  global_treat_Ns_as_missense = true;
  EXPECT_EQ(in_format(kFormatExtended), kCommonColumns +
                                            "# Column  8: Number of mismatches\n"
                                            "# Column  9: Number of insertions\n"
                                            "# Column 10: Number of deletions\n"
                                            "# Column 11: Repeat unit\n"
                                            "# \n");
  EXPECT_EQ(in_format(kFormatVorlan), kCommonColumns + "# Column  8: Repeat unit\n# \n");
}

TEST_F(Legend, OfTheOnePerLineFormatIsALineOfColumnNamesWithoutPrefix) {
  const std::string names =
      "seq-name\tunit-length\tperfection\tstart\tend\tlength\trepeat-number\tscore\tmismatches\t"
      "insertions\tdeletions\tNs\tunit\trepeat-seq";
  EXPECT_EQ(in_format(kFormatOnePerLine), names + "\n");
  global_flanking = 1;
  EXPECT_EQ(in_format(kFormatOnePerLine), names + "\tleft-flanking-seq\tright-flanking-seq\n");
}

TEST_F(Legend, GffAndFastaHaveNone) {
  EXPECT_EQ(in_format(kFormatGff), "");
  EXPECT_EQ(in_format(kFormatFasta), "");
}

}  // namespace
}  // namespace vorlan
