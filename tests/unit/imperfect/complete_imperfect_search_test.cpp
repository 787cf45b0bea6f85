// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include <climits>
#include <string>

#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The complete imperfect search of one sequence.
class ImperfectRepeats {
 public:
  explicit ImperfectRepeats(std::string_view bases) : dna(bases), controller(1, dna) {
    controller.complete_imperfect_search(nullptr);
  }

  std::vector<Span> spans() const { return spans_of(controller.imperfect_sats, dna); }
  const Csat& first() const { return *controller.imperfect_sats.front(); }

  Dna dna;
  CSearchController controller;
};

using ImperfectSearch = FreshSettings;

TEST_F(ImperfectSearch, ARepeatIsFoundWithItsEdits) {
  search_only(2);
  // 6 - 5 + 9 = 10
  const ImperfectRepeats found("GACACACACGCACACACACG");
  ASSERT_THAT(found.spans(), ElementsAre(Span{1, 19, 1, 2}));
  EXPECT_EQ(found.first().score, 10);
  EXPECT_EQ(found.first().mismatches, 1U);
  EXPECT_EQ(events_of(found.first(), found.dna), "9M ");
  EXPECT_TRUE(found.controller.exact_sats.empty());
}

// Any candidate is accepted; the span of each is closed for the next.
TEST_F(ImperfectSearch, AUnitThatEndsAtTheLastResidueIsNeverTried) {
  accept_from_score(0);
  search_only(2);
  EXPECT_THAT(ImperfectRepeats("ACGT").spans(), ElementsAre(Span{0, 2, 0, 2}));
  EXPECT_THAT(ImperfectRepeats("ACGTA").spans(), ElementsAre(Span{0, 2, 0, 2}, Span{2, 4, 2, 2}));
  search_only(4);
  EXPECT_THAT(ImperfectRepeats("ACGT").spans(), IsEmpty());
  EXPECT_THAT(ImperfectRepeats("ACG").spans(), IsEmpty());
  EXPECT_THAT(ImperfectRepeats("").spans(), IsEmpty());
}

TEST_F(ImperfectSearch, TheLastResidueIsNeverAStartOfUnitLength1) {
  accept_from_score(0);
  search_only(1);
  EXPECT_THAT(ImperfectRepeats("ACG").spans(), ElementsAre(Span{0, 1, 0, 1}, Span{1, 2, 1, 1}));
  EXPECT_THAT(ImperfectRepeats("A").spans(), IsEmpty());
}

TEST_F(ImperfectSearch, AUnitWithNIsNeverTried) {
  accept_from_score(0);
  search_only(2);
  EXPECT_THAT(ImperfectRepeats("ANANANANANANANAN").spans(), IsEmpty());
  search_only(1);
  EXPECT_THAT(ImperfectRepeats("NNNN").spans(), IsEmpty());
}

TEST_F(ImperfectSearch, ARunOfOneBaseBelongsToUnitLength1) {
  EXPECT_THAT(ImperfectRepeats("AAAAAAAAAAAAAAAAAAAA").spans(), ElementsAre(Span{0, 20, 0, 1}));
  global_min_unit_length = 2;
  EXPECT_THAT(ImperfectRepeats("AAAAAAAAAAAAAAAAAAAA").spans(), IsEmpty());
}

TEST_F(ImperfectSearch, ARepeatWithoutEditsIsNotFoundWithALongerUnit) {
  global_min_unit_length = 2;
  EXPECT_THAT(ImperfectRepeats("ACACACACACACACACACAC").spans(), ElementsAre(Span{0, 20, 0, 2}));
}

// The base before the repeat of AC is open, and so is the last one of the unit of length 10.
TEST_F(ImperfectSearch, TheFirstPositionOfAClosedRepeatCanBeTriedAgainForALongerUnit) {
  global_min_unit_length = 2;
  EXPECT_THAT(ImperfectRepeats("TACACACACTGACACACACTG").spans(),
              ElementsAre(Span{1, 9, 1, 2}, Span{1, 21, 1, 10}, Span{11, 19, 11, 2}));
}

// As a repeat of AC the sequence has mismatches at 8, 18 and 28: 6 - 5 + 9 - 5 + 9 - 5 + 9 = 18.
// Its period of 10 starts at the first of them. (Unit length 9 from position 0 scores 11.)
TEST_F(ImperfectSearch, EditPositionsAreOpenForLongerUnits) {
  global_min_unit_length = 2;
  global_min_score = 12;
  const ImperfectRepeats found("ACACACAC" + repeated("GCACACACAC", 3));
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 38, 0, 2}, Span{0, 38, 8, 10}));
  EXPECT_EQ(found.first().score, 18);
  EXPECT_EQ(events_of(found.first(), found.dna), "8M 18M 28M ");
  EXPECT_EQ(found.controller.imperfect_sats.back()->score, 28);
}

