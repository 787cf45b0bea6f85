// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>

#include "imperfect/scoring.h"
#include "search/csat.h"
#include "search/direction.h"

namespace vorlan {

/// What an extension can do where the sequence departs from the unit.
///
///     mismatch    residue T for unit base A:       both are used up
///     insertion   residue T, which the unit lacks: the unit base stays due
///     deletion    unit base A without a residue:   the residue stays next
enum class Move : std::uint8_t { kNone, kMismatch, kInsertion, kDeletion };

/// How many residues of the sequence, and how many bases of the unit, a move uses up.
constexpr int residues_used(Move move) {
  return move == Move::kMismatch || move == Move::kInsertion ? 1 : 0;
}
constexpr int unit_bases_used(Move move) {
  return move == Move::kMismatch || move == Move::kDeletion ? 1 : 0;
}

/// Requires a move, not kNone.
inline std::int64_t score_of(Move move, const Scoring& scoring) {
  return move == Move::kMismatch ? scoring.mismatch_score : scoring.indel_score;
}

/// Where an alignment stands after `move`.
template <class Direction>
Front after(Move move, Front front, const UnitSpan& unit) {
  front.place = Direction::moved(front.place, residues_used(move));
  if (unit_bases_used(move) != 0) front.cursor = Direction::next_unit_base(front.cursor, unit);
  return front;
}

/// The event of a move from `place`. A deletion is recorded at the residue to the right of the gap,
/// whichever way the extension goes.
template <class Direction>
Missense event_of(Move move, const char* place) {
  switch (move) {
    case Move::kMismatch:
      return {Direction::residue(place), kMismatchEvent};
    case Move::kInsertion:
      return {Direction::residue(place), kInsertionEvent};
    default:
      return {place, kDeletionEvent};
  }
}

/// What an alignment collects on its way. Also used for what is still to come.
struct AlignmentTotals {
  std::int64_t score = 0;
  std::uint32_t mismatches = 0;
  std::uint32_t insertions = 0;
  std::uint32_t deletions = 0;
  std::uint32_t num_Ns = 0;  ///< Bridged.

  void add(Move move, const Scoring& scoring) {
    score += score_of(move, scoring);
    mismatches += move == Move::kMismatch ? 1 : 0;
    insertions += move == Move::kInsertion ? 1 : 0;
    deletions += move == Move::kDeletion ? 1 : 0;
  }

  friend AlignmentTotals operator+(AlignmentTotals a, const AlignmentTotals& b) {
    return {a.score + b.score, a.mismatches + b.mismatches, a.insertions + b.insertions,
            a.deletions + b.deletions, a.num_Ns + b.num_Ns};
  }
  friend AlignmentTotals operator-(AlignmentTotals a, const AlignmentTotals& b) {
    return {a.score - b.score, a.mismatches - b.mismatches, a.insertions - b.insertions,
            a.deletions - b.deletions, a.num_Ns - b.num_Ns};
  }
};

}  // namespace vorlan
