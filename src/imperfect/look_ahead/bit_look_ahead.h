// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "imperfect/look_ahead/comeback.h"
#include "imperfect/look_ahead/diagonal_masks.h"
#include "imperfect/look_ahead/furthest_places.h"
#include "imperfect/look_ahead/unit_strip.h"
#include "imperfect/scoring.h"
#include "search/direction.h"

namespace vorlan {

/// Memory of the two directions, reused from extension to extension in one sequence.
struct BitLookAheadMemory {
  UnitStrip unit;
  DiagonalMasks<Forward> forward;
  DiagonalMasks<Backward> backward;

  DiagonalMasks<Forward>& masks(Forward) { return forward; }
  DiagonalMasks<Backward>& masks(Backward) { return backward; }
};

/// What the bits of the sequence tell about the decisions of one extension: whether anything can
/// still come of it, and which move is best. Both read the same masks.
template <class Direction>
class BitLookAhead {
 public:
  /// The unit lies in the sequence that begins at `seq_begin`. Without `planes`, those of the
  /// sequence with a margin of DiagonalMasks::kMargin, nothing is ever told.
  BitLookAhead(const Scoring& scoring, const UnitSpan& unit, const char* stop,
               const BitPlanes* planes, const char* seq_begin, BitLookAheadMemory& memory)
      : scoring_(scoring),
        unit_(unit),
        stop_(stop),
        planes_(planes),
        seq_begin_(seq_begin),
        memory_(memory),
        masks_(memory.masks(Direction{})),
        comeback_(scoring),
        furthest_places_(scoring),
        can_decide_(FurthestPlaces<Direction>::can_decide(scoring)) {}

  /// Whether no state behind the decision at `front` scores at least `goal`, until then with this
  /// threshold. False if that is not known, or if no edit is allowed here.
  bool stays_below(std::int64_t goal, const Front& front, std::int64_t score,
                   std::int64_t threshold) {
    const std::int64_t cheapest = scoring_.cheapest_edit();
    const std::int64_t room = score - threshold - 1;
    if (planes_ == nullptr || room < -cheapest) return false;
    const std::int64_t edits = kEditsForEach * (room / -cheapest) + kMoreEdits;
    if (edits > DiagonalMasks<Direction>::kMostDiagonals || room > Comeback<Direction>::kLargest) {
      return false;
    }
    const auto most_edits = static_cast<std::int32_t>(edits);
    start_masks(front, std::max(most_edits, scoring_.maximum_recursion_depth));
    return !comeback_.may_reach(masks_, relative(goal, score), relative(threshold, score),
                                most_edits);
  }

  /// The move of LeapAhead::best_move at `front`, at level 0, when it can be told.
  std::optional<Move> best_move(const Front& front, std::int64_t score) {
    if (planes_ == nullptr || !can_decide_) return {};
    start_masks(front, scoring_.deepest_level());
    return furthest_places_.best_move(masks_,
                                      relative(scoring_.threshold(score, unit_.length()), score),
                                      std::abs(stop_ - front.place));
  }

 private:
  /// How many edits are looked at for each that the score allows: what is gained behind one allows
  /// more. A few more cost little. Chosen by the bench, table "Tuning".
  static constexpr std::int64_t kEditsForEach = 2;
  static constexpr std::int64_t kMoreEdits = 3;

  static std::int32_t relative(std::int64_t score, std::int64_t origin) {
    constexpr std::int64_t kLargest = Comeback<Direction>::kLargest;
    return static_cast<std::int32_t>(std::clamp(score - origin, -kLargest, kLargest));
  }

  void start_masks(const Front& front, std::int32_t diagonals) {
    if (!unit_is_read_) {
      memory_.unit.assign(planes_->words(), unit_.begin - seq_begin_, unit_.length());
      masks_.read_unit(planes_->words(), memory_.unit);
      unit_is_read_ = true;
    }
    masks_.start(front.place - seq_begin_, front.cursor - unit_.begin,
                 std::min(diagonals, DiagonalMasks<Direction>::kMostDiagonals));
  }

  const Scoring& scoring_;
  UnitSpan unit_;
  const char* stop_;
  const BitPlanes* planes_;
  const char* seq_begin_;
  BitLookAheadMemory& memory_;
  DiagonalMasks<Direction>& masks_;
  Comeback<Direction> comeback_;
  FurthestPlaces<Direction> furthest_places_;
  bool can_decide_;
  bool unit_is_read_ = false;
};

}  // namespace vorlan
