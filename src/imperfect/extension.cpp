// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extension of a repeat over mismatches, insertions and deletions.
//
// Idea: follow the unit over matches. Where the sequence departs from it, ask the look-ahead which
// edit promises most, make it and go on, until no edit keeps the score above the threshold, or the
// sequence ends or an N run follows that is too long. On the way remember the best state; at the
// end return to it.
//
// Invariant: the events of the best state are a prefix of those made so far, so returning to it
// means cutting the list.
//
// Example, unit AC, penalties 5, from the first AC of ACACACACAGACACACAC: seven matches lead to G,
// with score 7. The mismatch keeps the phase, so it is chosen over the indels and leaves 2; eight
// matches later the sequence ends with 10: better than 7, the repeat reaches to the end. With only
// ACAC behind G the end has 6, and the extension returns to the state before G.
//
// Of two equally good states the later one is remembered when longer repeats are preferred.
//
// Where the score is high, the extension passes over a way that others have gone; see
// ways/way_forest.h for why that leads to the same result.

#include "imperfect/extension.h"

#include <optional>

#include "imperfect/extension_steps.h"
#include "imperfect/ways/way_follower.h"

namespace vorlan {
namespace {

template <class Direction>
class Extension {
 public:
  Extension(Csat& sat, const char* stop, RecordSearch& record, std::vector<WaySegment>& passed_over,
            std::int64_t least_score)
      : sat_(sat),
        scoring_(record.scoring()),
        least_score_(least_score),
        steps_(sat, stop, record) {
    now_.front = Direction::front(sat);
    now_.totals = {sat.score, sat.mismatches, sat.insertions, sat.deletions, sat.num_Ns};
    now_.events = sat.missense.size;
    best_ = now_;
    if (StoredWays* ways = record.shared_ways())
      ways_.emplace(*ways, steps_, scoring_, passed_over);
  }

  void run() {
    bool keep = false;
    for (;;) {
      if (!steps_.reach_decision(now_.front, now_.totals)) {
        keep = is_as_good_as_best();
        break;
      }
      if (is_as_good_as_best()) best_ = now_;
      if (is_over()) break;
      if (ways_ && !ways_->pass_over(now_, best_)) {
        keep = is_as_good_as_best();
        break;
      }
      const Move move = steps_.decide(now_.front, now_.totals.score, best_.totals.score);
      if (move == Move::kNone) {
        // One point more lenient than where the extension ends for another reason. Deliberate: with
        // longer repeats preferred, a state one point below the best is kept here, and a record can
        // end with a score of -1.
        keep = best_.totals.score <= now_.totals.score + scoring_.prefer_longer_repeat;
        break;
      }
      sat_.missense.push_back(event_of<Direction>(move, now_.front.place));
      ++now_.events;
      steps_.make(move, now_.front, now_.totals);
    }
    store(keep ? now_ : best_);
  }

 private:
  bool is_as_good_as_best() const {
    return now_.totals.score > best_.totals.score - scoring_.prefer_longer_repeat;
  }

  // Whether nothing that may follow is kept. A state one point worse than those that replace the
  // best one may be kept, too; and an alignment below the least score is worth no more than
  // another.
  bool is_over() {
    const std::int64_t best = best_.totals.score;
    const std::int64_t goal =
        best < least_score_ ? least_score_ : best - scoring_.prefer_longer_repeat;
    return steps_.stays_below(goal, now_.front, now_.totals.score, best);
  }

  void store(const ExtensionState& state) {
    Direction::set_front(sat_, state.front);
    sat_.score = static_cast<std::int32_t>(state.totals.score);
    sat_.mismatches = state.totals.mismatches;
    sat_.insertions = state.totals.insertions;
    sat_.deletions = state.totals.deletions;
    sat_.num_Ns = state.totals.num_Ns;
    sat_.missense.size = state.events;
    if (ways_) ways_->return_to(state.way);
  }

  Csat& sat_;
  const Scoring& scoring_;
  std::int64_t least_score_;
  ExtensionSteps<Direction> steps_;
  std::optional<WayFollower<Direction>> ways_;  ///< Only speed; none without shared ways.
  ExtensionState now_;
  ExtensionState best_;
};

}  // namespace

template <class Direction>
void extend(Csat& sat, const char* stop, RecordSearch& record, std::vector<WaySegment>& passed_over,
            std::int64_t least_score) {
  Extension<Direction>(sat, stop, record, passed_over, least_score).run();
}

template void extend<Forward>(Csat&, const char*, RecordSearch&, std::vector<WaySegment>&,
                              std::int64_t);
template void extend<Backward>(Csat&, const char*, RecordSearch&, std::vector<WaySegment>&,
                               std::int64_t);

}  // namespace vorlan
