// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include <limits>
#include <string>

#include "imperfect/scoring.h"
#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

/// A seed of one unit copy in a sequence, and its extension.
class Seed {
 public:
  Seed(std::string_view bases, std::ptrdiff_t left, std::ptrdiff_t right)
      : dna(bases), controller_(1, dna) {
    sat.init(dna.at(left), dna.at(right));
  }

  Seed& forward() {
    controller_.extend_imperfect_forward(sat, dna.end());
    return *this;
  }
  Seed& backward() {
    controller_.extend_imperfect_backward(sat, dna.at(0));
    return *this;
  }

  Span span() const { return span_of(sat, dna); }
  std::string events() const { return events_of(sat, dna); }

  Dna dna;
  Csat sat;

 private:
  CSearchController controller_;
};

using Extension = FreshSettings;

TEST_F(Extension, ASeedAtTheEndOfTheSequenceIsLeftAsItIs) {
  Seed seed("AC", 0, 2);
  seed.forward().backward();
  EXPECT_EQ(seed.span(), (Span{0, 2, 0, 2}));
  EXPECT_EQ(seed.sat.score, 0);
  EXPECT_EQ(seed.sat.unit_cursor_fwd, seed.dna.at(0));
  EXPECT_EQ(seed.sat.unit_cursor_bwd, seed.dna.at(1));
  EXPECT_EQ(seed.events(), "");
}

TEST_F(Extension, APerfectContinuationIsTakenWithoutAnyEvent) {
  Seed right("ACACACA", 0, 2);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 7, 0, 2}));
  EXPECT_EQ(right.sat.score, 5);
  EXPECT_EQ(right.sat.unit_cursor_fwd, right.dna.at(1));
  EXPECT_EQ(right.sat.unit_cursor_bwd, right.dna.at(1));
  EXPECT_EQ(right.sat.missense.capacity, 0U);  // no event was ever noted

  Seed left("CACACAC", 5, 7);
  left.backward();
  EXPECT_EQ(left.span(), (Span{0, 7, 5, 2}));
  EXPECT_EQ(left.sat.score, 5);
  EXPECT_EQ(left.sat.unit_cursor_bwd, left.dna.at(5));
  EXPECT_EQ(left.sat.missense.capacity, 0U);
}

// Levels have 8 bits: 255 is the largest that is ever reached, and after it they begin again at 0.
TEST_F(Extension, ADepthThatLevelsCannotReachIsNone) {
  const auto deepest_level = [](int depth) {
    global_maximum_recursion_depth = depth;
    return Scoring::of_the_run().deepest_level();
  };
  EXPECT_EQ(deepest_level(1), 1);
  EXPECT_EQ(deepest_level(255), 255);
  EXPECT_EQ(deepest_level(256), -1);
  EXPECT_EQ(deepest_level(std::numeric_limits<int>::max()), -1);
}

TEST_F(Extension, AScoreReductionAsLargeAsTheSequenceIsNoLimit) {
  const auto is_limited = [](int reduction) {
    global_maximum_scorereduction = reduction;
    return !Scoring::for_sequence(100).has_constant_threshold();
  };
  EXPECT_TRUE(is_limited(99));
  EXPECT_FALSE(is_limited(100));
  EXPECT_FALSE(is_limited(std::numeric_limits<int>::max() - 1));
  EXPECT_TRUE(is_limited(-1));
}

// Score 6 before the mismatch, 6 - 5 + 4 = 5 at the end: the mismatch does not pay.
TEST_F(Extension, AMismatchThatTheEndLeavesNoRoomToPayForIsNotKept) {
  Seed right("ACACACACGCACA", 0, 2);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 8, 0, 2}));
  EXPECT_EQ(right.sat.score, 6);
  EXPECT_EQ(right.events(), "");

  Seed left("ACACGCACACACA", 11, 13);
  left.backward();
  EXPECT_EQ(left.span(), (Span{5, 13, 11, 2}));
  EXPECT_EQ(left.sat.score, 6);
  EXPECT_EQ(left.events(), "");
}