// [4, 17) is a repeat of A with a mismatch at 10. If its span were still closed, the period of 7
// could only be found from the base before the span, not from position 0. The slope keeps AAAG with
// two deletions (score 7) out.
TEST_F(ImperfectSearch, RepeatsOfUnitLength1CloseNothingForLongerUnits) {
  global_max_unit_length = 7;
  global_min_score_bx = 2.0F;
  EXPECT_THAT(ImperfectRepeats("AAAGAAAAAAGAAAAAAGAAA").spans(),
              ElementsAre(Span{0, 21, 0, 7}, Span{4, 17, 4, 1}));
}

TEST_F(ImperfectSearch, NAtTheEndsIsTrimmedAndTheScoreStays) {
  search_only(3);
  const ImperfectRepeats found("TNNACGACGACGNNT");
  ASSERT_THAT(found.spans(), ElementsAre(Span{3, 12, 3, 3}));
  EXPECT_EQ(found.first().num_Ns, 0U);
  EXPECT_EQ(found.first().score, 6);
  EXPECT_EQ(found.first().unit_cursor_fwd, found.dna.at(3));
  EXPECT_EQ(found.first().unit_cursor_bwd, found.dna.at(5));
}

TEST_F(ImperfectSearch, NInsideARepeatStaysCounted) {
  search_only(3);
  const ImperfectRepeats found("NACGACGANGACGN");
  ASSERT_THAT(found.spans(), ElementsAre(Span{1, 13, 1, 3}));
  EXPECT_EQ(found.first().num_Ns, 1U);
  EXPECT_EQ(found.first().score, 8);
}

TEST_F(ImperfectSearch, ThresholdsThatAreEqualledAreReached) {
  search_only(2);
  global_min_score = 6;
  global_min_length = 8;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), ElementsAre(Span{0, 8, 0, 2}));
  CSearchController::reset_minimum_arrays();
  global_min_length = 9;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), IsEmpty());
  CSearchController::reset_minimum_arrays();
  global_min_length = 8;
  global_min_score = 7;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), IsEmpty());
}

// 27 residues with one base missing: repeat length 28.
TEST_F(ImperfectSearch, TheLengthThresholdCountsTheBasesOfThePerfectRepeat) {
  search_only(4);
  global_min_length = 28;
  const std::string bases = repeated("ACGT", 3) + "CGT" + repeated("ACGT", 3);
  EXPECT_THAT(ImperfectRepeats(bases).spans(), ElementsAre(Span{0, 27, 0, 4}));
  CSearchController::reset_minimum_arrays();
  global_min_length = 29;
  EXPECT_THAT(ImperfectRepeats(bases).spans(), IsEmpty());
}

// Each stretch of four left of 28 holds an N, so that the candidate at 28 is extended to the left
// over the mismatches at 20 and then 8: 12 + 5 - 5 + 8 - 5 + 6 = 21.
TEST_F(ImperfectSearch, EventsAreSorted) {
  search_only(4);
  const ImperfectRepeats found("ACGNACGNTCGNACGNACGNTCGNACGN" + repeated("ACGT", 4));
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 44, 28, 4}));
  EXPECT_EQ(found.first().score, 21);
  EXPECT_EQ(found.first().num_Ns, 7U);
  EXPECT_EQ(events_of(found.first(), found.dna), "8M 20M ");
}

// A perfection that will not be printed does not matter here: the span is closed all the same.
TEST_F(ImperfectSearch, ARepeatOutsideThePerfectionRangeClosesItsSpan) {
  search_only(2);
  global_max_perfection = 50.0F;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), ElementsAre(Span{0, 8, 0, 2}));
}

TEST_F(ImperfectSearch, EndsForTheLargestUnitLengthThereIs) {
  global_min_unit_length = 2;
  global_max_unit_length = UINT_MAX;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), ElementsAre(Span{0, 8, 0, 2}));
  global_min_unit_length = UINT_MAX;
  EXPECT_THAT(ImperfectRepeats("ACACACACG").spans(), IsEmpty());
}

TEST_F(ImperfectSearch, RejectedCandidatesLeaveNoRecordBehind) {
  const EmptyPool empty_pool;
  std::size_t records = 0;
  for (int round = 0; round < 3; ++round) {
    const std::size_t before = records;
    { const ImperfectRepeats found("GACACACACTTGGACTACACACACG"); }
    records = sat_alloc.size();
    if (round > 0) {
      EXPECT_EQ(records, before);  // nothing new is made once the pool has enough
    }
  }
  EXPECT_GT(records, 0U);
}

}  // namespace
}  // namespace vorlan
