// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The entries of repeats made by hand, in every format. Repeats are searched nowhere here.

#include "output/report.h"

#include <gmock/gmock.h>

#include <string>

#include "search/csearchcontroller.h"
#include "support/captured_output.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A sequence and one repeat in it.
struct Example {
  Example(std::string_view bases, int left, int right, int unit_begin, int unit_length)
      : dna(bases, "chr1 a test") {
    sat.init(dna.at(unit_begin), dna.at(unit_begin + unit_length));
    sat.pos_left = dna.at(left);
    sat.pos_right = dna.at(right);
    sat.score = right - left - unit_length;
  }

  void add_event(int offset, char kind) { sat.missense.push_back({dna.at(offset), kind}); }

  std::string entry() {
    CapturedStream out;
    sat.report_sat(out.stream(), dna);
    return out.text();
  }

  Dna dna;
  Csat sat;
};

/// GACACACACT: four copies of AC, at 2 to 9 when counted from 1.
struct PerfectRepeat : Example {
  PerfectRepeat() : Example("GACACACACT", 1, 9, 1, 2) {}
};

/// Perfect form ACG ACG ACG ACG ACG with a mismatch (T), an insertion (T), a deletion (C) and a
/// bridged N:
///   sequence  ACG TCG ATCG A-G NCG
///   unit      ACG ACG A-CG ACG ACG
/// Repeat length 15 - 1 + 1 = 15, of which 15 - 1 - 1 - 1 - 1 = 11 match: 73.333 %.
/// Score 3 * (-5) + (16 columns - 3 edits - 1 N - 3 bases of the first copy) = -15 + 9 = -6.
struct DivergedRepeat : Example {
  DivergedRepeat() : Example("TTACGTCGATCGAGNCGCC", 2, 17, 2, 3) {
    sat.mismatches = 1;
    sat.insertions = 1;
    sat.deletions = 1;
    sat.num_Ns = 1;
    sat.score = -6;
    add_event(5, 'M');
    add_event(9, 'I');
    add_event(13, 'D');
  }
};

class Report : public FreshSettings {
 protected:
  Report() { in_format(kFormatVorlan, kNoSequence); }

  static void in_format(int format, int sequence_mode) {
    global_print_sat_mode = format;
    global_print_sat_seq_mode = sequence_mode;
  }
};

TEST_F(Report, VorlanFormat) {
  EXPECT_EQ(
      PerfectRepeat().entry(),
      "    dinucleotide         2 :         9 |      8 bp |      8 BP |      6 pt | 100.000 % "
      "| unit AC\n");
  EXPECT_EQ(
      DivergedRepeat().entry(),
      "   trinucleotide         3 :        17 |     15 bp |     15 BP |     -6 pt |  73.333 % "
      "| unit ACG\n");
}

TEST_F(Report, ExtendedFormat) {
  in_format(kFormatExtended, kNoSequence);
  EXPECT_EQ(
      PerfectRepeat().entry(),
      "    dinucleotide         2 :         9 |      8 bp |      8 BP |      6 pt | 100.000 % "
      "|   0 mis |   0 ins |   0 del |   0 N |  unit AC\n"
      "Missense: \n");
  EXPECT_EQ(
      DivergedRepeat().entry(),
      "   trinucleotide         3 :        17 |     15 bp |     15 BP |     -6 pt |  73.333 % "
      "|   1 mis |   1 ins |   1 del |   1 N |  unit ACG\n"
      "Missense: (4,M),(8,I),(12,D),\n");
}

TEST_F(Report, ExtendedFormatWithoutNWhenTheyAreMissense) {
  in_format(kFormatExtended, kNoSequence);
  global_treat_Ns_as_missense = true;
  EXPECT_EQ(
      PerfectRepeat().entry(),
      "    dinucleotide         2 :         9 |      8 bp |      8 BP |      6 pt | 100.000 % "
      "|   0 mis |   0 ins |   0 del |  unit AC\n"
      "Missense: \n");
}

TEST_F(Report, LengthInTheSequenceAndOfThePerfectRepeatAreTwoNumbers) {
  PerfectRepeat example;
  example.sat.deletions = 3;
  EXPECT_THAT(example.entry(), HasSubstr("|      8 bp |     11 BP |"));
}

