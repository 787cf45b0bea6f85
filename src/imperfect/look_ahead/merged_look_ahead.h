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
// Example, unit AC, penalties 5, at AC|TACACG where A is due, first move a deletion: then C is due
// at T, on diagonal -1. A mismatch there arrives in front of A with A due, on the same diagonal,
// and walks over ACAC: two edits, -10 + 4 points. An insertion and a deletion instead arrive at the
// same A with A due and walk over ACAC, too, but with three edits and five points less: that state
// is dropped. The insertion alone arrives in front of the same A with C due, on diagonal 0, where
// no state is as far: that state stays.
//
// Cost: about one state for each level and diagonal. Works for any depth, needs no stack.

#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "imperfect/look_ahead/mismatch_masks.h"
#include "imperfect/look_ahead/unit_strip.h"
#include "imperfect/moves.h"
#include "input/csequence_mol.h"
#include "search/walk.h"

namespace vorlan {

/// Memory of the look-ahead in one sequence, reused from decision to decision. Scores are relative
/// to the decision.
template <class Direction>
struct MergedLookAheadMemory {
  // An alignment consumes no more residues than a sequence has.
  static_assert(CSequence_Mol::kMaxResidues <= std::numeric_limits<std::int32_t>::max());

  struct State {
    std::int32_t advance;   ///< Residues consumed since the decision.
    std::int32_t diagonal;  ///< Insertions - deletions since the decision.
    std::int32_t score;

    std::int32_t lead() const { return score - advance; }
  };

  std::vector<State> level;
  std::vector<State> next_level;
  std::vector<std::vector<State>> seen;  ///< By diagonal, of all levels.
  UnitStrip unit;
  MismatchMasks<Direction> masks;
};

/// See above. Makes the same decisions as LeapAhead::best_move at level 0.
template <class Direction>
class MergedLookAhead {
 public:
  using Memory = MergedLookAheadMemory<Direction>;

  /// `planes`, if not null, are those of the sequence that begins at `seq_begin`: they make walks
  /// faster.
  MergedLookAhead(const Scoring& scoring, const UnitSpan& unit, const char* stop,
                  const BitPlanes* planes, const char* seq_begin, Memory& memory)
      : scoring_(scoring),
        unit_(unit),
        stop_(stop),
        planes_(planes),
        seq_begin_(seq_begin),
        floor_(scoring.floor(unit.length())),
        diagonals_(number_of_diagonals(scoring, unit)),
        memory_(memory) {}

  /// Whether decisions at this score can be made here: the threshold is a constant, and relative
  /// scores fit 32 bits.
  bool can_decide(std::int64_t score) const {
    return scoring_.has_constant_threshold() && score - floor_ < kLargestScore &&
           scoring_.dearest_edit() > -kLargestScore;
  }

  /// See LeapAhead::best_move. Requires that it `can_decide` the score.
  Move best_move(const Front& front, std::int64_t score) {
    assert(can_decide(score));
    origin_ = front.place;
    cursor_ = front.cursor - unit_.begin;
    relative_floor_ = static_cast<std::int32_t>(floor_ - score);
    memory_.seen.resize(static_cast<std::size_t>(diagonals_));
    if (planes_ != nullptr) {
      memory_.unit.assign(planes_->words(), unit_.begin - seq_begin_, unit_.length());
      memory_.masks.start(planes_->words(), memory_.unit, front.place - seq_begin_, cursor_,
                          memory_.seen.size());
    }
    // On equal values a mismatch comes before an insertion and that before a deletion.
    Move best = Move::kNone;
    std::int32_t best_value = kUnreached;
    const auto try_first = [&](Move move, std::int32_t value) {
      if (value <= best_value) return;
      best = move;
      best_value = value;
    };
    try_first(Move::kMismatch, value_of<Move::kMismatch>());
    try_first(Move::kInsertion, value_of<Move::kInsertion>());
    try_first(Move::kDeletion, value_of<Move::kDeletion>());
    return best;
  }

 private:
  using State = typename Memory::State;

