// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extension of a repeat over mismatches, insertions and deletions.
//
// Idea: follow the unit over matches. Where the sequence departs from it, ask the look-ahead which
// edit promises most, apply it and go on, until no edit keeps the score above the threshold. On the
// way remember the best state; at the end return to it.
//
// Invariant: the events of the best state are a prefix of those applied so far, so returning to it
// means cutting the list.
//
// Example: unit AC, ...ACACAGACAC...: at G the mismatch keeps the phase, so it is chosen over the
// indels; four matches later the score is one below the best. Whether the stretch behind G is kept
// depends on how much further the matches go.
//
// Of two equally good states the later one is remembered when longer repeats are preferred.

#include "imperfect/leap_ahead.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

template <class Direction>
class Extension {
 public:
  Extension(Csat& sat, const char* stop)
      : sat_(sat),
        unit_{sat.unit_begin, sat.unit_end},
        stop_(stop),
        look_ahead_(settings_, unit_, stop),
        now_{Direction::place(sat), Direction::cursor(sat), sat.score,  sat.mismatches,
             sat.insertions,        sat.deletions,          sat.num_Ns, sat.missense.size},
        best_(now_) {}

  void run() {
    bool keep = false;
    for (;;) {
      walk_over_matches();
      if (Direction::at_stop(now_.place, stop_)) {
        keep = is_as_good_as_best();
        break;
      }
      if (is_bridgeable_N()) {
        if (bridge_N_run()) continue;
        keep = is_as_good_as_best();
        break;
      }
      if (is_as_good_as_best()) best_ = now_;
      const Choice choice = look_ahead_.best_move(now_.place, now_.cursor, now_.score,
                                                  sat_.recursion_level, best_.score);
      if (choice.move == Move::kNone) {
        // One point more lenient than where the extension ends for another reason. Deliberate: with
        // longer repeats preferred, a state one point below the best is kept here, and a record can
        // end with a score of -1.
        keep = best_.score <= now_.score + settings_.prefer_longer_repeat;
        break;
      }
      apply(choice.move);
    }
    store(keep ? now_ : best_);
  }

 private:
  using Move = typename LeapAhead<Direction>::Move;
  using Choice = typename LeapAhead<Direction>::Choice;

  /// What an extension changes of a record.
  struct State {
    const char* place;
    const char* cursor;
    std::int64_t score;
    std::uint32_t mismatches;
    std::uint32_t insertions;
    std::uint32_t deletions;
    std::uint32_t num_Ns;
    std::uint32_t events;
  };

  bool is_as_good_as_best() const {
    return now_.score > best_.score - settings_.prefer_longer_repeat;
  }

  void walk_over_matches() {
    while (!Direction::at_stop(now_.place, stop_) &&
           *Direction::residue(now_.place) == *now_.cursor) {
      step();
      ++now_.score;
    }
  }

  bool is_bridgeable_N() const {
    return *Direction::residue(now_.place) == 'N' && settings_.longest_N_run != 0;
  }

  // Bridges the whole N run, or nothing when it is too long; then returns false.
  bool bridge_N_run() {
    std::uint32_t run_length = 0;
    for (const char* place = now_.place;
         !Direction::at_stop(place, stop_) && *Direction::residue(place) == 'N';
         place = Direction::next(place)) {
      if (run_length == settings_.longest_N_run) return false;
      ++run_length;
    }
    for (std::uint32_t i = 0; i < run_length; ++i) step();
    now_.num_Ns += run_length;
    return true;
  }

  void apply(Move move) {
    switch (move) {
      case Move::kMismatch:
        add_event(Direction::residue(now_.place), kMismatchEvent);
        ++now_.mismatches;
        now_.score += settings_.mismatch_score;
        step();
        break;
      case Move::kInsertion:
        add_event(Direction::residue(now_.place), kInsertionEvent);
        ++now_.insertions;
        now_.score += settings_.indel_score;
        now_.place = Direction::next(now_.place);
        break;
      case Move::kDeletion:
        // The residue to the right of the gap, whichever way the extension goes.
        add_event(now_.place, kDeletionEvent);
        ++now_.deletions;
        now_.score += settings_.indel_score;
        now_.cursor = Direction::next_unit_base(now_.cursor, unit_);
        break;
      case Move::kNone:
        break;
    }
  }

  void add_event(const char* position, char kind) {
    sat_.missense.push_back({position, kind});
    ++now_.events;
  }

  void step() {
    now_.place = Direction::next(now_.place);
    now_.cursor = Direction::next_unit_base(now_.cursor, unit_);
  }

  void store(const State& state) {
    Direction::place(sat_) = state.place;
    Direction::cursor(sat_) = state.cursor;
    sat_.score = static_cast<std::int32_t>(state.score);
    sat_.mismatches = state.mismatches;
    sat_.insertions = state.insertions;
    sat_.deletions = state.deletions;
    sat_.num_Ns = state.num_Ns;
    sat_.missense.size = state.events;
  }

  Csat& sat_;
  UnitSpan unit_;
  const char* stop_;
  AlignmentSettings settings_;
  LeapAhead<Direction> look_ahead_;
  State now_;
  State best_;
};

}  // namespace

void CSearchController::extend_imperfect_forward(Csat& sat, const char* seq_end_of_walk) {
  Extension<Forward>(sat, seq_end_of_walk).run();
}

void CSearchController::extend_imperfect_backward(Csat& sat, const char* seq_begin_of_walk) {
  Extension<Backward>(sat, seq_begin_of_walk).run();
}

}  // namespace vorlan