TEST_F(Report, GffFormat) {
  in_format(kFormatGff, kAlignment);  // never with the sequence
  EXPECT_EQ(PerfectRepeat().entry(),
            "chr1\tVorlan\ttandem-repeat\t2\t9\t100.00\t.\t.\tName=\"repeat_region 2-9 unit_size 2 "
            "repeat_number 4.000 perfection 100.000 unit AC\"\n");
  EXPECT_EQ(
      DivergedRepeat().entry(),
      "chr1\tVorlan\ttandem-repeat\t3\t17\t73.33\t.\t.\tName=\"repeat_region 3-17 unit_size 3 "
      "repeat_number 5.000 perfection 73.333 unit ACG\"\n");
}

TEST_F(Report, GffFormatShowsUnitsOfUpTo50Bases) {
  in_format(kFormatGff, kNoSequence);
  const std::string unit_50 = std::string(49, 'A') + "C";
  EXPECT_THAT(
      Example(unit_50 + unit_50, 0, 100, 0, 50).entry(),
      HasSubstr(" unit_size 50 repeat_number 2.000 perfection 100.000 unit " + unit_50 + "\"\n"));
  const std::string unit_51 = std::string(50, 'A') + "C";
  EXPECT_EQ(Example(unit_51 + unit_51, 0, 102, 0, 51).entry(),
            "chr1\tVorlan\ttandem-repeat\t1\t102\t100.00\t.\t.\tName=\"repeat_region 1-102 "
            "unit_size 51 repeat_number 2.000 perfection 100.000 unit .\"\n");
}

TEST_F(Report, OnePerLineFormat) {
  in_format(kFormatOnePerLine, kAlignment);
  EXPECT_EQ(PerfectRepeat().entry(),
            "chr1\t2\t100.000\t2\t9\t8\t  4.000\t6\t0\t0\t0\t0\tAC\tACACACAC\n");
  EXPECT_EQ(DivergedRepeat().entry(),
            "chr1\t3\t73.333\t3\t17\t15\t  5.000\t-6\t1\t1\t1\t1\tACG\tACGTCGATCGAGNCG\n");
}

TEST_F(Report, OnePerLineFormatWithADotForNThatAreMissense) {
  in_format(kFormatOnePerLine, kNoSequence);
  global_treat_Ns_as_missense = true;
  EXPECT_EQ(PerfectRepeat().entry(),
            "chr1\t2\t100.000\t2\t9\t8\t  4.000\t6\t0\t0\t0\t.\tAC\tACACACAC\n");
}

TEST_F(Report, OnePerLineFormatWithFlanks) {
  in_format(kFormatOnePerLine, kNoSequence);
  global_flanking = 1;
  EXPECT_EQ(DivergedRepeat().entry(),
            "chr1\t3\t73.333\t3\t17\t15\t  5.000\t-6\t1\t1\t1\t1\tACG\tACGTCGATCGAGNCG\tT\tC\n");
  global_flanking = 10;
  EXPECT_EQ(PerfectRepeat().entry(),
            "chr1\t2\t100.000\t2\t9\t8\t  4.000\t6\t0\t0\t0\t0\tAC\tACACACAC\tG\tT\n");
}

TEST_F(Report, FastaFormat) {
  in_format(kFormatFasta, kAlignment);
  EXPECT_EQ(PerfectRepeat().entry(), ">chr1 1 8 2 2 9 4.000 6 100.000 0 0 0\nACACACAC\n");
  EXPECT_EQ(DivergedRepeat().entry(), ">chr1 1 15 3 3 17 5.000 -6 73.333 1 1 1\nACGTCGATCGAGNCG\n");
}

TEST_F(Report, FastaFormatWithFlanks) {
  in_format(kFormatFasta, kNoSequence);
  global_flanking = 1;
  EXPECT_EQ(DivergedRepeat().entry(),
            ">chr1 2 15 3 3 17 5.000 -6 73.333 1 1 1\nTACGTCGATCGAGNCGC\n");
  global_flanking = 10;
  EXPECT_EQ(DivergedRepeat().entry(),
            ">chr1 3 15 3 3 17 5.000 -6 73.333 1 1 1\nTTACGTCGATCGAGNCGCC\n");
}

