// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The decisions of long units, kept for the other units that come to the same place.
//
// Idea: neighbouring starts have nearly the same unit, and so have neighbouring unit lengths. Their
// extensions soon stand in front of the same residue, with the same base of the sequence due, and
// decide the same again: beside the period of a satellite four times of five. So a decision is kept
// under its place and the offset of its due base.
//
// Why it is the same decision: where the score is so high that no path of the look-ahead comes down
// to the floor, a decision depends on the residues ahead of the place and on the unit bases from
// the due one on. Until the unit ends these are the bases of the sequence, whatever unit it is. So
// a kept decision holds for each unit that does not end before the last base that was read for it.
//
// Example, forward, the unit of 8 bases at offset 0:
//
//     offset     0         5         10        15
//     residues   A C G T T G C A A C G A T G C A A C G
//     unit      |A C G T T G C A|      ^ the decision at place 11, T due at offset 3
//
// Say the look-ahead has read five unit bases, T T G C A at offsets 3 to 7. The unit of 8 bases at
// offset 1 comes to place 11 with offset 3 due as well, and has six bases left: it makes the same
// edit. The unit of 7 bases at offset 0 has four left, and A C G behind them, so it decides for
// itself.
//
// Limits: what is read across the end of a unit is not kept. A new decision takes the slot of
// an older one. Cost: one slot is looked at; 12 bytes each, and no more slots than fit the cache.

#pragma once

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "imperfect/moves.h"
#include "search/direction.h"

namespace vorlan {

/// See above: the decisions in one direction.
template <class Direction>
class DecisionMemory {
 public:
  /// For a sequence of so many residues that begins at `seq_begin`, which must outlive this. Takes
  /// no memory before the first decision is kept.
  DecisionMemory(const char* seq_begin, std::size_t residues)
      : seq_begin_(seq_begin),
        slots_(std::bit_ceil(std::min(kSlotsPerResidue * residues + 1, kMostSlots))) {}

  /// The edit at `front` for `unit`, if it is kept. Requires a score from which no path of the
  /// look-ahead comes down to the floor.
  std::optional<Move> find(const Front& front, const UnitSpan& unit) const {
    if (decisions_.empty()) return {};
    const Decision& kept = decisions_[slot(front)];
    const bool is_same = kept.place == offset_of(front.place) &&
                         kept.due == offset_of(front.cursor) &&
                         kept.bases_read <= Direction::bases_left(front.cursor, unit);
    return is_same ? std::optional(kept.move) : std::nullopt;
  }

  /// Keeps the edit that was decided on, under the same requirement, after `bases_read` unit bases
  /// from the due one on had been read at most. Throws std::bad_alloc.
  void keep(const Front& front, const UnitSpan& unit, Move move, std::int32_t bases_read) {
    if (bases_read > Direction::bases_left(front.cursor, unit)) return;
    if (decisions_.empty()) decisions_.resize(slots_);
    assert(bases_read >= 0 && bases_read <= std::numeric_limits<std::uint16_t>::max());
    decisions_[slot(front)] = {offset_of(front.place), offset_of(front.cursor),
                               static_cast<std::uint16_t>(bases_read), move};
  }

 private:
  struct Decision {
    std::uint32_t place = kNoPlace;
    std::uint32_t due = 0;
    std::uint16_t bases_read = 0;
    Move move = Move::kNone;
  };
  static constexpr std::uint32_t kNoPlace = std::numeric_limits<std::uint32_t>::max();

  /// Chosen by the bench, table "Tuning".
  static constexpr std::size_t kMostSlots = std::size_t{1} << 14;
  static constexpr std::size_t kSlotsPerResidue = 4;
  /// Between the slots of neighbouring diagonals at one place: far apart, for each needs room for
  /// the places behind.
  static constexpr std::uint32_t kSlotsPerDiagonal = 2533;

  std::uint32_t offset_of(const char* place) const {
    return static_cast<std::uint32_t>(place - seq_begin_);
  }

  // Decisions on one diagonal lie in the order of their places: those that follow each other share
  // a line of the cache.
  std::size_t slot(const Front& front) const {
    const auto diagonal = static_cast<std::uint32_t>(front.place - front.cursor);
    return (offset_of(front.place) + diagonal * kSlotsPerDiagonal) & (slots_ - 1);
  }

  const char* seq_begin_;
  std::size_t slots_;
  std::vector<Decision> decisions_;
};

}  // namespace vorlan
