// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead without a limit of the score reduction, level by level instead of path by path.
//
// Idea: the recursion visits up to 3^5 paths for each decision, most of them the same few states in
// another order of edits. Here only those states are followed that can still lead further than
// states already seen.
//
// Why it gives the same decision. Without a limit the threshold is a constant, so the value of a
// first move is the highest score over all states that follow it. Let A and B be two such states on
// the same diagonal (insertions - deletions, modulo the unit length: what decides which unit base
// meets which residue), both behind their walk over matches. If B has made no more edits than A, is
// at least as far, and leads, that is, its score minus the residues it has consumed is at least
// that of A, then B reaches whatever A reaches:
//   - B's score is at least A's, so B may make every edit that A may make;
//   - after the same insertion or deletion, A either stops before B's place on the new diagonal, or
//     both stop at the same place, with the same relation between them (an N that A passes and B
//     does not only lowers A's score);
//   - after a mismatch A is still not beyond B on the diagonal, and B needs no edit at all.
// So A can be dropped. With a limit, the best score of a path enters its threshold, and this fails.
//
// Example, unit AC at ..|GTACAC: mismatch, then insertion, and insertion, then mismatch, arrive at
// the same A with the same score: the second is dropped.
//
// Cost: about one state for each level and diagonal. Works for any depth, needs no stack.

#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

#include "imperfect/leap_ahead.h"

namespace vorlan {

/// Memory of the look-ahead, reused from decision to decision. Scores are relative to the decision.
struct MergedLookAheadMemory {
  struct State {
    std::int32_t advance;   ///< Residues consumed since the decision.
    std::int32_t diagonal;  ///< Insertions - deletions since the decision, modulo the diagonals.
    std::int32_t cursor;    ///< Offset of the unit base that is due.
    std::int32_t score;

    std::int32_t lead() const { return score - advance; }
  };

  std::vector<State> level;
  std::vector<State> next_level;
  std::vector<std::vector<State>> seen;  ///< By diagonal, of all levels.
};

/// See above. Makes the same decisions as LeapAhead::best_move at level 0.
template <class Direction>
class MergedLookAhead {
 public:
  MergedLookAhead(const AlignmentSettings& settings, UnitSpan unit, const char* stop,
                  MergedLookAheadMemory& memory)
      : settings_(settings),
        unit_(unit),
        stop_(stop),
        floor_(-unit.length() - settings.prefer_longer_repeat),
        last_unit_base_(static_cast<std::int32_t>(unit.length()) - 1),
        diagonals_(number_of_diagonals(settings, unit)),
        memory_(memory) {}

  /// Whether decisions at this score can be made here: the threshold is a constant, and relative
  /// scores fit 32 bits.
  bool can_judge(std::int64_t score) const {
    return settings_.has_constant_threshold() && score - floor_ < kLargestScore &&
           std::min(settings_.mismatch_score, settings_.indel_score) > -kLargestScore;
  }

  Move best_move(const char* place, const char* cursor, std::int64_t score) {
    origin_ = place;
    relative_floor_ = static_cast<std::int32_t>(floor_ - score);
    const State here{0, 0, static_cast<std::int32_t>(cursor - unit_.begin), 0};
    // On equal values a mismatch comes before an insertion and that before a deletion.
    Move best = Move::kNone;
    std::int32_t best_value = kUnreached;
    for (const Move move : {Move::kMismatch, Move::kInsertion, Move::kDeletion}) {
      const std::int32_t value = value_of(move, here);
      if (value <= best_value) continue;
      best = move;
      best_value = value;
    }
    return best;
  }

 private:
  using State = MergedLookAheadMemory::State;

  static constexpr std::int64_t kLargestScore = 1 << 29;
  static constexpr std::int32_t kUnreached = std::numeric_limits<std::int32_t>::min();

  // Diagonals that have to be told apart: with few edits not all of them can be reached.
  static std::int32_t number_of_diagonals(const AlignmentSettings& settings, UnitSpan unit) {
    const std::ptrdiff_t reachable = 2 * std::ptrdiff_t{settings.deepest_level()} + 1;
    return static_cast<std::int32_t>(
        settings.deepest_level() > 0 ? std::min(unit.length(), reachable) : unit.length());
  }

  // The highest score behind the first edit `move`; kUnreached if the floor forbids it.
  std::int32_t value_of(Move move, const State& here) {
    memory_.seen.resize(static_cast<std::size_t>(diagonals_));
    for (std::vector<State>& states : memory_.seen) states.clear();
    memory_.next_level.clear();
    highest_ = kUnreached;
    make_edit(move, here);
    for (int level = 1; level != settings_.deepest_level() && !memory_.next_level.empty();
         ++level) {
      std::swap(memory_.level, memory_.next_level);
      memory_.next_level.clear();
      for (const State& state : memory_.level) {
        make_edit(Move::kMismatch, state);
        make_edit(Move::kInsertion, state);
        make_edit(Move::kDeletion, state);
      }
    }
    return highest_;
  }

  void make_edit(Move move, State state) {
    state.score += static_cast<std::int32_t>(move == Move::kMismatch ? settings_.mismatch_score
                                                                     : settings_.indel_score);
    if (state.score <= relative_floor_) return;
    if (move != Move::kDeletion) ++state.advance;
    if (move != Move::kInsertion) pass_unit_base(state);
    if (move == Move::kInsertion) {
      state.diagonal = state.diagonal + 1 == diagonals_ ? 0 : state.diagonal + 1;
    }
    if (move == Move::kDeletion) {
      state.diagonal = state.diagonal == 0 ? diagonals_ - 1 : state.diagonal - 1;
    }
    walk(state);
    highest_ = std::max(highest_, state.score);
    if (!Direction::at_stop(Direction::moved(origin_, state.advance), stop_)) add(state);
  }

  void pass_unit_base(State& state) const {
    state.cursor = Direction::next_unit_offset(state.cursor, last_unit_base_);
  }

  void walk(State& state) const {
    const char* const first_place = Direction::moved(origin_, state.advance);
    const char* place = first_place;
    for (; !Direction::at_stop(place, stop_); place = Direction::next(place)) {
      const char residue = *Direction::residue(place);
      if (residue == unit_.begin[state.cursor]) {
        ++state.score;
      } else if (residue != 'N' || settings_.longest_N_run == 0) {
        break;
      }
      pass_unit_base(state);
    }
    state.advance += static_cast<std::int32_t>(std::abs(place - first_place));
  }

  void add(const State& state) {
    std::vector<State>& seen = memory_.seen[static_cast<std::size_t>(state.diagonal)];
    for (const State& other : seen) {
      if (other.advance >= state.advance && other.lead() >= state.lead()) return;
    }
    seen.push_back(state);
    memory_.next_level.push_back(state);
  }

  const AlignmentSettings& settings_;
  UnitSpan unit_;
  const char* stop_;
  std::int64_t floor_;
  std::int32_t last_unit_base_;
  std::int32_t diagonals_;
  MergedLookAheadMemory& memory_;
  const char* origin_ = nullptr;
  std::int32_t relative_floor_ = 0;
  std::int32_t highest_ = 0;
};

}  // namespace vorlan
