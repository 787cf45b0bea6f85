// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// For which units a decision holds that was made for another. That it is the same decision, the
// tests of the look-ahead by bits tell.

#include "imperfect/look_ahead/decision_memory.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vorlan {
namespace {

class DecisionMemoryTest : public testing::Test {
 protected:
  const char* at(std::ptrdiff_t offset) const { return residues_.data() + offset; }
  UnitSpan unit(std::ptrdiff_t begin, std::ptrdiff_t end) const { return {at(begin), at(end)}; }

  const std::string residues_ = std::string(40, 'A');
  DecisionMemory<Forward> forward_{residues_.data(), residues_.size()};
  DecisionMemory<Backward> backward_{residues_.data(), residues_.size()};
};

TEST_F(DecisionMemoryTest, NothingIsKnownAtFirst) {
  EXPECT_EQ(forward_.find({at(0), at(0)}, unit(0, 1)), std::nullopt);
}

TEST_F(DecisionMemoryTest, ForwardADecisionHoldsForUnitsThatEndBehindTheLastBaseRead) {
  const Front front{at(20), at(10)};
  forward_.keep(front, unit(8, 18), Move::kInsertion, 5);
  for (const auto& other : {unit(8, 18), unit(8, 15), unit(10, 15), unit(3, 30)}) {
    EXPECT_EQ(forward_.find(front, other), Move::kInsertion);
  }
  EXPECT_EQ(forward_.find(front, unit(8, 14)), std::nullopt);
}

TEST_F(DecisionMemoryTest, BackwardADecisionHoldsForUnitsThatBeginAtTheLastBaseReadOrBefore) {
  const Front front{at(5), at(14)};
  backward_.keep(front, unit(8, 18), Move::kDeletion, 5);
  for (const auto& other : {unit(8, 18), unit(10, 15), unit(3, 30)}) {
    EXPECT_EQ(backward_.find(front, other), Move::kDeletion);
  }
  EXPECT_EQ(backward_.find(front, unit(11, 18)), std::nullopt);
}

TEST_F(DecisionMemoryTest, WhatWasReadAcrossTheEndOfTheUnitIsNotKept) {
  forward_.keep({at(20), at(10)}, unit(8, 14), Move::kMismatch, 5);
  EXPECT_EQ(forward_.find({at(20), at(10)}, unit(8, 30)), std::nullopt);
  backward_.keep({at(5), at(14)}, unit(11, 18), Move::kMismatch, 5);
  EXPECT_EQ(backward_.find({at(5), at(14)}, unit(3, 30)), std::nullopt);
}

TEST(DecisionMemory, HoldsWhatManyBasesWereReadFor) {
  const std::string residues(700, 'A');
  const auto at = [&](std::ptrdiff_t offset) { return residues.data() + offset; };
  DecisionMemory<Forward> decisions(residues.data(), residues.size());
  const Front front{at(350), at(0)};
  decisions.keep(front, {at(0), at(350)}, Move::kMismatch, 263);
  EXPECT_EQ(decisions.find(front, {at(0), at(263)}), Move::kMismatch);
  EXPECT_EQ(decisions.find(front, {at(0), at(262)}), std::nullopt);
}

// A record without residues gets a single slot, so that all decisions meet there.
TEST_F(DecisionMemoryTest, ADecisionHoldsForItsPlaceAndItsDueBaseAlone) {
  DecisionMemory<Forward> single(residues_.data(), 0);
  single.keep({at(20), at(10)}, unit(8, 30), Move::kMismatch, 5);
  EXPECT_EQ(single.find({at(21), at(10)}, unit(8, 30)), std::nullopt);
  EXPECT_EQ(single.find({at(20), at(11)}, unit(8, 30)), std::nullopt);
  EXPECT_EQ(single.find({at(20), at(10)}, unit(8, 30)), Move::kMismatch);
}

TEST_F(DecisionMemoryTest, ANewDecisionTakesTheSlotOfAnOlderOne) {
  DecisionMemory<Forward> single(residues_.data(), 0);
  single.keep({at(20), at(10)}, unit(8, 30), Move::kMismatch, 5);
  single.keep({at(22), at(11)}, unit(8, 30), Move::kInsertion, 2);
  EXPECT_EQ(single.find({at(20), at(10)}, unit(8, 30)), std::nullopt);
  EXPECT_EQ(single.find({at(22), at(11)}, unit(8, 30)), Move::kInsertion);
}

}  // namespace
}  // namespace vorlan
