// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include <climits>
#include <iterator>
#include <list>

#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

/// The exact search of one sequence.
class ExactRepeats {
 public:
  explicit ExactRepeats(std::string_view bases) : dna(bases), controller(1, dna) {
    controller.exact_search_2();
  }

  std::vector<Span> spans() const { return spans_of(controller.exact_sats, dna); }
  const Csat& first() const { return *controller.exact_sats.front(); }

  Dna dna;
  CSearchController controller;
};

class ExactSearch : public FreshSettings {
 protected:
  /// What would not be printed does not close its span, so that every start is tried.
  static void close_nothing() { global_max_perfection = 99.0F; }
};

using ExactSearchDeathTest = ExactSearch;

TEST_F(ExactSearch, APerfectRepeatIsFoundOnceWithItsLengthLessOneUnitAsScore) {
  search_only(2);
  const ExactRepeats found("ACACACACG");
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 8, 0, 2}));
  EXPECT_EQ(found.first().score, 6);
  EXPECT_EQ(found.first().missense.size, 0U);
  EXPECT_TRUE(found.controller.imperfect_sats.empty());
}

TEST_F(ExactSearch, ARepeatBelowAThresholdIsNotFound) {
  search_only(2);
  EXPECT_THAT(ExactRepeats("GACACACAG").spans(), IsEmpty());  // score 5
  CSearchController::reset_minimum_arrays();
  global_min_length = 9;
  EXPECT_THAT(ExactRepeats("GACACACACG").spans(), IsEmpty());
  EXPECT_THAT(ExactRepeats("GACACACACAG").spans(), ElementsAre(Span{1, 10, 1, 2}));
}

TEST_F(ExactSearch, ARunOfOneBaseBelongsToUnitLength1) {
  global_max_unit_length = 3;
  EXPECT_THAT(ExactRepeats("AAAAAAA").spans(), ElementsAre(Span{0, 7, 0, 1}));
  global_min_unit_length = 2;
  EXPECT_THAT(ExactRepeats("AAAAAAA").spans(), IsEmpty());
}

TEST_F(ExactSearch, RunsOfOneBaseDoNotCloseTheSequenceForLongerUnits) {
  global_max_unit_length = 8;
  EXPECT_THAT(ExactRepeats("AAAAAAACAAAAAAAC").spans(),
              ElementsAre(Span{0, 7, 0, 1}, Span{0, 16, 0, 8}, Span{8, 15, 8, 1}));
}

// Every start gives a record when a score of 0 is enough: the last start is n - u - 1.
TEST_F(ExactSearch, AUnitThatEndsAtTheLastBaseIsNeverACandidate) {
  accept_from_score(0);
  close_nothing();
  search_only(2);
  EXPECT_THAT(ExactRepeats("ACGT").spans(), ElementsAre(Span{0, 2, 0, 2}, Span{1, 3, 1, 2}));
  search_only(3);
  EXPECT_THAT(ExactRepeats("ACGT").spans(), ElementsAre(Span{0, 3, 0, 3}));
  search_only(4);
  EXPECT_THAT(ExactRepeats("ACGT").spans(), IsEmpty());
  search_only(1);
  EXPECT_THAT(ExactRepeats("ACG").spans(), ElementsAre(Span{0, 1, 0, 1}, Span{1, 2, 1, 1}));
}

TEST_F(ExactSearch, ARepeatMayExtendToTheFirstAndTheLastBase) {
  search_only(2);
  EXPECT_THAT(ExactRepeats("GACACACAC").spans(), ElementsAre(Span{1, 9, 1, 2}));
  EXPECT_THAT(ExactRepeats("ACACACACG").spans(), ElementsAre(Span{0, 8, 0, 2}));
}

TEST_F(ExactSearch, AShortSequenceHasNoRepeats) {
  accept_from_score(0);
  EXPECT_THAT(ExactRepeats("").spans(), IsEmpty());
  EXPECT_THAT(ExactRepeats("A").spans(), IsEmpty());
  EXPECT_THAT(ExactRepeats("NN").spans(), IsEmpty());
}