// 73.333 + 0.5, cut off.
TEST_F(Report, OldFormat) {
  in_format(kFormatOld, kNoSequence);
  EXPECT_EQ(PerfectRepeat().entry(),
            "dinucleotide 2 : 9 -- length 8 score 6 perfection 100 unit AC\n");
  EXPECT_EQ(DivergedRepeat().entry(),
            "trinucleotide 3 : 17 -- length 15 score -6 perfection 73 unit ACG\n");
  in_format(kFormatOld, kSequence);
  EXPECT_EQ(PerfectRepeat().entry(),
            "dinucleotide 2 : 9 -- length 8 score 6 perfection 100 unit AC\nACACACAC\n");
}

// 5 of 8 are 62.5 %, which is rounded up.
TEST_F(Report, OldFormatRoundsPerfectionsToTheNearestNumber) {
  in_format(kFormatOld, kNoSequence);
  PerfectRepeat example;
  example.sat.mismatches = 3;
  EXPECT_THAT(example.entry(), HasSubstr(" perfection 63 unit"));
}

TEST_F(Report, AnUnknownFormatIsAnInternalError) {
  for (const int format : {6, -1}) {
    in_format(format, kAlignment);
    EXPECT_EQ(PerfectRepeat().entry(),
              "Internal error. Unknown output format. Please report this bug");
  }
}

TEST_F(Report, RepeatTypesHaveNamesUpTo6Bases) {
  const char* labels[] = {"  mononucleotide ", "    dinucleotide ", "   trinucleotide ",
                          " tetranucleotide ", " pentanucleotide ", "  hexanucleotide ",
                          "    7-nucleotide "};
  const char* names[] = {"mononucleotide",  "dinucleotide",   "trinucleotide", "tetranucleotide",
                         "pentanucleotide", "hexanucleotide", "7-nucleotide"};
  const std::string bases = repeated("AAAAAAC", 2);
  for (int unit_length = 1; unit_length <= 7; ++unit_length) {
    Example example(bases, 0, 14, 7 - unit_length, unit_length);  // ends with C: no repetition
    EXPECT_THAT(example.entry(), StartsWith(labels[unit_length - 1]));
    EXPECT_STREQ(example.sat.get_repeat_name(), names[unit_length - 1]);
  }
}

TEST_F(Report, LongRepeatTypesAreNumbers) {
  const std::string unit = std::string(999, 'A') + "C";
  Example example(unit + unit, 0, 2000, 0, 1000);
  EXPECT_THAT(example.entry(), StartsWith(" 1000-nucleotide "));
  in_format(kFormatOld, kNoSequence);
  EXPECT_THAT(example.entry(), StartsWith("1000-nucleotide 1 : 2000 -- "));
}

TEST_F(Report, TheNamesOfLongRepeatTypesShareABuffer) {
  const Example seven(repeated("AAAAAAC", 2), 0, 14, 0, 7);
  const Example eight(repeated("AAAAAAAC", 2), 0, 16, 0, 8);
  const char* name = seven.sat.get_repeat_name();
  eight.sat.get_repeat_name();
  EXPECT_STREQ(name, "8-nucleotide");
}

// 100000 / 3 = 33333.333; single precision has steps of 1/256 there, and the nearest below is
// 8533333 / 256 = 33333.33203.
TEST_F(Report, TheNumberOfUnitsIsComputedInSinglePrecision) {
  in_format(kFormatGff, kNoSequence);
  Example example(repeated("ACG", 33334), 0, 100000, 0, 3);
  EXPECT_THAT(example.entry(), HasSubstr(" unit_size 3 repeat_number 33333.332 perfection "));
}

// 73.333 % is 11 / 15 in single precision.
TEST_F(Report, PerfectionBoundsAreInclusiveInEveryFormat) {
  DivergedRepeat example;
  const float perfection = 11.0F / 15.0F * 100.0F;
  for (const int format :
       {kFormatVorlan, kFormatExtended, kFormatGff, kFormatOnePerLine, kFormatFasta, kFormatOld}) {
    in_format(format, kAlignment);
    global_min_perfection = global_max_perfection = perfection;
    EXPECT_NE(example.entry(), "") << format;
    global_max_perfection = 100.0F;
    global_min_perfection = std::nextafter(perfection, 100.0F);
    EXPECT_EQ(example.entry(), "") << format;
    global_min_perfection = 0.0F;
    global_max_perfection = std::nextafter(perfection, 0.0F);
    EXPECT_EQ(example.entry(), "") << format;
  }
}