  static constexpr std::int64_t kLargestScore = 1 << 29;
  static constexpr std::int32_t kUnreached = std::numeric_limits<std::int32_t>::min();

  // Diagonals that have to be told apart: with few edits not all of them can be reached.
  static std::int32_t number_of_diagonals(const Scoring& scoring, UnitSpan unit) {
    const std::ptrdiff_t reachable = 2 * std::ptrdiff_t{scoring.deepest_level()} + 1;
    return static_cast<std::int32_t>(
        scoring.deepest_level() > 0 ? std::min(unit.length(), reachable) : unit.length());
  }

  // The highest score behind the first edit `move`; kUnreached if the floor forbids it.
  template <Move move>
  std::int32_t value_of() {
    for (std::vector<State>& seen : memory_.seen) seen.clear();
    memory_.next_level.clear();
    highest_ = kUnreached;
    is_last_level_ = scoring_.deepest_level() == 1;
    make_edit<move>({0, 0, 0});
    for (int level = 1; level != scoring_.deepest_level() && !memory_.next_level.empty(); ++level) {
      std::swap(memory_.level, memory_.next_level);
      memory_.next_level.clear();
      is_last_level_ = level + 1 == scoring_.deepest_level();
      for (const State& state : memory_.level) {
        make_edit<Move::kMismatch>(state);
        make_edit<Move::kInsertion>(state);
        make_edit<Move::kDeletion>(state);
      }
    }
    return highest_;
  }

  template <Move move>
  void make_edit(State state) {
    state.score += static_cast<std::int32_t>(score_of(move, scoring_));
    if (state.score <= relative_floor_) return;
    state.advance += residues_used(move);
    state.diagonal += residues_used(move) - unit_bases_used(move);
    const std::size_t slot = slot_of(state.diagonal);
    walk_on(slot, state);
    highest_ = std::max(highest_, state.score);
    if (!is_last_level_ && place_of(state) != stop_) add(slot, state);
  }

  std::size_t slot_of(std::int32_t diagonal) const {
    const std::int32_t remainder = diagonal % diagonals_;
    return static_cast<std::size_t>(remainder < 0 ? remainder + diagonals_ : remainder);
  }

  const char* place_of(const State& state) const {
    return Direction::moved(origin_, state.advance);
  }

  void walk_on(std::size_t slot, State& state) {
    if (planes_ != nullptr) {
      const std::int32_t end = memory_.masks.next_mismatch(slot, state.diagonal, state.advance);
      if (end != MismatchMasks<Direction>::kUnknown) {
        state.score += end - state.advance;
        state.advance = end;
        return;
      }
    }
    walk_step_by_step(state);
  }

  void walk_step_by_step(State& state) const {
    const std::ptrdiff_t steps = std::ptrdiff_t{state.advance} - state.diagonal;
    Front front{place_of(state), Direction::unit_base_after(
                                     unit_.begin + cursor_, unit_,
                                     steps < 0 ? steps % unit_.length() + unit_.length() : steps)};
    Steps walked;
    walk<Direction>(front, unit_, stop_, scoring_.longest_N_run == 0 ? 0 : kAnyNRun, walked);
    state.score += static_cast<std::int32_t>(walked.matches);
    state.advance += static_cast<std::int32_t>(walked.matches + walked.Ns);
  }

  void add(std::size_t slot, const State& state) {
    std::vector<State>& seen = memory_.seen[slot];
    for (const State& other : seen) {
      if (other.advance >= state.advance && other.lead() >= state.lead()) return;
    }
    seen.push_back(state);
    memory_.next_level.push_back(state);
  }

  const Scoring& scoring_;
  UnitSpan unit_;
  const char* stop_;
  const BitPlanes* planes_;
  const char* seq_begin_;
  std::int64_t floor_;
  std::int32_t diagonals_;
  Memory& memory_;
  const char* origin_ = nullptr;
  std::ptrdiff_t cursor_ = 0;
  std::int32_t relative_floor_ = 0;
  std::int32_t highest_ = 0;
  bool is_last_level_ = false;
};

}  // namespace vorlan