TEST_F(ExactSearch, AShortNRunIsBridgedWithScore0) {
  search_only(2);
  const ExactRepeats found("ACACNNACAC");
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 10, 0, 2}));
  EXPECT_EQ(found.first().num_Ns, 2U);
  EXPECT_EQ(found.first().score, 6);
}

TEST_F(ExactSearch, NTakesThePlaceOfUnitBases) {
  search_only(2);
  accept_from_score(3);
  EXPECT_THAT(ExactRepeats("ACACNACACA").spans(), ElementsAre(Span{5, 10, 5, 2}));
  EXPECT_THAT(ExactRepeats("ACACNCACAC").spans(), ElementsAre(Span{0, 10, 0, 2}));
}

TEST_F(ExactSearch, AnNRunThatIsTooLongStopsARepeat) {
  search_only(2);
  accept_from_score(2);
  EXPECT_THAT(ExactRepeats("ACACNNNACAC").spans(),
              ElementsAre(Span{0, 4, 0, 2}, Span{7, 11, 7, 2}));
}

TEST_F(ExactSearch, NIsNotBridgedWhenNoneIsAllowedOrWhenItIsMissense) {
  search_only(2);
  accept_from_score(2);
  const auto halves = ElementsAre(Span{0, 4, 0, 2}, Span{6, 10, 6, 2});
  global_Ns_allowed_in_a_row = 0;
  EXPECT_THAT(ExactRepeats("ACACNNACAC").spans(), halves);
  global_Ns_allowed_in_a_row = 2;
  global_treat_Ns_as_missense = true;
  EXPECT_THAT(ExactRepeats("ACACNNACAC").spans(), halves);
}

// The bridged N at position 2 counts; the two behind the repeat are trimmed off.
TEST_F(ExactSearch, OnlyNInsideARepeatCount) {
  search_only(2);
  const ExactRepeats found("ACNCACACACNNG");
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 10, 0, 2}));
  EXPECT_EQ(found.first().num_Ns, 1U);
  EXPECT_EQ(found.first().score, 7);
}

TEST_F(ExactSearch, NAtBothEndsIsTrimmedAndTheCursorsGoBack) {
  search_only(3);
  const ExactRepeats found("TNNACGACGACGNNT");
  ASSERT_THAT(found.spans(), ElementsAre(Span{3, 12, 3, 3}));
  EXPECT_EQ(found.first().num_Ns, 0U);
  EXPECT_EQ(found.first().score, 6);
  EXPECT_EQ(found.first().unit_cursor_fwd, found.dna.at(3));
  EXPECT_EQ(found.first().unit_cursor_bwd, found.dna.at(5));
}

TEST_F(ExactSearch, NAtTheEndsOfTheSequenceIsTrimmed) {
  search_only(3);
  const ExactRepeats found("NACGACGACGN");
  ASSERT_THAT(found.spans(), ElementsAre(Span{1, 10, 1, 3}));
  EXPECT_EQ(found.first().num_Ns, 0U);
}

TEST_F(ExactSearch, LeadingNAreNoStartsOfUnitLength1) {
  search_only(1);
  EXPECT_THAT(ExactRepeats("NNNNAAAAAAACCCCCCC").spans(),
              ElementsAre(Span{4, 11, 4, 1}, Span{11, 18, 11, 1}));
}

TEST_F(ExactSearch, ARepeatThatWouldNotBePrintedIsFoundFromEveryStartInsideIt) {
  search_only(2);
  close_nothing();
  EXPECT_THAT(ExactRepeats("ACACACACG").spans(),
              ElementsAre(Span{0, 8, 0, 2}, Span{0, 8, 1, 2}, Span{0, 8, 2, 2}, Span{0, 8, 3, 2},
                          Span{0, 8, 4, 2}, Span{0, 8, 5, 2}, Span{0, 8, 6, 2}));
}

