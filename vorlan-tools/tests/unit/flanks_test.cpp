// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "count/flanks.h"

#include <gtest/gtest.h>

#include <string>

#include "fasta/other_strand.h"

namespace vorlan_tools {
namespace {

const std::string kLeft = "GATTACATTCGGCATCCGATAGGCTTAACC";
const std::string kRight = "TTGACGGTACCAATTCGTCAAGGATCCGTA";

TEST(OtherStrand, TurnsAndKeepsWhatIsNoBase) { EXPECT_EQ(other_strand("AACGTN"), "NACGTT"); }

TEST(FlankFinder, FindsBothStrandsInOrder) {
  const FlankFinder finder({{kLeft, kRight}}, 100);
  const std::string locus = kLeft + "CAGCAG" + kRight;
  const auto found = finder.find("TT" + locus + "G" + other_strand(locus));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].start, 32);
  EXPECT_EQ(found[0].end, 38);
  EXPECT_FALSE(found[0].is_reverse);
  EXPECT_EQ(found[1].start, 2 + 66 + 1 + 30);
  EXPECT_EQ(found[1].end, 2 + 66 + 1 + 36);
  EXPECT_TRUE(found[1].is_reverse);
  EXPECT_EQ(found[1].edits, 0);
}

TEST(FlankFinder, TakesEditsUpToOneBaseInTen) {
  const FlankFinder finder({{kLeft, kRight}}, 100);
  std::string left = kLeft;
  left.erase(5, 1);
  std::string right = kRight;
  right[25] = 'A';
  right[28] = 'A';
  const auto found = finder.find(left + "CAG" + right);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].start, 29);
  EXPECT_EQ(found[0].end, 32);
  EXPECT_EQ(found[0].edits, 3);
  // Four edits in 30 bases are too many, even with 16 equal ones in a row.
  left = kLeft;
  for (const std::size_t place : {0U, 3U, 6U, 9U}) left[place] = left[place] == 'A' ? 'C' : 'A';
  EXPECT_TRUE(finder.find(left + "CAG" + kRight).empty());
}

TEST(FlankFinder, NearestFlanksBelongTogether) {
  const FlankFinder finder({{kLeft, kRight}}, 40);
  EXPECT_TRUE(finder.find(kLeft + std::string(41, 'C') + kRight).empty());
  EXPECT_TRUE(finder.find(kRight + "CAG" + kLeft).empty());
  const auto found = finder.find(kLeft + "AC" + kLeft + "CAG" + kRight + "AC" + kRight);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].start, 62);
  EXPECT_EQ(found[0].end, 65);
}

TEST(FlankFinder, AnEmptyAlleleIsABracket) {
  const FlankFinder finder({{kLeft, kRight}}, 40);
  const auto found = finder.find(kLeft + kRight);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].start, 30);
  EXPECT_EQ(found[0].end, 30);
  // The second left flank ends where the right one begins: the bracket from the first one is
  // another.
  const auto nearest = finder.find(kLeft + "C" + kLeft + kRight);
  ASSERT_EQ(nearest.size(), 1U);
  EXPECT_EQ(nearest[0].start, 61);
}

}  // namespace
}  // namespace vorlan_tools
