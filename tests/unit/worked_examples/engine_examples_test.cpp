// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The worked examples at the heads of the files below src/imperfect that make the search fast,
// residue by residue as they stand there. Each test has the name of its file.

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "imperfect/extension.h"
#include "imperfect/filter/series_filter.h"
#include "imperfect/late_marks/mark_painter.h"
#include "imperfect/look_ahead/merged_look_ahead.h"
#include "imperfect/look_ahead/mismatch_masks.h"
#include "imperfect/record_search.h"
#include "imperfect/ways/unit_phases.h"
#include "imperfect/ways/way_forest.h"
#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/kernel_look.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::Contains;
using ::testing::Not;

using EngineExamples = FreshSettings;

TEST_F(EngineExamples, CandidateFilterKernelH) {
  const FilterPlan plan = completed({.unit_length = 2,
                                     .floor = -3,
                                     .penalty = 5,
                                     .min_score = 6,
                                     .horizon = 8,
                                     .first_check = 100,
                                     .few_enough_to_stop = 0,
                                     .checks_without_loss = 100,
                                     .max_gain = 6,
                                     .max_edits = 0,
                                     .row_size = 0,
                                     .bridges_N = true});
  const auto survives = [&](std::string_view residues, const FilterKernel& kernel) {
    const Dna dna(residues);
    return KernelLook(dna, plan).judged_block(kernel, 0, {1})[0] == 1;
  };
  for (const FilterKernel& kernel : runnable_filter_kernels()) {
    EXPECT_FALSE(survives("ACGT", kernel));
    EXPECT_TRUE(survives("ACACAGACAC", kernel));
    // With a base more that does not match, the path ends before the look does.
    EXPECT_FALSE(survives("ACACAGACAG", kernel));
  }
}

TEST_F(EngineExamples, SeriesFilterH) {
  const auto first_survives = [](std::string_view first, std::string_view second) {
    SeriesFilter series;
    series.append(first);
    if (!second.empty()) series.append(second);
    series.judge(UnitLengthThresholds::of_scores());
    EXPECT_TRUE(series.has_judged(2));
    return (series.record(0).survivors(2, 0) & 1) != 0;
  };
  EXPECT_TRUE(first_survives("ACACAC", "ACACGT"));
  EXPECT_FALSE(first_survives("ACACAC", ""));
  EXPECT_FALSE(first_survives("ACACA", "GTGT"));

  // That the record has only 4 points for the start.
  Dna dna("ACACAC");
  Csat sat;
  sat.init(dna.at(0), dna.at(2));
  CSearchController controller(1, dna);
  controller.extend_imperfect_forward(sat, dna.end());
  controller.extend_imperfect_backward(sat, dna.at(0));
  EXPECT_EQ(sat.score, 4);
}

using ForwardState = MergedLookAheadMemory<Forward>::State;

bool are_equal(const ForwardState& a, const ForwardState& b) {
  return a.advance == b.advance && a.diagonal == b.diagonal && a.score == b.score;
}

TEST_F(EngineExamples, MergedLookAheadH) {
  global_maximum_recursion_depth = 4;  // so that states with three edits are added
  const Dna dna("ACTACACG");
  const UnitSpan unit{dna.at(0), dna.at(2)};
  const Scoring scoring = Scoring::of_the_run();
  MergedLookAheadMemory<Forward> memory;
  MergedLookAhead<Forward> look_ahead(scoring, unit, dna.end(), nullptr, dna.at(0), memory);
  look_ahead.best_move({dna.at(2), unit.begin}, 30);

  // The deletion is the last first move that is tried: what was seen behind it is still there.
  const auto was_seen = [&](const ForwardState& wanted) {
    const std::vector<ForwardState>& seen =
        memory.seen[static_cast<std::size_t>(wanted.diagonal & 1)];
    return std::any_of(seen.begin(), seen.end(),
                       [&](const ForwardState& state) { return are_equal(state, wanted); });
  };
  EXPECT_TRUE(was_seen({5, -1, -10 + 4}));
  EXPECT_FALSE(was_seen({5, -1, -15 + 4}));
  EXPECT_TRUE(was_seen({1, 0, -10}));

  // With a limit of the score reduction this fails, and is not done.
  EXPECT_TRUE(look_ahead.can_decide(30));
  global_maximum_scorereduction = 5;
  const Scoring limited = Scoring::of_the_run();
  EXPECT_FALSE(MergedLookAhead<Forward>(limited, unit, dna.end(), nullptr, dna.at(0), memory)
                   .can_decide(30));
}

TEST_F(EngineExamples, MismatchMasksH) {
  const auto first_mismatch = [](std::string_view residues) {
    const std::string followed = std::string(residues) + repeated("AC", 40);
    const Dna dna(followed);
    const BitPlanes planes(dna.at(0), followed.size(), MismatchMasks<Forward>::kReach);
    UnitStrip unit;
    unit.assign(planes.words(), 4, 2);
    MismatchMasks<Forward> masks;
    masks.start(planes.words(), unit, 0, 0, 1);
    return masks.next_mismatch(0, 0, 0);
  };
  EXPECT_EQ(first_mismatch("ACTC"), 2);
  EXPECT_EQ(first_mismatch("ACNC"), MismatchMasks<Forward>::kUnknown);
}

