// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/csat.h"

#include <gmock/gmock.h>

#include <array>
#include <list>
#include <vector>

#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::ExitedWithCode;

class Repeat : public FreshSettings {
 protected:
  Repeat() { sat_.init(dna_.at(0), dna_.at(2)); }

  float perfection_in_mode(int mode) const {
    global_N_and_perfection_mode = mode;
    return sat_.perfection();
  }

  Dna dna_{"ACACACACACAC"};
  Csat sat_;
};

using RepeatDeathTest = Repeat;

TEST_F(Repeat, BeginsAsOneCopyOfItsUnitWithScore0) {
  EXPECT_EQ(span_of(sat_, dna_), (Span{0, 2, 0, 2}));
  EXPECT_EQ(sat_.unit_cursor_fwd, dna_.at(0));
  EXPECT_EQ(sat_.unit_cursor_bwd, dna_.at(1));
  EXPECT_EQ(sat_.score, 0);
  EXPECT_EQ(sat_.mismatches + sat_.insertions + sat_.deletions + sat_.num_Ns, 0U);
  EXPECT_EQ(sat_.recursion_level, 0);
  EXPECT_EQ(sat_.missense.size, 0U);
}

TEST_F(Repeat, ItsLengthIsThatOfThePerfectRepeat) {
  sat_.pos_right = dna_.at(10);
  EXPECT_EQ(sat_.repeat_length(), 10);
  sat_.insertions = 3;
  EXPECT_EQ(sat_.repeat_length(), 7);
  sat_.deletions = 5;
  EXPECT_EQ(sat_.repeat_length(), 12);
}

TEST_F(Repeat, ReachesThresholdsThatItEquals) {
  sat_.pos_right = dna_.at(8);
  sat_.score = 6;
  EXPECT_TRUE(sat_.reaches(6, 8));
  EXPECT_FALSE(sat_.reaches(7, 8));
  EXPECT_FALSE(sat_.reaches(6, 9));
  sat_.score = -1;  // compared as signed numbers
  EXPECT_FALSE(sat_.reaches(0, 0));
}

TEST_F(Repeat, APerfectRepeatIsPerfectInEveryMode) {
  sat_.pos_right = dna_.at(12);
  EXPECT_EQ(perfection_in_mode(kNsAsMismatch), 100.0F);
  EXPECT_EQ(perfection_in_mode(kNsAsNeutral), 100.0F);
  EXPECT_EQ(perfection_in_mode(kNsAsMatch), 100.0F);
}

TEST_F(Repeat, BridgedNsLowerThePerfectionOnlyAsMismatches) {
  sat_.pos_right = dna_.at(10);
  sat_.num_Ns = 2;
  EXPECT_EQ(perfection_in_mode(kNsAsMismatch), 80.0F);
  EXPECT_EQ(perfection_in_mode(kNsAsNeutral), 100.0F);
  EXPECT_EQ(perfection_in_mode(kNsAsMatch), 100.0F);
}

// 11 residues, 1 of them inserted: repeat length 10. 10 - 1 - 1 - 2 = 6 matches.
TEST_F(Repeat, EveryEditLowersThePerfection) {
  sat_.pos_right = dna_.at(11);
  sat_.insertions = 1;
  sat_.mismatches = 1;
  sat_.num_Ns = 2;
  EXPECT_EQ(perfection_in_mode(kNsAsMismatch), 0.6F * 100.0F);  // 6 of 10, single precision
  EXPECT_EQ(perfection_in_mode(kNsAsNeutral), 75.0F);           // 6 of 8
  EXPECT_EQ(perfection_in_mode(kNsAsMatch), 80.0F);             // 8 of 10
}

// 12 residues and 4 deletions: repeat length 16, of which 12 match.
TEST_F(Repeat, DeletionsLowerThePerfection) {
  sat_.pos_right = dna_.at(12);
  sat_.deletions = 4;
  EXPECT_EQ(perfection_in_mode(kNsAsMismatch), 75.0F);
}

TEST_F(RepeatDeathTest, AnUnknownPerfectionModeEndsTheProcessWithStatus2AndNoMessage) {
  EXPECT_EXIT(perfection_in_mode(3), ExitedWithCode(2), Eq(""));
  EXPECT_EXIT(perfection_in_mode(-1), ExitedWithCode(2), Eq(""));
}

TEST_F(Repeat, TrimmingMovesTheEndsInwardOverNAndTheCursorsWithThem) {
  const Dna dna("NNACGACGNN");
  Csat sat;
  sat.init(dna.at(2), dna.at(5));
  sat.pos_left = dna.at(0);
  sat.unit_cursor_bwd = dna.at(2);  // two steps back from the unit's last base
  sat.pos_right = dna.at(10);
  sat.unit_cursor_fwd = dna.at(4);  // five residues and two N on
  sat.num_Ns = 4;
  sat.score = 3;
  sat.trim_Ns();
  EXPECT_EQ(span_of(sat, dna), (Span{2, 8, 2, 3}));
  EXPECT_EQ(sat.unit_cursor_bwd, dna.at(4));
  EXPECT_EQ(sat.unit_cursor_fwd, dna.at(2));
  EXPECT_EQ(sat.num_Ns, 0U);
  EXPECT_EQ(sat.score, 3);
}

TEST_F(Repeat, EventsAreOrderedByPositionAndThenByCharacter) {
  for (const auto& [offset, kind] :
       std::array<std::pair<int, char>, 5>{{{7, 'M'}, {3, 'M'}, {3, 'D'}, {5, 'D'}, {3, 'I'}}}) {
    sat_.missense.push_back({dna_.at(offset), kind});
  }
  sat_.sort_missense();
  EXPECT_EQ(events_of(sat_, dna_), "3D 3I 3M 5D 7M ");
}

