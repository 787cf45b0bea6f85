// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "monomers/wraparound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "monomers/consensus_unit.h"
#include "monomers/dissect_array.h"
#include "monomers/higher_order.h"

namespace vorlan_tools {
namespace {

/// The unit written out long enough, begun at any base, left at any base.
std::int64_t plain_cost(const std::string& array, const std::string& unit) {
  std::string unrolled;
  while (unrolled.size() < 2 * array.size() + 2 * unit.size()) unrolled += unit;
  std::vector<std::int64_t> row(unrolled.size() + 1, 0);
  for (const char base : array) {
    std::vector<std::int64_t> next(row.size(), row[0] + 3);
    for (std::size_t j = 1; j < row.size(); ++j) {
      next[j] =
          std::min({row[j - 1] + (base == unrolled[j - 1] ? 0 : 2), row[j] + 3, next[j - 1] + 3});
    }
    row = next;
  }
  return *std::min_element(row.begin(), row.end());
}

std::int64_t cost_of(const std::string& array, const std::string& unit,
                     const std::vector<UnitStep>& steps) {
  std::int64_t cost = 0;
  std::size_t i = 0;
  for (std::size_t k = 0; k < steps.size(); ++k) {
    const UnitStep& step = steps[k];
    const bool is_aligned = step.kind == UnitStep::Kind::kAligned;
    cost += !is_aligned ? 3 : array[i] == unit[step.place] ? 0 : 2;
    if (step.kind != UnitStep::Kind::kDeleted) ++i;
    if (k == 0) continue;
    const std::size_t before = steps[k - 1].place;
    const std::size_t expected =
        step.kind == UnitStep::Kind::kInserted ? before : (before + 1) % unit.size();
    EXPECT_EQ(step.place, expected);
  }
  EXPECT_EQ(i, array.size());
  return cost;
}

std::string random_bases(std::mt19937& chance, std::size_t size) {
  std::string bases;
  while (bases.size() < size) bases += "ACG"[chance() % 3];
  return bases;
}

TEST(Wraparound, CostsWhatTheUnrolledUnitCosts) {
  std::mt19937 chance(7);
  for (int round = 0; round < 3000; ++round) {
    const std::string array = random_bases(chance, chance() % 14);
    const std::string unit = random_bases(chance, 1 + chance() % 6);
    const std::int64_t expected = plain_cost(array, unit);
    ASSERT_EQ(unit_alignment_cost(array, unit), expected) << array << ' ' << unit;
    ASSERT_EQ(cost_of(array, unit, align_to_unit(array, unit)), expected) << array << ' ' << unit;
  }
}

TEST(Wraparound, StopsWhereTheLimitIsReached) {
  std::mt19937 chance(10);
  for (int round = 0; round < 3000; ++round) {
    const std::string array = random_bases(chance, chance() % 14);
    const std::string unit = random_bases(chance, 1 + chance() % 6);
    const std::int64_t limit = chance() % 12;
    const std::int64_t expected = plain_cost(array, unit);
    const std::int64_t cost = unit_alignment_cost(array, unit, limit);
    if (expected < limit) {
      ASSERT_EQ(cost, expected) << array << ' ' << unit << ' ' << limit;
    } else {
      ASSERT_GE(cost, limit) << array << ' ' << unit << ' ' << limit;
    }
  }
}

TEST(Wraparound, LongArraysGoThroughSeveralBlocks) {
  std::mt19937 chance(8);
  const std::string unit = random_bases(chance, 4000);
  // 16 MB of choices hold 4194 bases; these are two blocks and a bit, and one of exactly two.
  for (const std::size_t size : {std::size_t{9000}, std::size_t{8388}}) {
    std::string array = (unit + unit + unit).substr(100, size);
    for (std::size_t place = 50; place < array.size(); place += 97) array[place] = 'T';
    array.erase(5000, 2);
    const std::vector<UnitStep> steps = align_to_unit(array, unit);
    EXPECT_EQ(cost_of(array, unit, steps), unit_alignment_cost(array, unit));
    EXPECT_EQ(steps.front().place, 100U);
  }
}

TEST(ConsensusUnit, IsWhatMostCopiesHave) {
  EXPECT_EQ(consensus_unit("ACGTTACGTACGTACGTACGT", "ACGTT").unit, "ACGT");
  EXPECT_EQ(consensus_unit("GATTACAGATTACAGATTACA", "GATACA").unit, "GATTACA");
  EXPECT_EQ(consensus_unit("AAAAAAA", "AC").unit, "AA");
  EXPECT_EQ(consensus_unit("N", "AC").unit, "AC");
  EXPECT_EQ(turned_to_begin("GATTACA", "TTA"), "TTACAGA");
  EXPECT_EQ(turned_to_begin("GATTACA", ""), "GATTACA");
}

TEST(ConsensusUnit, ComesWithTheAlignmentOfAllOfTheArray) {
  std::mt19937 chance(11);
  for (int round = 0; round < 1000; ++round) {
    const std::string array = random_bases(chance, 1 + chance() % 60);
    const ConsensusUnit found = consensus_unit(array, random_bases(chance, 1 + chance() % 9));
    ASSERT_EQ(cost_of(array, found.unit, found.steps), plain_cost(array, found.unit)) << array;
  }
  std::string halves(9000, 'A');
  halves += std::string(9000, 'C');
  EXPECT_TRUE(consensus_unit(halves, "A").steps.empty());
}

TEST(ConsensusUnit, ArraysWithoutAnyOrderHaveOneToo) {
  std::mt19937 chance(9);
  for (int round = 0; round < 5000; ++round) {
    const std::string array = random_bases(chance, 1 + chance() % 60);
    const std::string unit = consensus_unit(array, random_bases(chance, 1 + chance() % 9)).unit;
    ASSERT_FALSE(unit.empty());
    ASSERT_EQ(unit.find_first_not_of("ACGT"), std::string::npos);
  }
}

/// The copies of an array as text.
std::string shown(const Dissection& dissection) {
  std::string text = dissection.consensus;
  for (const Monomer& copy : dissection.monomers) {
    for (const std::int64_t number : {copy.start, copy.end, copy.places, copy.edits()}) {
      text += ' ' + std::to_string(number);
    }
  }
  const HigherOrder& higher = dissection.higher_order;
  return text + " order " + std::to_string(higher.order) + ' ' + std::to_string(higher.differing) +
         '/' + std::to_string(higher.places);
}

/// A beginning that is asked for goes the long way; here it asks for the phase that the array has.
TEST(DissectArray, ARepetitionNeedsNoAlignment) {
  std::mt19937 chance(12);
  for (int round = 0; round < 2000; ++round) {
    const std::string unit = random_bases(chance, 1 + chance() % 6);
    const std::size_t size = round % 100 == 0 ? 9000 : 40;
    std::string array = unit;
    while (array.size() < size) array += unit;
    array.resize(size - chance() % 40);
    ASSERT_EQ(shown(dissect_array(array, unit, "")), shown(dissect_array(array, unit, unit)))
        << array << ' ' << unit;
  }
}

TEST(HigherOrder, TheSmallestLagThatIsAsGoodAsTheBest) {
  const std::vector<std::string> kinds = {"ACGTACGTAC", "ATGTACCTAC", "ACGAACGTTC"};
  std::vector<std::string> copies;
  for (int i = 0; i < 24; ++i) copies.push_back(kinds[static_cast<std::size_t>(i) % 3]);
  const HigherOrder found = find_higher_order(copies);
  EXPECT_EQ(found.order, 3U);
  EXPECT_EQ(found.differing, 0);
  EXPECT_EQ(found.places, 21 * 10);
}

TEST(HigherOrder, EqualOrFewCopiesHaveNone) {
  EXPECT_EQ(find_higher_order(std::vector<std::string>(30, "ACGT")).order, 1U);
  EXPECT_EQ(find_higher_order({"ACGT", "TTTT", "ACGT"}).order, 1U);
  EXPECT_EQ(find_higher_order({}).order, 1U);
}

}  // namespace
}  // namespace vorlan_tools
