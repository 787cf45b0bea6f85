// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "imperfect/look_ahead/comeback.h"
#include "imperfect/look_ahead/decision_memory.h"
#include "imperfect/look_ahead/diagonal_masks.h"
#include "imperfect/look_ahead/place_sets_kernel.h"
#include "imperfect/look_ahead/unit_strip.h"
#include "imperfect/moves.h"
#include "imperfect/scoring.h"
#include "search/direction.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<PlaceSetsKernel>& runnable_place_sets_kernels();

/// Memory of the two directions, reused from extension to extension in one sequence.
struct BitLookAheadMemory {
  ChooseFirstEdit* choose_first_edit = runnable_place_sets_kernels().back().choose;
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
  /// sequence with a margin of DiagonalMasks::kMargin, nothing is ever told. In `decisions`,
  /// if given, moves of this sequence are looked up and kept.
  BitLookAhead(const Scoring& scoring, const UnitSpan& unit, const char* stop,
               const BitPlanes* planes, const char* seq_begin, BitLookAheadMemory& memory,
               DecisionMemory<Direction>* decisions)
      : scoring_(scoring),
        unit_(unit),
        stop_(stop),
        planes_(planes),
        seq_begin_(seq_begin),
        memory_(memory),
        masks_(memory.masks(Direction{})),
        comeback_(scoring),
        decisions_(scoring.has_constant_threshold() ? decisions : nullptr),
        decides_(can_decide(scoring)) {}

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

  /// The move of LeapAhead::best_move at `front`, at level 0, when it can be told. `best` is the
  /// best score so far.
  std::optional<Move> best_move(const Front& front, std::int64_t score, std::int64_t best) {
    if (planes_ == nullptr || !decides_) return {};
    const bool is_kept = decisions_ != nullptr && no_path_ends_at_floor(score);
    if (is_kept) {
      if (const std::optional<Move> known = decisions_->find(front, unit_)) return known;
    }
    const FirstEditChoice choice = decide(front, score, best);
    const std::optional<Move> move = move_of(choice.edit);
    // The residue at the furthest place was compared on diagonals down to minus the deepest level.
    const std::int32_t bases_read = choice.furthest + 1 + scoring_.deepest_level();
    if (is_kept && move) decisions_->keep(front, unit_, *move, bases_read);
    return move;
  }

 private:
  /// How many edits are looked at for each that the score allows: what is gained behind one allows
  /// more. A few more cost little. Chosen by the bench, table "Tuning".
  static constexpr std::int64_t kEditsForEach = 2;
  static constexpr std::int64_t kMoreEdits = 3;

  static bool can_decide(const Scoring& scoring) {
    return scoring.deepest_level() > 0 && scoring.deepest_level() <= kMostEditsOfSets &&
           // So many edits stay above a threshold that was clamped to -kLargest.
           scoring.dearest_edit() * kMostEditsOfSets > -std::int64_t{Comeback<Direction>::kLargest};
  }

  bool no_path_ends_at_floor(std::int64_t score) const {
    return score + scoring_.deepest_level() * scoring_.dearest_edit() >
           scoring_.floor(unit_.length());
  }

  // Unknown where a higher threshold on the way could decide otherwise.
  FirstEditChoice decide(const Front& front, std::int64_t score, std::int64_t best) {
    start_masks(front, scoring_.deepest_level());
    masks_.open(scoring_.deepest_level());
    const std::int64_t threshold = scoring_.threshold(best, unit_.length());
    FirstEditChoice choice = choose(relative(threshold, score));
    const std::int64_t highest = std::max(best, score + choice.value);
    const std::int64_t highest_threshold = scoring_.threshold(highest, unit_.length());
    const bool is_certain = highest_threshold == threshold ||
                            is_same(choose(relative(highest_threshold, score)), choice);
    if (!is_certain || masks_.has_N()) choice.edit = FirstEdit::kUnknown;
    return choice;
  }

  static bool is_same(const FirstEditChoice& a, const FirstEditChoice& b) {
    return a.edit == b.edit && a.value == b.value;
  }

  // Looks further where that is needed.
  FirstEditChoice choose(std::int32_t threshold) {
    const PlaceSetsPlan plan{static_cast<std::int32_t>(scoring_.mismatch_score),
                             static_cast<std::int32_t>(scoring_.indel_score),
                             scoring_.deepest_level()};
    FirstEditChoice choice{};
    for (const std::int32_t words : kWordsOfSets) {
      choice = memory_.choose_first_edit(plan, masks_.words(words), threshold);
      if (choice.edit != FirstEdit::kUnknown) break;
    }
    return choice;
  }

  static std::optional<Move> move_of(FirstEdit edit) {
    switch (edit) {
      case FirstEdit::kMismatch:
        return Move::kMismatch;
      case FirstEdit::kInsertion:
        return Move::kInsertion;
      case FirstEdit::kDeletion:
        return Move::kDeletion;
      case FirstEdit::kNone:
        return Move::kNone;
      case FirstEdit::kUnknown:
        break;
    }
    return {};
  }

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
  DecisionMemory<Direction>* decisions_;
  bool decides_;
  bool unit_is_read_ = false;
};

}  // namespace vorlan