// Score 6 before the mismatch, 6 - 5 + 5 = 6 at the end: equal.
TEST_F(Extension, OfTwoEqualScoresTheLongerAlignmentIsKept) {
  Seed seed("ACACACACGCACAC", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 14, 0, 2}));
  EXPECT_EQ(seed.sat.score, 6);
  EXPECT_EQ(seed.sat.mismatches, 1U);
  EXPECT_EQ(seed.events(), "8M ");
}

TEST_F(Extension, OfTwoEqualScoresTheShorterAlignmentIsKeptWhenPreferred) {
  global_prefer_longer_repeat = 0;
  Seed seed("ACACACACGCACAC", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 8, 0, 2}));
  EXPECT_EQ(seed.sat.score, 6);
  EXPECT_EQ(seed.sat.mismatches, 0U);
  EXPECT_EQ(seed.sat.unit_cursor_fwd, seed.dna.at(0));
  EXPECT_EQ(seed.events(), "");
}

TEST_F(Extension, AScoreOnePointHigherIsKeptInBothPreferences) {
  for (const int preference : {0, 1}) {
    global_prefer_longer_repeat = preference;
    Seed seed("ACACACACGCACACA", 0, 2);
    seed.forward();
    EXPECT_EQ(seed.span(), (Span{0, 15, 0, 2}));
    EXPECT_EQ(seed.sat.score, 7);
  }
}

TEST_F(Extension, AtTheEndOfTheSequenceAScoreOnePointBelowTheBestIsNotKept) {
  Seed seed("ACACACACGCACA", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 8, 0, 2}));
  EXPECT_EQ(seed.sat.score, 6);
  EXPECT_EQ(seed.events(), "");
}

// With a score reduction of at most 5 nothing can be tried at the T, where the score is 5.
TEST_F(Extension, WhereNoEditCanBeTriedAScoreOnePointBelowTheBestIsKept) {
  global_maximum_scorereduction = 5;
  Seed seed("ACACACACGCACAT", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 13, 0, 2}));
  EXPECT_EQ(seed.sat.score, 5);
  EXPECT_EQ(seed.sat.mismatches, 1U);
  EXPECT_EQ(seed.events(), "8M ");
}

// The reduction that allows the first mismatch is one point larger in this preference.
TEST_F(Extension, WhereNoEditCanBeTriedAScoreBelowTheBestIsNotKeptWhenShorterIsPreferred) {
  global_prefer_longer_repeat = 0;
  global_maximum_scorereduction = 6;
  Seed seed("ACACACACGCACAT", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 8, 0, 2}));
  EXPECT_EQ(seed.sat.score, 6);
  EXPECT_EQ(seed.events(), "");
}

// Unit length 5: one mismatch is allowed at score 0; four matches later the score is -1 and a
// second one would fall below the floor.
TEST_F(Extension, ARecordCanComeOutWithAScoreOfMinus1) {
  Seed seed("ACGTCGCGTCG", 0, 5);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 10, 0, 5}));
  EXPECT_EQ(seed.sat.score, -1);
  EXPECT_EQ(seed.events(), "5M ");
}

// 9 is reached at 17 after the mismatch at 8; the one at 17 leads to 7 at the end.
TEST_F(Extension, EditsBehindTheBestStateAreTakenBack) {
  Seed seed("ACACACACGCACACACATACA", 0, 2);
  seed.forward();
  EXPECT_EQ(seed.span(), (Span{0, 17, 0, 2}));
  EXPECT_EQ(seed.sat.score, 9);
  EXPECT_EQ(seed.sat.mismatches, 1U);
  EXPECT_EQ(seed.sat.insertions + seed.sat.deletions, 0U);
  EXPECT_EQ(seed.events(), "8M ");
  EXPECT_EQ(seed.sat.unit_cursor_fwd, seed.dna.at(1));
}