// The same starts fail for a repeat with N when N lowers its perfection below the minimum.
TEST_F(ExactSearch, PerfectionBoundsAreInclusive) {
  search_only(2);
  global_min_perfection = 80.0F;
  EXPECT_EQ(ExactRepeats("ACACNNACAC").spans().size(), 1U);
  global_min_perfection = 80.5F;
  EXPECT_GT(ExactRepeats("ACACNNACAC").spans().size(), 1U);
}

TEST_F(ExactSearch, AClosedRepeatIsNotFoundWithALongerUnit) {
  global_min_unit_length = 2;
  EXPECT_THAT(ExactRepeats("ACACACACACACACACACAC").spans(), ElementsAre(Span{0, 20, 0, 2}));
}

// The base before the repeat of AC is open, and so is the last one of the unit of length 10.
TEST_F(ExactSearch, TheFirstPositionOfAClosedRepeatCanBeTriedAgainForALongerUnit) {
  global_min_unit_length = 2;
  EXPECT_THAT(ExactRepeats("TACACACACTGACACACACTG").spans(),
              ElementsAre(Span{1, 9, 1, 2}, Span{1, 21, 1, 10}, Span{11, 19, 11, 2}));
}

// 12 bases: starts 0 to 9 for unit length 2 and 0 to 7 for unit length 4, all with the same span.
TEST_F(ExactSearch, OfEqualSpansTheShorterUnitComesFirst) {
  close_nothing();
  global_min_unit_length = 2;
  global_max_unit_length = 4;
  const std::vector<Span> spans = ExactRepeats("ACACACACACAC").spans();
  ASSERT_EQ(spans.size(), 18U);
  for (std::ptrdiff_t i = 0; i < 18; ++i) {
    const Span expected = i < 10 ? Span{0, 12, i, 2} : Span{0, 12, i - 10, 4};
    EXPECT_EQ(spans[static_cast<std::size_t>(i)], expected);
  }
}

TEST_F(ExactSearch, NothingIsSearchedWhenTheUnitLengthsAreCrossed) {
  global_min_unit_length = 3;
  global_max_unit_length = 2;
  EXPECT_THAT(ExactRepeats("ACACACACACACACACACAC").spans(), IsEmpty());
}

TEST_F(ExactSearch, EndsForTheLargestUnitLengthThereIs) {
  global_min_unit_length = 2;
  global_max_unit_length = UINT_MAX;
  EXPECT_THAT(ExactRepeats("ACACACACG").spans(), ElementsAre(Span{0, 8, 0, 2}));
  global_min_unit_length = UINT_MAX;
  EXPECT_THAT(ExactRepeats("ACACACACG").spans(), IsEmpty());
}

TEST_F(ExactSearch, NoRecordIsInAListAndInThePoolAtOnce) {
  const EmptyPool empty_pool;
  search_only(2);
  std::list<Csat*> results;
  {
    const ExactRepeats found("ACACACACTGTTGTGTGTGTGTCA");
    results = found.controller.exact_sats;
    EXPECT_THAT(found.spans(), ElementsAre(Span{0, 8, 0, 2}, Span{11, 22, 11, 2}));
    for (const Csat* sat : results) EXPECT_THAT(sat_alloc, Not(Contains(sat)));
  }
  std::list<Csat*> recycled_last(std::prev(sat_alloc.end(), 2), sat_alloc.end());
  EXPECT_EQ(recycled_last, results);
}

TEST_F(ExactSearchDeathTest, AnUnknownPerfectionModeEndsTheProcessAtTheFirstRepeatOfPhaseB) {
  global_N_and_perfection_mode = 3;
  EXPECT_THAT(ExactRepeats("AAAAAAA").spans(), ElementsAre(Span{0, 7, 0, 1}));
  EXPECT_EXIT(ExactRepeats("ACACACACG"), ::testing::ExitedWithCode(2), ::testing::Eq(""));
}

}  // namespace
}  // namespace vorlan