TEST_F(Repeat, ResultListsAreOrderedByStartAndThenByEndAndOtherwiseKeepTheirOrder) {
  std::array<Csat, 5> sats;
  const std::array<std::pair<int, int>, 5> spans{{{4, 6}, {2, 9}, {2, 5}, {4, 6}, {2, 9}}};
  std::list<Csat*> list;
  for (std::size_t i = 0; i < sats.size(); ++i) {
    sats[i].init(dna_.at(spans[i].first), dna_.at(spans[i].second));
    list.push_back(&sats[i]);
  }
  list.sort(lessThan_sat);
  EXPECT_THAT(list, ElementsAre(&sats[2], &sats[1], &sats[4], &sats[0], &sats[3]));
  EXPECT_FALSE(lessThan_sat(&sats[0], &sats[3]));
  EXPECT_FALSE(lessThan_sat(&sats[3], &sats[0]));
}

class Pool : public ::testing::Test {
 protected:
  Csat* take() const { return new_sat(dna_.at(0), dna_.at(2)); }

  EmptyPool empty_pool_;
  Dna dna_{"ACACACAC"};
};

TEST_F(Pool, TheRecordRecycledLastIsReusedFirst) {
  Csat* first = take();
  Csat* second = take();
  ASSERT_NE(first, second);
  recycle_sat(sat_alloc, first);
  recycle_sat(sat_alloc, second);
  EXPECT_EQ(take(), second);
  EXPECT_EQ(take(), first);
  EXPECT_TRUE(sat_alloc.empty());
  recycle_sat(sat_alloc, first);
  recycle_sat(sat_alloc, second);
}

TEST_F(Pool, AContainerGivesItsRecordsBackInOrderBehindThoseThatThePoolHolds) {
  Csat* pooled = take();
  Csat* first = take();
  Csat* second = take();
  recycle_sat(sat_alloc, pooled);
  {
    CsatContainer container(sat_alloc);
    container.push_back(first);
    container.push_back(second);
    EXPECT_THAT(sat_alloc, ElementsAre(pooled));
  }
  EXPECT_THAT(sat_alloc, ElementsAre(pooled, first, second));
  EXPECT_EQ(take(), second);
  recycle_sat(sat_alloc, second);
}

TEST_F(Pool, AContainerRecyclesOneRecordAndGoesOnBehindIt) {
  CsatContainer container(sat_alloc);
  Csat* first = take();
  Csat* second = take();
  container.assign({first, second});
  const auto next = container.recycle(container.begin());
  EXPECT_EQ(*next, second);
  EXPECT_THAT(container, ElementsAre(second));
  EXPECT_THAT(sat_alloc, ElementsAre(first));
}

TEST_F(Pool, AReusedRecordStartsAfresh) {
  Csat* sat = take();
  sat->pos_left = dna_.at(1);
  sat->pos_right = dna_.at(7);
  sat->score = -7;
  sat->mismatches = sat->insertions = sat->deletions = sat->num_Ns = 9;
  sat->recursion_level = 3;
  sat->aux_object = std::make_unique<AuxObject>();
  sat->missense.push_back({dna_.at(1), 'M'});
  recycle_sat(sat_alloc, sat);

  ASSERT_EQ(new_sat(dna_.at(3), dna_.at(6)), sat);
  EXPECT_EQ(span_of(*sat, dna_), (Span{3, 6, 3, 3}));
  EXPECT_EQ(sat->unit_cursor_fwd, dna_.at(3));
  EXPECT_EQ(sat->unit_cursor_bwd, dna_.at(5));
  EXPECT_EQ(sat->score, 0);
  EXPECT_EQ(sat->mismatches + sat->insertions + sat->deletions + sat->num_Ns, 0U);
  EXPECT_EQ(sat->recursion_level, 0);
  EXPECT_EQ(sat->aux_object, nullptr);
  EXPECT_EQ(sat->missense.size, 0U);
  recycle_sat(sat_alloc, sat);
}

TEST_F(Pool, AReusedRecordKeepsTheMemoryOfItsEvents) {
  Csat* sat = take();
  for (int i = 0; i < 5; ++i) sat->missense.push_back({dna_.at(i), 'M'});
  ASSERT_EQ(sat->missense.capacity, 8U);
  const Missense* memory = sat->missense.buf;
  recycle_sat(sat_alloc, sat);

  ASSERT_EQ(take(), sat);
  for (int i = 0; i < 8; ++i) sat->missense.push_back({dna_.at(i), 'D'});
  EXPECT_EQ(sat->missense.buf, memory);
  EXPECT_EQ(sat->missense.capacity, 8U);
  recycle_sat(sat_alloc, sat);
}

TEST_F(Pool, ASpareRecordGoesBackToThePoolUnlessItWasHandedOver) {
  Csat* sat = nullptr;
  {
    SpareSat spare;
    sat = &spare.candidate(dna_.at(0), dna_.at(2));
    EXPECT_EQ(&spare.candidate(dna_.at(1), dna_.at(3)), sat);
    EXPECT_EQ(sat->pos_left, dna_.at(1));
  }
  EXPECT_THAT(sat_alloc, ElementsAre(sat));
  {
    SpareSat spare;
    spare.candidate(dna_.at(0), dna_.at(2));
    CsatContainer results(sat_alloc);
    spare.move_to(results);
    EXPECT_THAT(results, ElementsAre(sat));
    EXPECT_TRUE(sat_alloc.empty());
    EXPECT_NE(&spare.candidate(dna_.at(0), dna_.at(2)), sat);
  }
  EXPECT_EQ(sat_alloc.size(), 2U);
}

}  // namespace
}  // namespace vorlan
