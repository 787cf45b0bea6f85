// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead of the extension ("leap ahead"), as it is defined.
//
// Where the sequence departs from the unit, the extension asks which edit promises most: it walks
// on behind a mismatch, an insertion and a deletion, and at the next difference asks again, one
// level deeper. The value of an edit is the highest score that any of these ways reaches. At most
// `maximum_recursion_depth` edits are explored in a row, the one that is asked about included. N
// runs are walked through whatever their length, also those that end an extension.
//
// An edit is tried only while the score stays above the threshold. The best score on the way down
// enters that threshold; what siblings have reached does not.
//
// Example, unit AC, penalties 5, floor -3, at G of AC|GCACACAC with score 0:
//   - after the mismatch the score is -5, which is not above -3: not tried, and no indel either.
// The same with score 6: the mismatch leaves 1 and walks over CACACAC to 8. After the insertion the
// unit waits with A at C: a mismatch there would leave -4, so the value is 1; likewise after the
// deletion, where C waits at G. The mismatch is chosen.

#pragma once

#include <algorithm>
#include <cstdint>

#include "imperfect/moves.h"
#include "search/walk.h"

namespace vorlan {

/// A move and the highest score that is reached behind it.
struct Choice {
  Move move;
  std::int64_t value;
};

/// See above. Cost: up to 3 + 9 + .. + 3^depth walks, and a stack frame for each level. Allocates
/// nothing, changes no state.
template <class Direction>
class LeapAhead {
 public:
  /// `scoring` must outlive this.
  LeapAhead(const Scoring& scoring, const UnitSpan& unit, const char* stop)
      : scoring_(scoring),
        unit_(unit),
        stop_(stop),
        longest_N_run_(scoring.longest_N_run == 0 ? 0 : kAnyNRun) {}

  /// The move that is valued most; on equal values mismatch before insertion before deletion. kNone
  /// when the threshold allows none. `score` is what the alignment has reached at `front`, where
  /// residue and unit base differ; `best` is the best score on the way there, and `level` the
  /// number of edits explored so far.
  Choice best_move(Front front, std::int64_t score, std::uint8_t level, std::int64_t best) const {
    const std::int64_t threshold = scoring_.threshold(best, unit_.length());
    Choice choice{Move::kNone, -unit_.length() - 1};
    if (threshold < score + scoring_.mismatch_score) {
      choice = {Move::kMismatch, value_of<Move::kMismatch>(front, score, level, best)};
    }
    if (threshold < score + scoring_.indel_score) {
      const std::int64_t insertion = value_of<Move::kInsertion>(front, score, level, best);
      if (insertion > choice.value) choice = {Move::kInsertion, insertion};
      const std::int64_t deletion = value_of<Move::kDeletion>(front, score, level, best);
      if (deletion > choice.value) choice = {Move::kDeletion, deletion};
    }
    return choice;
  }

  /// The highest score on any way from `front`, which an edit has led to: the value of that edit.
  std::int64_t explore(Front front, std::int64_t score, std::uint8_t level,
                       std::int64_t best) const {
    Steps steps;
    const WalkEnd end = walk<Direction>(front, unit_, stop_, longest_N_run_, steps);
    score += steps.matches;
    if (level == scoring_.maximum_recursion_depth || end == WalkEnd::kStop) return score;
    return std::max(score, best_move(front, score, level, std::max(best, score)).value);
  }

 private:
  // Levels wrap at 8 bits: a depth above 255 is never met.
  template <Move move>
  std::int64_t value_of(Front front, std::int64_t score, std::uint8_t level,
                        std::int64_t best) const {
    return explore(after<Direction>(move, front, unit_), score + score_of(move, scoring_),
                   static_cast<std::uint8_t>(level + 1), best);
  }

  const Scoring& scoring_;
  UnitSpan unit_;
  const char* stop_;
  /// An N run of any length is walked through, also one that would stop the extension. Deliberate.
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