TEST_F(Extension, TheEventsOfTheForwardExtensionSurviveTheBackwardOne) {
  const std::string bases = repeated("AC", 5) + "G" + repeated("CA", 5) + "G" + repeated("AC", 5);
  Seed seed(bases, 12, 14);
  seed.forward();
  EXPECT_EQ(seed.events(), "21M ");
  seed.backward();
  EXPECT_EQ(seed.span(), (Span{0, 32, 12, 2}));
  EXPECT_EQ(seed.events(), "21M 10M ");
  EXPECT_EQ(seed.sat.mismatches, 2U);
}

// One base is missing before position 12; the event stands at the residue behind the gap, whichever
// way the extension comes from. 8 - 5 + 15 = 18 and 11 - 5 + 12 = 18.
TEST_F(Extension, ADeletionStandsAtTheResidueToTheRightOfTheGap) {
  const std::string bases = repeated("ACGT", 3) + "CGT" + repeated("ACGT", 3);
  Seed right(bases, 0, 4);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 27, 0, 4}));
  EXPECT_EQ(right.sat.score, 18);
  EXPECT_EQ(right.sat.deletions, 1U);
  EXPECT_EQ(right.sat.repeat_length(), 28);
  EXPECT_EQ(right.events(), "12D ");

  Seed left(bases, 23, 27);
  left.backward();
  EXPECT_EQ(left.span(), (Span{0, 27, 23, 4}));
  EXPECT_EQ(left.sat.score, 18);
  EXPECT_EQ(left.events(), "12D ");
}

TEST_F(Extension, AnInsertionStandsAtTheInsertedResidue) {
  const std::string bases = repeated("ACGT", 3) + "G" + repeated("ACGT", 3);
  Seed right(bases, 0, 4);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 25, 0, 4}));
  EXPECT_EQ(right.sat.score, 15);  // 8 - 5 + 12
  EXPECT_EQ(right.sat.insertions, 1U);
  EXPECT_EQ(right.sat.repeat_length(), 24);
  EXPECT_EQ(right.events(), "12I ");

  Seed left(bases, 21, 25);
  left.backward();
  EXPECT_EQ(left.sat.score, 15);
  EXPECT_EQ(left.events(), "12I ");
}

// For a unit of one base an edited residue can be a mismatch or an insertion with the same result.
TEST_F(Extension, OnEqualPromiseAMismatchIsChosenOverAnInsertion) {
  Seed seed("AAAAAAAGAAAAAAA", 0, 1);
  seed.forward();
  EXPECT_EQ(seed.events(), "7M ");
  EXPECT_EQ(seed.sat.score, 8);  // 6 - 5 + 7
}

// With a depth of 1 no edit at the T leads to a match, so insertion and deletion promise the same;
// the mismatch costs one point more.
TEST_F(Extension, OnEqualPromiseAnInsertionIsChosenOverADeletion) {
  global_maximum_recursion_depth = 1;
  global_mismatch_score = -6;
  Seed seed(repeated("ACGT", 3) + "TG" + repeated("ACGT", 4), 0, 4);
  seed.forward();
  EXPECT_EQ(seed.events(), "12I 13I ");
  EXPECT_EQ(seed.sat.score, 14);  // 8 - 10 + 16
}

// CGGT is ACGT with two mismatches, 8 - 10 + 2 + 12 = 12, or with a deletion and an insertion,
// 8 - 12 + 3 + 12 = 11. The deletion gives two matches at once, the mismatch none.
TEST_F(Extension, TheDepthTellsHowManyEditsAreLookedBeyond) {
  global_indel_score = -6;
  const std::string bases = repeated("ACGT", 3) + "CGGT" + repeated("ACGT", 3);
  Seed far_sighted(bases, 0, 4);
  far_sighted.forward();
  EXPECT_EQ(far_sighted.events(), "12M 13M ");
  EXPECT_EQ(far_sighted.sat.score, 12);

  global_maximum_recursion_depth = 1;
  Seed short_sighted(bases, 0, 4);
  short_sighted.forward();
  EXPECT_EQ(short_sighted.events(), "12D 14I ");
  EXPECT_EQ(short_sighted.sat.score, 11);
}

