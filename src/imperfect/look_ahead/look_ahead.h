// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>

#include "imperfect/leap_ahead.h"
#include "imperfect/look_ahead/bit_look_ahead.h"
#include "imperfect/look_ahead/merged_look_ahead.h"
#include "imperfect/record_search.h"

namespace vorlan {

/// Decides as LeapAhead does, by whichever look-ahead is faster there.
template <class Direction>
class LookAhead {
 public:
  /// Within the record, which must outlive this.
  LookAhead(RecordSearch& record, const UnitSpan& unit, const char* stop)
      : scoring_(record.scoring()),
        unit_length_(unit.length()),
        is_merged_(record.accelerations().merged_look_ahead),
        by_bits_(record.accelerations().bit_look_ahead),
        ends_early_(record.accelerations().early_end),
        plain_(scoring_, unit, stop),
        merged_(scoring_, unit, stop, &record.planes(), record.begin(),
                record.template memory<Direction>()),
        bits_(scoring_, unit, stop, &record.planes(), record.begin(), record.bit_memory(),
              record.template decisions<Direction>(unit)) {}

  /// The move of LeapAhead::best_move.
  Move best_move(const Front& front, std::int64_t score, std::uint8_t level, std::int64_t best) {
    if (by_bits_ && level == 0) {
      if (const std::optional<Move> move = bits_.best_move(front, score, best)) return *move;
    }
    if (is_merged_ && level == 0 && merged_.can_decide(score) && !has_few_paths(score)) {
      return merged_.best_move(front, score);
    }
    return plain_.best_move(front, score, level, best).move;
  }

  /// Whether nothing behind the decision at `front` will score `goal` or more, as far as can be
  /// proved; see comeback.h. `best` is the best score so far.
  bool stays_below(std::int64_t goal, const Front& front, std::int64_t score, std::int64_t best) {
    return ends_early_ && unit_length_ <= kLongestUnitToEndEarly &&
           bits_.stays_below(goal, front, score, scoring_.threshold(best, unit_length_));
  }

 private:
  /// With room for this many edits at most, the look-ahead goes path by path, if it is not deep.
  /// Chosen by the bench, table "Tuning".
  static constexpr int kFewEdits = 3;
  static constexpr int kShallowLevel = 7;

  /// A long unit affords so many edits that the proof takes longer than the decisions that it
  /// saves, of which the bounds before the extension leave few: on human sequence it gains nothing
  /// at 20 bases, and at 100 it costs half of the time.
  static constexpr std::ptrdiff_t kLongestUnitToEndEarly = 20;

  // Close to the floor there are so few paths that looking for equal states costs more than it
  // saves. A deep look-ahead has many all the same: a path that gains on its way goes on for long.
  bool has_few_paths(std::int64_t score) const {
    return scoring_.deepest_level() > 0 && scoring_.deepest_level() <= kShallowLevel &&
           score + kFewEdits * scoring_.dearest_edit() <= scoring_.threshold(score, unit_length_);
  }

  const Scoring& scoring_;
  std::ptrdiff_t unit_length_;
  bool is_merged_;
  bool by_bits_;
  bool ends_early_;
  LeapAhead<Direction> plain_;
  MergedLookAhead<Direction> merged_;
  BitLookAhead<Direction> bits_;
};

}  // namespace vorlan
