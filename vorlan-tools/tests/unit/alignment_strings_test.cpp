// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"

#include <gtest/gtest.h>

#include "convert/motif.h"

namespace vorlan_tools {
namespace {

/// sequence   ACAGACTAC-CANN
/// unit       ACACAC-ACACACA   with a mismatch, an insertion, a deletion and two bridged Ns
Repeat example() {
  Repeat repeat;
  repeat.unit_length = 2;
  repeat.sequence_line = "ACAGACTAC-CANN";
  repeat.match_line = "||| || || ||**";
  repeat.unit_line = "ACACAC-ACACACA";
  return repeat;
}

template <typename Append>
std::string text_of(Append append) {
  RowText text;
  append(text, example());
  return std::string(text.view());
}

TEST(AlignmentStrings, SequenceIsTheReference) {
  EXPECT_EQ(text_of(append_cigar), "3=1X2=1D2=1I2=2X");
  EXPECT_EQ(text_of(append_query), "ACACACACACACA");
  const AlignmentCounts counts = count_operations(example());
  EXPECT_EQ(counts.equal, 9);
  EXPECT_EQ(counts.different, 3);
  EXPECT_EQ(counts.inserted, 1);
  EXPECT_EQ(counts.deleted, 1);
  EXPECT_EQ(counts.query_length(), 13);
  EXPECT_EQ(counts.reference_length(), 13);
}

// MD counts on over insertions, and has a 0 between neighbours that differ.
TEST(AlignmentStrings, MdNamesBasesOfTheReference) { EXPECT_EQ(text_of(append_md), "3G2^T4N0N0"); }

TEST(AlignmentStrings, GapCountsDifferencesAsMatches) {
  EXPECT_EQ(text_of(append_gap), "M6 D1 M2 I1 M4");
}

TEST(Motif, IsTheFirstUnitWithoutGaps) {
  std::string motif;
  Repeat repeat = example();
  repeat.unit_length = 7;
  find_motif(repeat, motif);
  EXPECT_EQ(motif, "ACACACA");
  repeat.unit_length = 14;
  find_motif(repeat, motif);
  EXPECT_EQ(motif, "");
}

TEST(Motif, NeedsAPerfectRepeatWithoutAlignment) {
  std::string motif;
  Repeat repeat;
  repeat.unit_length = 3;
  repeat.residues = "CAGCAGCA";
  repeat.mismatches = repeat.insertions = repeat.deletions = 0;
  find_motif(repeat, motif);
  EXPECT_EQ(motif, "CAG");
  repeat.mismatches = 1;
  find_motif(repeat, motif);
  EXPECT_EQ(motif, "");
  repeat.mismatches = 0;
  repeat.residues = "CNGCAGCA";
  find_motif(repeat, motif);
  EXPECT_EQ(motif, "");
}

}  // namespace
}  // namespace vorlan_tools
