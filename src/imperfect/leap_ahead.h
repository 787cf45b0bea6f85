// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>

#include "imperfect/alignment_settings.h"
#include "imperfect/direction.h"

namespace vorlan {

/// What an extension can do where the sequence departs from the unit.
enum class Move : std::uint8_t { kNone, kMismatch, kInsertion, kDeletion };

/// The look-ahead of the extension ("leap ahead"): the highest score that any way of going on
/// reaches, when at most `maximum_recursion_depth` edits beyond the driver's own are explored.
///
/// Idea: walk over matches and N, then try a mismatch, an insertion and a deletion, each followed
/// by a look-ahead one level deeper. A move is tried only while it keeps the score above the
/// threshold; the best score seen on the way down, not by siblings, enters that threshold.
///
/// Example: unit AC, next residues ACGCACAC, score 0, mismatch -5. The walk gives 2 at G; the
/// mismatch branch goes on with -3 over CACAC to 2 at the end; the result is max(2, 2) = 2.
///
/// Cost: up to 3^depth walks. Allocates nothing, changes no state.
template <class Direction>
class LeapAhead {
 public:
  LeapAhead(const AlignmentSettings& settings, UnitSpan unit, const char* stop)
      : settings_(settings), unit_(unit), stop_(stop) {}

  /// `place` and `cursor` are the residue and the unit base to be aligned next, `score` what the
  /// path has reached, `level` the number of edits so far, which wraps at 8 bits (depths above 255
  /// are therefore never met), `best` the best score on the path so far.
  std::int64_t explore(const char* place, const char* cursor, std::int64_t score,
                       std::uint8_t level, std::int64_t best) const {
    while (!Direction::at_stop(place, stop_)) {
      const char residue = *Direction::residue(place);
      if (residue == *cursor) {
        ++score;
      } else if (residue != 'N' || settings_.longest_N_run == 0) {
        break;
      }
      // An N run of any length is walked through, also one that would stop the driver.
      place = Direction::next(place);
      cursor = Direction::next_unit_base(cursor, unit_);
    }
    if (level == settings_.maximum_recursion_depth || Direction::at_stop(place, stop_)) {
      return score;
    }
    best = std::max(best, score);
    return std::max(score, best_move(place, cursor, score, level, best).value);
  }

  /// A move and the highest score that can be reached after it.
  struct Choice {
    Move move;
    std::int64_t value;
  };

  /// The move that the look-ahead at `level` + 1 values most; on equal values mismatch before
  /// insertion before deletion. kNone when the threshold allows none.
  Choice best_move(const char* place, const char* cursor, std::int64_t score, std::uint8_t level,
                   std::int64_t best) const {
    const std::int64_t threshold = settings_.threshold(best, unit_.length());
    const auto next_level = static_cast<std::uint8_t>(level + 1);
    const char* next_place = Direction::next(place);
    const char* next_cursor = Direction::next_unit_base(cursor, unit_);
    Choice choice{Move::kNone, -unit_.length() - 1};
    const std::int64_t after_mismatch = score + settings_.mismatch_score;
    if (threshold < after_mismatch) {
      choice = {Move::kMismatch,
                explore(next_place, next_cursor, after_mismatch, next_level, best)};
    }
    const std::int64_t after_indel = score + settings_.indel_score;
    if (threshold < after_indel) {
      const std::int64_t insertion = explore(next_place, cursor, after_indel, next_level, best);
      if (insertion > choice.value) choice = {Move::kInsertion, insertion};
      const std::int64_t deletion = explore(place, next_cursor, after_indel, next_level, best);
      if (deletion > choice.value) choice = {Move::kDeletion, deletion};
    }
    return choice;
  }

 private:
  const AlignmentSettings& settings_;
  UnitSpan unit_;
  const char* stop_;
};

}  // namespace vorlan