TEST_F(EngineExamples, WayForestH) {
  // 32 bases before T: the first copy earns nothing, so an extension has 30 points there.
  const std::string before = repeated("AC", 16);
  const Dna dna(before + "TCACACGCACA");
  const std::uint32_t T = 32;
  const std::uint32_t G = 38;
  RecordSearch record({dna.at(0), dna.residues.size}, 3, SeedKind::kUnit, {});
  const auto extend_from = [&](int start) {
    Csat sat;
    std::vector<WaySegment> passed_over;
    sat.init(dna.at(start), dna.at(start + 2));
    extend<Forward>(sat, dna.end(), record, passed_over);
    return sat.score;
  };
  // Extensions return to their best state, at G.
  EXPECT_EQ(extend_from(0), 30);
  const WayForest& forest = record.ways().forest(Forward{});
  ASSERT_EQ(forest.size(), 3U);
  const auto phase = [&](std::uint32_t offset) {
    return record.ways().phases().of("AC").phase(offset);
  };
  const NodeId at_T = forest.find(T, phase(0));
  const NodeId at_G = forest.find(G, phase(0));
  ASSERT_NE(at_T, kNoNode);
  EXPECT_EQ(forest[at_T].move, Move::kMismatch);
  ASSERT_EQ(forest.after(at_T), at_G);
  EXPECT_EQ(forest[at_G].move, Move::kMismatch);
  const NodeId end = forest.after(at_G);
  EXPECT_TRUE(forest[end].is_terminal);
  EXPECT_EQ(forest[end].place, dna.residues.size);

  const WayEnd arrived = forest.follow(at_T, {.score = 30}, 29, 30);
  EXPECT_EQ(arrived.node, end);
  EXPECT_EQ(arrived.totals.score, 29);
  EXPECT_EQ(arrived.totals.mismatches, 2U);
  EXPECT_EQ(arrived.best_node, at_G);
  EXPECT_EQ(arrived.best_totals.score, 30);
  EXPECT_EQ(forest.follow(at_G, {.score = 30}, 29, 30).totals.score, 29);

  // One base later: the same node. Where C is due: no node.
  EXPECT_EQ(extend_from(1), 29);
  EXPECT_EQ(forest.size(), 3U);
  EXPECT_EQ(forest.find(T, phase(1)), kNoNode);
}

TEST_F(EngineExamples, UnitPhasesH) {
  UnitPhases phases;
  const UnitPhases::Unit AC = phases.of("AC");
  const UnitPhases::Unit CA = phases.of("CA");
  const UnitPhases::Unit ACAC = phases.of("ACAC");
  EXPECT_EQ(AC.phase(1), CA.phase(0));
  EXPECT_EQ(AC.phase(1), ACAC.phase(1));
  EXPECT_EQ(AC.phase(1), ACAC.phase(3));
  EXPECT_NE(AC.phase(1), AC.phase(0));
  EXPECT_EQ(AC.phase(0), CA.phase(1));
}

/// Marks of 800 residues and their painter.
class PaintedResidues {
 public:
  /// A repeat [begin, end), found from its first base, with edits at these residues.
  void accept(Csat& sat, int begin, int end, const std::vector<int>& edits) {
    sat.init(dna_.at(begin), dna_.at(begin + 2));
    sat.pos_right = dna_.at(end);
    for (const int edit : edits) sat.missense.push_back({dna_.at(edit), kMismatchEvent});
    painter_.accept({&sat, {}}, dna_.at(begin));
  }
  void paint_until(int end) { painter_.paint_until(dna_.at(end)); }
  void finish() { painter_.finish(); }

  bool is_open(int residue) const {
    return (painter_.anchors().may_anchor(residue / 64, 1) >> residue % 64 & 1) != 0;
  }

  /// The closed residues.
  std::vector<int> closed() const {
    std::vector<int> residues;
    for (int residue = 0; residue < 800; ++residue) {
      if (!is_open(residue)) residues.push_back(residue);
    }
    return residues;
  }

 private:
  Dna dna_{std::string(800, 'A')};
  CAnchorSeq anchors_{dna_.at(0), 800};
  RecordSearch record_{{dna_.at(0), 800}, 2, SeedKind::kUnit, {}};
  MarkPainter painter_{anchors_, record_};
};

TEST_F(EngineExamples, MarkPainterH) {
  Csat first;
  Csat second;
  PaintedResidues residues;
  residues.paint_until(100);
  residues.accept(first, 40, 500, {45, 200});
  residues.accept(second, 60, 700, {300});
  // Painted at once up to 100, the rest later.
  const std::vector<int> closed = residues.closed();
  EXPECT_EQ(closed.size(), 59U);  // [40, 100) but for 45
  EXPECT_EQ(closed.front(), 40);
  EXPECT_EQ(closed.back(), 99);
  EXPECT_THAT(closed, Not(Contains(45)));
  residues.paint_until(500);
  EXPECT_EQ(residues.closed().size(), 458U);  // [40, 500) but for 45 and 300
  EXPECT_FALSE(residues.is_open(200));        // an edit of the first one only
  EXPECT_TRUE(residues.is_open(300));
  residues.finish();
  EXPECT_EQ(residues.closed().size(), 658U);
  EXPECT_FALSE(residues.is_open(699));
  EXPECT_TRUE(residues.is_open(700));

  PaintedResidues side_by_side;
  side_by_side.accept(first, 40, 500, {45, 200});
  side_by_side.accept(second, 500, 700, {});
  side_by_side.finish();
  EXPECT_EQ(side_by_side.closed().size(), 658U);
  EXPECT_TRUE(side_by_side.is_open(200));
}

}  // namespace
}  // namespace vorlan
