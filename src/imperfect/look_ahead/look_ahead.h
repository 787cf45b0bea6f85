// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>

#include "imperfect/leap_ahead.h"
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
        plain_(scoring_, unit, stop),
        merged_(scoring_, unit, stop, &record.planes(), record.begin(),
                record.template memory<Direction>()) {}

  /// The move of LeapAhead::best_move.
  Move best_move(const Front& front, std::int64_t score, std::uint8_t level, std::int64_t best) {
    if (is_merged_ && level == 0 && merged_.can_decide(score) && !has_few_paths(score)) {
      return merged_.best_move(front, score);
    }
    return plain_.best_move(front, score, level, best).move;
  }

 private:
  /// With room for this many edits at most, the look-ahead goes path by path.
  static constexpr int kFewEdits = 3;
  static constexpr int kShallowLevel = 7;

  // Close to the floor there are so few paths that looking for equal states costs more than it
  // saves. A deep look-ahead has many all the same: a path that gains on its way goes on for long.
  bool has_few_paths(std::int64_t score) const {
    return scoring_.deepest_level() > 0 && scoring_.deepest_level() <= kShallowLevel &&
           score + kFewEdits * scoring_.dearest_edit() <= scoring_.threshold(score, unit_length_);
  }

  const Scoring& scoring_;
  std::ptrdiff_t unit_length_;
  bool is_merged_;
  LeapAhead<Direction> plain_;
  MergedLookAhead<Direction> merged_;
};

}  // namespace vorlan
