// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/border_shift.h"

#include <gtest/gtest.h>

#include <string>

#include "compare/compared_pair.h"
#include "compare/locus_pairs.h"

namespace vorlan_tools {
namespace {

ComparedLocus locus_of(std::int64_t start, const std::string& left, const std::string& bases,
                       const std::string& right) {
  ComparedLocus locus;
  locus.start = start;
  locus.end = start + static_cast<std::int64_t>(bases.size());
  locus.unit = "AC";
  locus.left = left;
  locus.bases = bases;
  locus.right = right;
  return locus;
}

LocusPair measured(const ComparedLocus& first, const ComparedLocus& second, bool is_reverse) {
  const BorderView one = view_borders(first, false, 0);
  const BorderView other = view_borders(second, is_reverse, 20);
  LocusPair pair;
  pair.is_reverse = is_reverse;
  pair.left_shift = border_shift(one.left_outside, other.left_outside, other.left_inside);
  pair.right_shift = border_shift(one.right_outside, other.right_outside, other.right_inside);
  return pair;
}

const std::string kLeft = "TTGACGCTACCATTTCGTGG";
const std::string kRight = "GTCTAGGCCTTACGGATTCA";

TEST(BorderShift, EqualFlanksAreNotShifted) {
  const auto shift = border_shift("GATTACAGGCTTAGC", "GATTACAGGCTTAGC", "CACACA");
  ASSERT_TRUE(shift);
  EXPECT_EQ(shift->bases, 0);
  EXPECT_TRUE(shift->is_certain);
}

TEST(BorderShift, AChangedBaseBesideTheRepeatShiftsOneBorder) {
  // The last G of the left flank became C: the repeat of the second one begins one base earlier.
  const ComparedLocus first = locus_of(100, kLeft, "ACACACACACAC", kRight);
  const ComparedLocus second =
      locus_of(99, std::string("A").append(kLeft, 0, 19), "CACACACACACAC", kRight);
  const LocusPair pair = measured(first, second, false);
  ASSERT_TRUE(pair.left_shift && pair.right_shift);
  EXPECT_EQ(pair.left_shift->bases, -1);
  EXPECT_EQ(pair.right_shift->bases, 0);
  EXPECT_EQ(compare_pair(first, second, pair).status, PairStatus::kSame);
}

TEST(BorderShift, OnTheOtherStrandBordersChangePlaces) {
  // kRight and kLeft turned round, (GT)8 between them.
  const ComparedLocus first = locus_of(100, kLeft, "ACACACACACAC", kRight);
  const ComparedLocus second =
      locus_of(500, "TGAATCCGTAAGGCCTAGAC", "GTGTGTGTGTGTGTGT", "CCACGAAATGGTAGCGTCAA");
  const LocusPair pair = measured(first, second, true);
  ASSERT_TRUE(pair.left_shift && pair.right_shift);
  const ComparedPair compared = compare_pair(first, second, pair);
  EXPECT_EQ(compared.status, PairStatus::kChanged);
  EXPECT_EQ(compared.difference, 4);
  EXPECT_EQ(second_allele(second, pair), "ACACACACACACACAC");
}

TEST(BorderShift, AnotherFlankTellsNothing) {
  EXPECT_FALSE(border_shift(kLeft, kRight, "ACACACACACAC"));
  EXPECT_FALSE(border_shift("", kRight, "ACACACACACAC"));
  const ComparedLocus first = locus_of(100, kLeft, "ACACACACACAC", kRight);
  const ComparedLocus second = locus_of(100, kRight, "ACACACACACACAC", kRight);
  EXPECT_EQ(compare_pair(first, second, measured(first, second, false)).status,
            PairStatus::kUnclear);
}

TEST(PairByPosition, ExactPlacesBeforeLargeOverlaps) {
  ComparedReport first;
  first.sequences = {{"a", 1000}};
  first.loci = {locus_of(10, "", "ACACACACAC", ""), locus_of(30, "", "ACACACAC", "")};
  ComparedReport second;
  second.sequences = {{"b", 1000}, {"a", 1000}};
  second.loci = {locus_of(8, "", std::string(40, 'A'), ""), locus_of(30, "", "ACACACAC", "")};
  for (ComparedLocus& locus : second.loci) locus.sequence = 1;
  const Pairing pairing = pair_by_position(first, second);
  ASSERT_EQ(pairing.pairs.size(), 2U);
  EXPECT_EQ(pairing.pairs[0].second, 0U);
  EXPECT_EQ(pairing.pairs[1].second, 1U);
}

TEST(PairByPosition, OtherSequencesAndUnitsAreNoPairs) {
  ComparedReport first;
  first.sequences = {{"a", 1000}};
  first.loci = {locus_of(10, "", "ACACACACAC", "")};
  ComparedReport second = first;
  second.sequences[0].name.assign(1, 'b');
  EXPECT_TRUE(pair_by_position(first, second).pairs.empty());
  second.sequences[0].name.assign(1, 'a');
  second.loci[0].unit.assign(2, 'A');
  EXPECT_TRUE(pair_by_position(first, second).pairs.empty());
}

}  // namespace
}  // namespace vorlan_tools