// The level has 8 bits: it never equals 257, also not as 1.
TEST_F(Extension, ADepthBeyond8BitsIsNeverReached) {
  global_indel_score = -6;
  global_maximum_recursion_depth = 257;
  Seed seed(repeated("ACGT", 3) + "CGGT" + repeated("ACGT", 3), 0, 4);
  seed.forward();
  EXPECT_EQ(seed.events(), "12M 13M ");
}

TEST_F(Extension, AnNRunUpToTheLimitIsBridged) {
  Seed right("ACACNNACAC", 0, 2);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 10, 0, 2}));
  EXPECT_EQ(right.sat.num_Ns, 2U);
  EXPECT_EQ(right.sat.score, 6);
  EXPECT_EQ(right.events(), "");

  Seed left("ACACNNACAC", 8, 10);
  left.backward();
  EXPECT_EQ(left.span(), (Span{0, 10, 8, 2}));
  EXPECT_EQ(left.sat.num_Ns, 2U);
  EXPECT_EQ(left.sat.score, 6);
}

TEST_F(Extension, AnNRunOneLongerEndsTheExtensionBeforeTheRun) {
  Seed right("ACACNNNACACACACAC", 0, 2);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 4, 0, 2}));
  EXPECT_EQ(right.sat.num_Ns, 0U);
  EXPECT_EQ(right.sat.score, 2);

  Seed left("ACACACACACNNNACAC", 15, 17);
  left.backward();
  EXPECT_EQ(left.span(), (Span{13, 17, 15, 2}));
  EXPECT_EQ(left.sat.num_Ns, 0U);

  global_Ns_allowed_in_a_row = 1;
  Seed limit_1("ACACNNACACACACAC", 0, 2);
  limit_1.forward();
  EXPECT_EQ(limit_1.span(), (Span{0, 4, 0, 2}));
}

TEST_F(Extension, AnNRunAtTheEndOfTheSequenceStaysInTheRecord) {
  Seed right("ACACNN", 0, 2);
  right.forward();
  EXPECT_EQ(right.span(), (Span{0, 6, 0, 2}));
  EXPECT_EQ(right.sat.num_Ns, 2U);

  Seed left("NNACAC", 4, 6);
  left.backward();
  EXPECT_EQ(left.span(), (Span{0, 6, 4, 2}));
  EXPECT_EQ(left.sat.num_Ns, 2U);
}

// 4 - 5 + 9 = 8
TEST_F(Extension, NIsAMismatchWhenNoneIsAllowedOrWhenItIsMissense) {
  const auto expect_a_mismatch = [] {
    Seed seed("ACACACNCACACACAC", 0, 2);
    seed.forward();
    EXPECT_EQ(seed.span(), (Span{0, 16, 0, 2}));
    EXPECT_EQ(seed.sat.score, 8);
    EXPECT_EQ(seed.sat.mismatches, 1U);
    EXPECT_EQ(seed.sat.num_Ns, 0U);
    EXPECT_EQ(seed.events(), "6M ");
  };
  global_Ns_allowed_in_a_row = 0;
  expect_a_mismatch();
  global_Ns_allowed_in_a_row = 2;
  global_treat_Ns_as_missense = true;
  expect_a_mismatch();
}

// The G at 16 may be an insertion or a mismatch: six A follow in both phases of the unit AAAAAAAC.
// Then comes an N run that stops the extension. What is chosen depends on the phase in which the
// sequence goes on behind the run, so the look-ahead must have walked through it.
TEST_F(Extension, TheLookAheadWalksThroughAnNRunThatStopsTheExtension) {
  const std::string before = repeated("AAAAAAAC", 2) + "GAAAAAANNN";
  Seed insertion(before + "AAAAAAC" + "AAAAAAAC", 0, 8);
  insertion.forward();
  EXPECT_EQ(insertion.span(), (Span{0, 23, 0, 8}));
  EXPECT_EQ(insertion.sat.score, 9);  // 8 - 5 + 6
  EXPECT_EQ(insertion.sat.num_Ns, 0U);
  EXPECT_EQ(insertion.events(), "16I ");

  Seed mismatch(before + "AAAAAC" + "AAAAAAAC", 0, 8);
  mismatch.forward();
  EXPECT_EQ(mismatch.span(), (Span{0, 23, 0, 8}));
  EXPECT_EQ(mismatch.sat.score, 9);
  EXPECT_EQ(mismatch.events(), "16M ");
}

