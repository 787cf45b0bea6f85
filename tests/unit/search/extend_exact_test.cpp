// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include <string>

#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/recording_console.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The extend-exact search of one sequence.
class ExtendedRepeats {
 public:
  explicit ExtendedRepeats(std::string_view bases) : dna(bases), controller(1, dna) {
    controller.search_exact_and_extend_to_imperfect_repeats();
  }

  std::vector<Span> spans() const { return spans_of(controller.imperfect_sats, dna); }
  const Csat& first() const { return *controller.imperfect_sats.front(); }

  Dna dna;
  CSearchController controller;
};

/// Two halves of score 12 with a mismatch between them: in phase, 12 - 5 + 14 = 21 together.
constexpr const char* kTwoHalves = "ACACACACACACACGCACACACACACACA";

using ExtendExact = FreshSettings;

TEST_F(ExtendExact, ASeedThatCannotBeExtendedKeepsItsSpan) {
  const ExtendedRepeats found("NNNACACACACNNN");
  ASSERT_THAT(found.spans(), ElementsAre(Span{3, 11, 3, 2}));
  EXPECT_EQ(found.first().score, 6);
  EXPECT_TRUE(found.controller.exact_sats.empty());
}

// Seeds of score 4 on both sides of a mismatch: 4 - 5 + 7 = 6.
TEST_F(ExtendExact, TheThresholdsOfTheUserAreComparedAfterTheExtension) {
  search_only(2);
  const std::string bases = "ACACACGCACACAC";
  {
    const ExtendedRepeats found(bases);
    ASSERT_FALSE(found.spans().empty());
    EXPECT_THAT(found.spans(), Each(AllOf(Field(&Span::left, 0), Field(&Span::right, 14))));
    EXPECT_EQ(found.first().score, 6);
    EXPECT_EQ(found.first().mismatches, 1U);
    EXPECT_EQ(events_of(found.first(), found.dna), "6M ");
  }
  CSearchController::reset_minimum_arrays();
  global_min_score = 7;
  EXPECT_THAT(ExtendedRepeats(bases).spans(), IsEmpty());
}

TEST_F(ExtendExact, TheLengthThresholdCountsTheBasesOfThePerfectRepeat) {
  // 27 residues with one base missing at position 12: repeat length 28.
  const std::string bases = "ACGTACGTACGTCGTACGTACGTACGT";
  search_only(4);
  global_min_length = 28;
  EXPECT_FALSE(ExtendedRepeats(bases).spans().empty());
  CSearchController::reset_minimum_arrays();
  global_min_length = 29;
  EXPECT_THAT(ExtendedRepeats(bases).spans(), IsEmpty());
}

TEST_F(ExtendExact, BothHalvesOfARepeatAreExtendedAndKept) {
  const ExtendedRepeats found(kTwoHalves);
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 29, 0, 2}, Span{0, 29, 15, 2}));
  for (const Csat* sat : found.controller.imperfect_sats) {
    EXPECT_EQ(sat->score, 21);
    EXPECT_EQ(sat->mismatches, 1U);
    EXPECT_EQ(events_of(*sat, found.dna), "14M ");
  }
}

TEST_F(ExtendExact, OverlapRemovalLeavesTheFirstOfEqualHalves) {
  ExtendedRepeats found(kTwoHalves);
  found.controller.remove_hidden(found.controller.imperfect_sats);
  found.controller.complete_events(found.controller.imperfect_sats);
  EXPECT_THAT(found.spans(), ElementsAre(Span{0, 29, 0, 2}));
}

/// Perfect copies of AC and then `mismatches` T, each with 10 perfect copies behind it.
std::string array_with_mismatches(int mismatches) {
  std::string copies_behind_a_mismatch = "T";
  copies_behind_a_mismatch += repeated("CA", 10) + "C";
  return repeated("AC", 20) + repeated(copies_behind_a_mismatch, mismatches);
}

TEST_F(ExtendExact, ARepeatWithManyEditsHoldsNoneUntilItIsToBeReported) {
  for (const unsigned mismatches : {64U, 65U}) {
    ExtendedRepeats found(array_with_mismatches(static_cast<int>(mismatches)));
    const bool are_held = mismatches == 64;
    ASSERT_FALSE(found.controller.imperfect_sats.empty());
    EXPECT_EQ(found.first().mismatches, mismatches);
    EXPECT_EQ(found.first().events_pending, !are_held);
    EXPECT_EQ(found.first().missense.size, are_held ? mismatches : 0);
    EXPECT_EQ(found.first().missense.buf != nullptr, are_held);
    found.controller.complete_events(found.controller.imperfect_sats);
    EXPECT_EQ(found.first().missense.size, mismatches);
  }
}

