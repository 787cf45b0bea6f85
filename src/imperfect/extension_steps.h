// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>

#include "imperfect/look_ahead/look_ahead.h"
#include "imperfect/moves.h"
#include "search/walk.h"

namespace vorlan {

/// The steps that an extension in one direction is made of: walk to the next decision point, decide
/// on an edit, make it.
template <class Direction>
class ExtensionSteps {
 public:
  /// For the unit of `sat`. All must outlive this.
  ExtensionSteps(const Csat& sat, const char* stop, RecordSearch& record)
      : scoring_(record.scoring()),
        unit_{sat.unit_begin, sat.unit_end},
        stop_(stop),
        level_(sat.recursion_level),
        look_ahead_(record, unit_, stop) {}

  const UnitSpan& unit() const { return unit_; }

  /// Walks over matches and over N runs that are short enough. Returns false where no decision is
  /// to be made: at the end of the sequence and in front of a longer N run.
  bool reach_decision(Front& front, AlignmentTotals& totals) const {
    Steps steps;
    const WalkEnd end = walk<Direction>(front, unit_, stop_, scoring_.longest_N_run, steps);
    totals.score += steps.matches;
    totals.num_Ns += steps.Ns;
    return end == WalkEnd::kDifference;
  }

  /// The edit to make at a decision point; kNone when none keeps the score above the threshold.
  Move decide(const Front& front, std::int64_t score, std::int64_t best_score) {
    return look_ahead_.best_move(front, score, level_, best_score);
  }

  /// Whether nothing that follows the decision point at `front` will score `goal` or more, as far
  /// as can be proved. `best_score` is the best so far. Only speed: false is always right.
  bool stays_below(std::int64_t goal, const Front& front, std::int64_t score,
                   std::int64_t best_score) {
    return look_ahead_.stays_below(goal, front, score, best_score);
  }

  void make(Move move, Front& front, AlignmentTotals& totals) const {
    front = after<Direction>(move, front, unit_);
    totals.add(move, scoring_);
  }

 private:
  const Scoring& scoring_;
  UnitSpan unit_;
  const char* stop_;
  std::uint8_t level_;
  LookAhead<Direction> look_ahead_;
};

}  // namespace vorlan