// A mismatch at score 6 with ten matches behind it.
TEST_F(Extension, AnEditIsTriedOnlyWithinTheScoreReduction) {
  const auto right_end = [](int reduction, int preference) {
    global_maximum_scorereduction = reduction;
    global_prefer_longer_repeat = preference;
    Seed seed("ACACACACGCACACACACA", 0, 2);
    seed.forward();
    return seed.span().right;
  };
  EXPECT_EQ(right_end(5, 1), 19);
  EXPECT_EQ(right_end(4, 1), 8);
  // One point tighter for shorter repeats.
  EXPECT_EQ(right_end(6, 0), 19);
  EXPECT_EQ(right_end(5, 0), 8);
}

// Nine mismatches in a row at score 38 lead to -7, above the floor of -40 for a unit of 40 bases;
// 73 matches follow. A limit of 44 refuses the last one, since -7 is not above 38 - 44 - 1.
TEST_F(Extension, WithoutALimitNoLossOfScoreAboveTheFloorEndsAnExtension) {
  const std::string unit = "ACGTTGCAACGGTTCCATAGCATCGATTACGCAGTGCTAC";
  ASSERT_EQ(unit.size(), 40U);
  std::string bases = repeated(unit, 4);
  for (std::size_t i = 78; i < 87; ++i) bases[i] = bases[i] == 'A' ? 'C' : 'A';
  global_indel_score = -100;  // never above the floor
  const auto right_end = [&bases](int reduction) {
    global_maximum_scorereduction = reduction;
    Seed seed(bases, 0, 40);
    seed.forward();
    return seed.span().right;
  };
  global_maximum_recursion_depth = 10;
  EXPECT_EQ(right_end(std::numeric_limits<int>::max()), 160);
  EXPECT_EQ(right_end(45), 160);
  EXPECT_EQ(right_end(44), 78);
}

// Behind the G at 38, nine A, C and T follow. As a mismatch the G leads to 19 - 5 + 8 = 22, then
// over an A for C and the T for G to a long perfect stretch; as an insertion to 19 - 6 + 10 = 23.
// From 22 the second of those mismatches would fall to 22 - 5 + 1 - 5 = 13, not above 22 - 6 - 1,
// so the stretch is out of sight and the insertion promises more.
TEST_F(Extension, TheBestScoreOfAWalkLimitsWhatIsTriedBehindIt) {
  global_maximum_scorereduction = 6;
  global_indel_score = -6;
  const std::string unit = "AAAAAAAAACCGTAGTCTG";
  Seed seed(unit + unit + "GAAAAAAAAACTTAGTCTG" + unit, 0, 19);
  seed.forward();
  EXPECT_EQ(seed.events(), "38I ");
  EXPECT_EQ(seed.span(), (Span{0, 49, 0, 19}));
  EXPECT_EQ(seed.sat.score, 23);
}

TEST_F(Extension, SettingsAtTheEdgesOf32BitsDoNotOverflow) {
  const auto right_end = [] {
    Seed seed("ACACACACGCACACACACA", 0, 2);
    seed.forward();
    return seed.span().right;
  };
  constexpr int kSmallest = std::numeric_limits<int>::min();
  global_maximum_scorereduction = kSmallest;
  EXPECT_EQ(right_end(), 8);
  init_param();
  global_mismatch_score = kSmallest;
  global_indel_score = kSmallest;
  EXPECT_EQ(right_end(), 8);
}

}  // namespace
}  // namespace vorlan
