// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::ElementsAre;

class OverlapRemoval : public FreshSettings {
 protected:
  /// Appends a repeat of the residues [left, right).
  Csat* add(int left, int right, int unit_length, int score) {
    Csat* sat = new_sat(dna_.at(left), dna_.at(left + unit_length));
    sat->pos_right = dna_.at(right);
    sat->score = score;
    sats().push_back(sat);
    return sat;
  }

  CsatContainer& sats() { return controller_.imperfect_sats; }
  void remove_hidden() { controller_.remove_hidden(sats()); }

  EmptyPool empty_pool_;
  Dna dna_{std::string(300, 'A')};
  CSearchController controller_{1, dna_};
};

TEST_F(OverlapRemoval, OfIdenticalSpansTheLowerScoreGoes) {
  Csat* lower = add(10, 40, 2, 20);
  Csat* higher = add(10, 40, 3, 21);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(higher));
  EXPECT_THAT(sat_alloc, ElementsAre(lower));
}

TEST_F(OverlapRemoval, OfIdenticalSpansAndScoresTheSecondGoes) {
  Csat* first = add(10, 40, 2, 20);
  Csat* second = add(10, 40, 3, 20);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(first));
  EXPECT_THAT(sat_alloc, ElementsAre(second));
}

// They share 10 bases: 60 >= 10 + 2 and 40 >= 10 + 3.
TEST_F(OverlapRemoval, RepeatsThatOverlapByLittleBothStay) {
  Csat* a = add(100, 160, 2, 50);
  Csat* b = add(150, 190, 3, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, b));
  EXPECT_TRUE(sat_alloc.empty());
}

// The overlap is all 40 bases of the second: 40 < 40 + 4.
TEST_F(OverlapRemoval, ARepeatInsideAHigherScoringOneGoes) {
  Csat* a = add(100, 160, 2, 50);
  add(110, 150, 4, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a));
}

TEST_F(OverlapRemoval, ALongerRepeatGoesWhenTheOneInsideItScoresHigher) {
  add(100, 160, 2, 50);
  Csat* b = add(110, 150, 4, 60);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(b));
}

TEST_F(OverlapRemoval, ScoresAreComparedAsSignedNumbers) {
  add(100, 160, 2, -1);
  Csat* b = add(110, 150, 4, 0);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(b));
}

// One unit outside the overlap is enough to stay, one base less is not: the second repeat has 4 or
// 3 bases behind the first.
TEST_F(OverlapRemoval, ARepeatIsMostlyHiddenWithLessThanOneUnitOutside) {
  Csat* a = add(100, 160, 2, 50);
  Csat* b = add(130, 164, 4, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, b));
  b->pos_right = dna_.at(163);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a));
}

// Here the first repeat is the hidden one: [100, 130) has only 1 base before the second.
TEST_F(OverlapRemoval, WhichOfTheTwoIsHiddenDoesNotMatter) {
  Csat* a = add(100, 130, 2, 50);
  add(101, 160, 2, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a));
}

TEST_F(OverlapRemoval, AdjacentRepeatsNeverInteract) {
  Csat* a = add(100, 110, 50, 1);
  Csat* b = add(110, 120, 50, 2);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, b));
}

// The edits do not count: 30 residues, of which 10 are insertions, still span 30 >= 20 + 2.
TEST_F(OverlapRemoval, TheSpanIsThatInTheSequence) {
  Csat* a = add(100, 130, 2, 50);
  a->insertions = 10;
  Csat* b = add(110, 160, 2, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, b));
}

TEST_F(OverlapRemoval, ALongRepeatIsComparedWithEveryOneInsideIt) {
  Csat* a = add(100, 200, 2, 90);
  add(105, 115, 2, 8);
  add(130, 140, 2, 8);
  Csat* behind = add(195, 240, 2, 30);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, behind));
}

TEST_F(OverlapRemoval, TheSuccessorOfARemovedRecordIsComparedWithThoseBehindIt) {
  Csat* first = add(100, 160, 2, 40);
  Csat* second = add(101, 161, 4, 50);
  Csat* third = add(110, 120, 2, 8);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(second));
  EXPECT_THAT(sat_alloc, ElementsAre(first, third));
}

// The first removes the second and is then removed by the third.
TEST_F(OverlapRemoval, ARecordRemovedEarlierDoesNotComeBack) {
  Csat* first = add(100, 160, 2, 40);
  Csat* second = add(110, 120, 2, 8);
  Csat* third = add(130, 150, 2, 50);
  remove_hidden();  // the second and the third alone would both stay: they do not overlap
  EXPECT_THAT(sats(), ElementsAre(third));
  EXPECT_THAT(sat_alloc, ElementsAre(second, first));
}

TEST_F(OverlapRemoval, NothingIsRemovedWhenItIsSwitchedOff) {
  global_remove_mostly_hidden = false;
  Csat* a = add(10, 40, 2, 20);
  Csat* b = add(10, 40, 3, 21);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a, b));
}

TEST_F(OverlapRemoval, ThePreferenceForLongerRepeatsDoesNotMatter) {
  global_prefer_longer_repeat = 0;
  Csat* a = add(10, 40, 2, 20);
  add(10, 41, 3, 20);
  remove_hidden();
  EXPECT_THAT(sats(), ElementsAre(a));
}

TEST_F(OverlapRemoval, AnEmptyListStaysEmpty) {
  remove_hidden();
  EXPECT_TRUE(sats().empty());
}

}  // namespace
}  // namespace vorlan