// Seeds of score 12 close their spans only when the user would see them. Otherwise each start is a
// seed: 0 to 12 in the left half and 15 to 26 in the right one.
TEST_F(ExtendExact, ASeedBelowTheThresholdsOfTheUserLeavesItsSpanOpen) {
  search_only(2);
  global_min_score = 13;
  EXPECT_EQ(ExtendedRepeats(kTwoHalves).spans().size(), 25U);
  CSearchController::reset_minimum_arrays();
  global_min_score = 12;
  EXPECT_EQ(ExtendedRepeats(kTwoHalves).spans().size(), 2U);
}

TEST_F(ExtendExact, ASeedOutsideThePerfectionOfTheUserLeavesItsSpanOpen) {
  search_only(2);
  global_max_perfection = 99.0F;
  EXPECT_EQ(ExtendedRepeats(kTwoHalves).spans().size(), 25U);
}

// 4 points on the left, N in the place of A, -5 for G in the place of C, 7 points on the right: 6
// from each of the five starts on the left and on the right, where the unit at the very end of the
// sequence is none.
TEST_F(ExtendExact, AnNBehindASeedIsBridgedBeforeItsFirstEdit) {
  search_only(2);
  const ExtendedRepeats found("ACACACNGACACACA");
  EXPECT_THAT(found.spans(), SizeIs(10));
  EXPECT_THAT(found.spans(), Each(AllOf(Field(&Span::left, 0), Field(&Span::right, 15))));
}

TEST_F(ExtendExact, NAtTheEndsOfAnExtendedSeedIsTrimmed) {
  search_only(3);
  const ExtendedRepeats found("TNNACGACGACGNNT");
  ASSERT_THAT(found.spans(), ElementsAre(Span{3, 12, 3, 3}));
  EXPECT_EQ(found.first().num_Ns, 0U);
  EXPECT_EQ(found.first().score, 6);
  EXPECT_EQ(found.first().unit_cursor_fwd, found.dna.at(3));
  EXPECT_EQ(found.first().unit_cursor_bwd, found.dna.at(5));
}

// The middle seed is extended to the right over the G at 29 and then to the left over that at 14.
TEST_F(ExtendExact, EventsAreSorted) {
  search_only(2);
  const ExtendedRepeats found(repeated("AC", 7) + "G" + repeated("CA", 7) + "G" +
                              repeated("AC", 7));
  ASSERT_EQ(found.spans().size(), 3U);
  for (const Csat* sat : found.controller.imperfect_sats) {
    EXPECT_EQ(events_of(*sat, found.dna), "14M 29M ");
  }
}

TEST_F(ExtendExact, WithoutSeedsBothPhasesAreAnnounced) {
  const RecordingConsole console(false);
  Dna dna("ACGTTGCA");
  CSearchController controller(1, dna, console.hooks());
  controller.search_exact_and_extend_to_imperfect_repeats();
  EXPECT_TRUE(controller.exact_sats.empty());
  EXPECT_TRUE(controller.imperfect_sats.empty());
  EXPECT_THAT(
      RecordingConsole::announcements,
      ElementsAre("  Searching for exact repeats.\n", "  Extend exact to imperfect repeats.\n"));
}

// The seeds are [3, 11) from seven starts with unit length 2 and from five with unit length 4.
TEST_F(ExtendExact, RejectedSeedsShareOneRecordOfThePool) {
  const EmptyPool empty_pool;
  global_min_score = 20;
  const ExtendedRepeats found("NNNACACACACNNN");
  EXPECT_TRUE(found.controller.imperfect_sats.empty());
  EXPECT_TRUE(found.controller.exact_sats.empty());
  EXPECT_EQ(sat_alloc.size(), 1U);
}

TEST_F(ExtendExact, TheThresholdsOfTheUserAreActiveAgainAfterwards) {
  const ExtendedRepeats found("ACGTTGCA");
  EXPECT_EQ((*CSearchController::minScores)[1], 6);
  EXPECT_EQ((*CSearchController::minScores_intern)[1], 4);
}

// The run of A at 3 is a seed before the one of unit length 8 at 10, which is then extended to the
// left over the mismatch at 9: 17 - 5 + 9 = 21.
TEST_F(ExtendExact, ResultsAreSortedAgainAfterTheExtension) {
  accept_from_score(4);
  global_max_unit_length = 8;
  std::string bases = repeated("CGTAAAAA", 4) + "CGT";
  bases[9] = 'T';
  const ExtendedRepeats found(bases);
  ASSERT_THAT(found.spans(), ElementsAre(Span{0, 35, 10, 8}, Span{3, 8, 3, 1}, Span{11, 16, 11, 1},
                                         Span{19, 24, 19, 1}, Span{27, 32, 27, 1}));
  EXPECT_EQ(found.first().score, 21);
  EXPECT_EQ(events_of(found.first(), found.dna), "9M ");
}

}  // namespace
}  // namespace vorlan