TEST_F(Report, ThePerfectionOfTheModeInUseCounts) {
  DivergedRepeat example;
  global_N_and_perfection_mode = kNsAsNeutral;
  EXPECT_THAT(example.entry(), HasSubstr("|  78.571 % |"));  // 11 of 14
  global_N_and_perfection_mode = kNsAsMatch;
  EXPECT_THAT(example.entry(), HasSubstr("|  80.000 % |"));  // 12 of 15
}

TEST_F(Report, ARepetitionOfAShorterUnitIsNotReportedInAnyFormat) {
  for (const int unit_mode : {kUnitAsIs, kUnitMinimal, kUnitMinimalBothStrands}) {
    for (const int format : {kFormatVorlan, kFormatExtended, kFormatGff, kFormatOnePerLine,
                             kFormatFasta, kFormatOld}) {
      global_report_unit_mode = unit_mode;
      in_format(format, kAlignment);
      EXPECT_EQ(Example("GACACACACT", 1, 9, 1, 4).entry(), "") << format;
    }
  }
}

TEST_F(Report, UnitsAreShownInTheFormAskedFor) {
  Example example("CTTCTTCTT", 0, 9, 0, 3);
  EXPECT_THAT(example.entry(), HasSubstr(" unit AAG\n"));
  global_report_unit_mode = kUnitMinimal;
  EXPECT_THAT(example.entry(), HasSubstr(" unit CTT\n"));
  global_report_unit_mode = kUnitAsIs;
  EXPECT_THAT(example.entry(), HasSubstr(" unit CTT\n"));
}

TEST_F(Report, PerCentSignsInNamesAreWrittenAsTheyAre) {
  in_format(kFormatOnePerLine, kNoSequence);
  PerfectRepeat example;
  example.dna.name.assign("%s%n");
  EXPECT_THAT(example.entry(), StartsWith("%s%n\t2\t"));
}

class SequenceDisplay : public Report {
 protected:
  /// What stands behind the first line of an entry.
  static std::string display(Example& example, int sequence_mode) {
    in_format(kFormatVorlan, sequence_mode);
    const std::string entry = example.entry();
    return entry.substr(entry.find('\n') + 1);
  }
};

TEST_F(SequenceDisplay, CanBeLeftOut) {
  PerfectRepeat example;
  EXPECT_EQ(display(example, kNoSequence), "");
}

TEST_F(SequenceDisplay, CanBeTheSequenceAlone) {
  PerfectRepeat example;
  EXPECT_EQ(display(example, kSequence), "ACACACAC\n");
}

TEST_F(SequenceDisplay, SetsFlanksOffWithColons) {
  global_flanking = 1;
  DivergedRepeat example;
  EXPECT_EQ(display(example, kSequence), "T:ACGTCGATCGAGNCG:C\n");
}

TEST_F(SequenceDisplay, CutsFlanksAtTheEndsOfTheSequence) {
  global_flanking = 10;
  DivergedRepeat inner;
  EXPECT_EQ(display(inner, kSequence), "TT:ACGTCGATCGAGNCG:CC\n");
  Example at_the_start("ACACACACTT", 0, 8, 0, 2);
  EXPECT_EQ(display(at_the_start, kSequence), ":ACACACAC:TT\n");
  Example at_the_end("TTACACACAC", 2, 10, 2, 2);
  EXPECT_EQ(display(at_the_end, kSequence), "TT:ACACACAC:\n");
  in_format(kFormatFasta, kNoSequence);
  EXPECT_THAT(at_the_start.entry(), StartsWith(">chr1 1 8 2 1 8 "));
}

TEST_F(SequenceDisplay, ShowsTheAlignmentOfAPerfectRepeat) {
  PerfectRepeat example;
  EXPECT_EQ(display(example, kAlignment),
            "ACACACAC\n"
            "||||||||\n"
            "ACACACAC\n");
}

TEST_F(SequenceDisplay, ShowsEditsAndBridgedNInTheAlignment) {
  DivergedRepeat example;
  EXPECT_EQ(display(example, kAlignment),
            "ACGTCGATCGA-GNCG\n"
            "||| ||| ||| |*||\n"
            "ACGACGA-CGACGACG\n");
}

TEST_F(SequenceDisplay, ShowsFlanksAboveBlanksInTheAlignment) {
  global_flanking = 2;
  PerfectRepeat example;  // one base before and one behind
  EXPECT_EQ(display(example, kAlignment),
            "G:ACACACAC:T\n"
            "  ||||||||  \n"
            "  ACACACAC  \n");
}

