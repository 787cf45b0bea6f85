// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The worked examples at the heads of the files in src/imperfect that define the search, residue by
// residue as they stand there. Each test has the name of its file.

#include <gmock/gmock.h>

#include <string>

#include "imperfect/leap_ahead.h"
#include "imperfect/moves.h"
#include "imperfect/record_search.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ImperfectExamples = FreshSettings;

TEST_F(ImperfectExamples, MovesH) {
  const Dna dna("ACT");
  const UnitSpan unit{dna.at(0), dna.at(2)};
  const Front at_T{dna.at(2), unit.begin};
  const auto expect_behind = [&](Move move, int place, int cursor, const Missense& event) {
    const Front front = after<Forward>(move, at_T, unit);
    EXPECT_EQ(front.place, dna.at(place));
    EXPECT_EQ(front.cursor, dna.at(cursor));
    EXPECT_EQ(event_of<Forward>(move, at_T.place), event);
  };
  expect_behind(Move::kMismatch, 3, 1, {dna.at(2), kMismatchEvent});
  expect_behind(Move::kInsertion, 3, 0, {dna.at(2), kInsertionEvent});
  expect_behind(Move::kDeletion, 2, 1, {dna.at(2), kDeletionEvent});
}

TEST_F(ImperfectExamples, LeapAheadH) {
  const Dna dna("ACGCACACAC");
  const UnitSpan unit{dna.at(0), dna.at(2)};
  const Scoring scoring = Scoring::of_the_run();
  ASSERT_EQ(scoring.floor(2), -3);
  const LeapAhead<Forward> look_ahead(scoring, unit, dna.end());
  const Front at_G{dna.at(2), unit.begin};
  EXPECT_EQ(look_ahead.best_move(at_G, 0, 0, 0).move, Move::kNone);

  const auto value_of = [&](Move move) {
    return look_ahead.explore(after<Forward>(move, at_G, unit), 6 + score_of(move, scoring), 1, 6);
  };
  EXPECT_EQ(value_of(Move::kMismatch), 8);
  EXPECT_EQ(value_of(Move::kInsertion), 1);
  EXPECT_EQ(value_of(Move::kDeletion), 1);
  EXPECT_EQ(look_ahead.best_move(at_G, 6, 0, 6).move, Move::kMismatch);
}

TEST_F(ImperfectExamples, ExtensionCpp) {
  Dna long_enough("ACACACACAGACACACAC");
  Csat sat;
  sat.init(long_enough.at(0), long_enough.at(2));
  CSearchController(1, long_enough).extend_imperfect_forward(sat, long_enough.end());
  EXPECT_EQ(span_of(sat, long_enough), (Span{0, 18, 0, 2}));
  EXPECT_EQ(sat.score, 10);
  EXPECT_EQ(events_of(sat, long_enough), "9M ");

  Dna too_short("ACACACACAGACAC");
  sat.init(too_short.at(0), too_short.at(2));
  CSearchController(1, too_short).extend_imperfect_forward(sat, too_short.end());
  EXPECT_EQ(span_of(sat, too_short), (Span{0, 9, 0, 2}));
  EXPECT_EQ(sat.score, 7);
  EXPECT_EQ(events_of(sat, too_short), "");
}

TEST_F(ImperfectExamples, CompleteImperfectSearchCpp) {
  search_only(2);
  Dna accepted("ACACACAGACACAC");
  CSearchController controller(1, accepted);
  controller.complete_imperfect_search(nullptr);
  ASSERT_THAT(spans_of(controller.imperfect_sats, accepted), ElementsAre(Span{0, 14, 0, 2}));
  const Csat& repeat = *controller.imperfect_sats.front();
  EXPECT_EQ(repeat.score, 6);
  EXPECT_EQ(events_of(repeat, accepted), "7M ");

  // The drawing of the marks, and which starts of any unit that has room may be tried again.
  CAnchorSeq marks(accepted.at(0), 14);
  marks.close(repeat);
  std::string open;
  for (int position = 0; position < 14; ++position) {
    open += (marks.may_anchor(0, 1) >> position & 1) != 0 ? 'a' : '.';
  }
  EXPECT_EQ(open, ".......a......");
  for (std::size_t unit_length = 2; unit_length < 14; ++unit_length) {
    const std::uint64_t starts = (std::uint64_t{1} << (14 - unit_length)) - 1;
    // A unit from 0 on that ends at G, residue 7, has 8 bases.
    EXPECT_EQ(marks.may_anchor(0, unit_length) & starts, unit_length == 8 ? 1U : 0U) << unit_length;
  }

  Dna rejected("ACACACAGACACA");
  CSearchController no_repeat(1, rejected);
  no_repeat.complete_imperfect_search(nullptr);
  EXPECT_THAT(no_repeat.imperfect_sats, IsEmpty());
  accept_from_score(5);
  CSearchController::reset_minimum_arrays();
  CSearchController one_point_less(1, rejected);
  one_point_less.complete_imperfect_search(nullptr);
  ASSERT_THAT(spans_of(one_point_less.imperfect_sats, rejected), ElementsAre(Span{0, 13, 0, 2}));
  EXPECT_EQ(one_point_less.imperfect_sats.front()->score, 5);
}

/// The array of the example, with this many mismatches.
std::string array_with_mismatches(int mismatches) {
  std::string copies_behind_a_mismatch = "G";
  copies_behind_a_mismatch += repeated("AC", 9) + "A";
  return repeated("AC", 20) + "A" + repeated(copies_behind_a_mismatch, mismatches);
}

TEST_F(ImperfectExamples, RecordSearchH) {
  for (const int mismatches : {64, 65}) {
    const Dna dna(array_with_mismatches(mismatches));
    RecordSearch record({dna.at(0), dna.residues.size}, 2, SeedKind::kUnit, {});
    Csat sat;
    sat.init(dna.at(0), dna.at(2));
    PassedOver passed_over;
    ASSERT_TRUE(record.extend_and_accept(sat, {6, 0}, passed_over));
    EXPECT_EQ(sat.mismatches, static_cast<unsigned>(mismatches));
    EXPECT_EQ(sat.events_pending, mismatches == 65);
    EXPECT_EQ(sat.missense.size, mismatches == 65 ? 0U : 64U);
    record.complete_events(sat);
    ASSERT_EQ(sat.missense.size, static_cast<unsigned>(mismatches));
    EXPECT_EQ(sat.missense.begin()[0].first, dna.at(41));
    EXPECT_EQ(sat.missense.end()[-1].first, dna.at(41 + 20 * (mismatches - 1)));
  }
}

}  // namespace
}  // namespace vorlan