// The unit lies in the middle; the cursor says which of its bases stands before the first one.
TEST_F(SequenceDisplay, BeginsWithTheUnitBaseBehindTheCursor) {
  Example example("GACGACGA", 0, 8, 1, 3);
  example.sat.unit_cursor_bwd = example.dna.at(2);  // C; the repeat begins with G
  EXPECT_EQ(display(example, kAlignment),
            "GACGACGA\n"
            "||||||||\n"
            "GACGACGA\n");
}

// Two bases of the unit are missing before the second A, and then A itself is changed to T.
TEST_F(SequenceDisplay, ShowsSeveralEventsAtOnePosition) {
  Example example("ACGATCGACG", 0, 10, 0, 3);
  example.sat.deletions = 2;
  example.sat.mismatches = 1;
  example.add_event(4, 'D');
  example.add_event(4, 'D');
  example.add_event(4, 'M');
  EXPECT_EQ(display(example, kAlignment),
            "ACGA--TCGACG\n"
            "||||   |||||\n"
            "ACGACGACGACG\n");
}

/// The block of a sequence with one perfect repeat.
std::string block() {
  PerfectRepeat example;
  CSearchController controller(1, example.dna);
  CapturedStream out;
  controller.report_SATList(out.stream(), {&example.sat});
  return out.text();
}

TEST_F(Report, ABlockHasAHeaderAndAFooterInTheVorlanFormats) {
  const std::string head = ">chr1 a test\nsequence length: 10\n";
  const std::string foot = "# Analysis of sequence \"chr1 a test\" completed.\n";
  EXPECT_EQ(block(), head + PerfectRepeat().entry() + foot);
  in_format(kFormatExtended, kAlignment);
  EXPECT_EQ(block(), head + PerfectRepeat().entry() + foot);
  in_format(kFormatOld, kNoSequence);
  EXPECT_EQ(block(), head + PerfectRepeat().entry() + foot);
}

TEST_F(Report, ABlockIsTheEntriesAloneInTheOtherFormats) {
  for (const int format : {kFormatGff, kFormatOnePerLine, kFormatFasta}) {
    in_format(format, kNoSequence);
    EXPECT_EQ(block(), PerfectRepeat().entry()) << format;
  }
}

TEST_F(Report, ABlockCanHaveCommentsInTheTabSeparatedFormats) {
  global_sequenceInfoAsComment = true;
  for (const int format : {kFormatGff, kFormatOnePerLine}) {
    in_format(format, kNoSequence);
    EXPECT_EQ(block(), "# Full sequence name:\n#>chr1 a test\n##sequence-region chr1 1 10\n" +
                           PerfectRepeat().entry() + "# Analysis of sequence \"chr1\" completed.\n")
        << format;
  }
  in_format(kFormatFasta, kNoSequence);
  EXPECT_EQ(block(), PerfectRepeat().entry());
  in_format(kFormatVorlan, kNoSequence);
  EXPECT_THAT(block(), StartsWith(">chr1 a test\nsequence length: 10\n"));
}

TEST_F(Report, ABlockShowsItsRepeatsInTheOrderOfTheList) {
  Example example("GACACACACT", 1, 9, 1, 2);
  Csat second;
  second.init(example.dna.at(0), example.dna.at(3));
  CSearchController controller(1, example.dna);
  CapturedStream out;
  in_format(kFormatFasta, kNoSequence);
  controller.report_SATList(out.stream(), {&example.sat, &second, &example.sat});
  const std::string first_entry = ">chr1 1 8 2 2 9 4.000 6 100.000 0 0 0\nACACACAC\n";
  EXPECT_EQ(out.text(), first_entry + ">chr1 1 3 3 1 3 1.000 0 100.000 0 0 0\nGAC\n" + first_entry);
}

TEST_F(Report, ABlockWithoutRepeatsIsItsFrame) {
  Dna dna("", "empty");
  CSearchController controller(1, dna);
  CapturedStream out;
  controller.report_SATList(out.stream(), {});
  EXPECT_EQ(out.text(),
            ">empty\nsequence length: 0\n# Analysis of sequence \"empty\" completed.\n");
}

}  // namespace
}  // namespace vorlan
