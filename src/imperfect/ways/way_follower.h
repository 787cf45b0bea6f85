// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "imperfect/extension_steps.h"
#include "imperfect/ways/stored_ways.h"

namespace vorlan {

/// How much of what an extension has passed over belongs to one of its states.
struct WayMark {
  std::size_t segments = 0;
  NodeId end = kNoNode;  ///< Where the last segment ends for this state.
};

/// Where an extension stands, and what it has collected.
struct ExtensionState {
  Front front{};
  AlignmentTotals totals;
  std::uint32_t events = 0;  ///< Noted in the record.
  WayMark way;               ///< Passed over, besides the events.
};

/// Takes an extension over the ways that others have gone, and stores the way where it is new. See
/// way_forest.h for why the extension arrives where it would have come by itself.
template <class Direction>
class WayFollower {
 public:
  /// For the extension that `steps` belong to; notes in `passed_over` what it passes over. All must
  /// outlive this.
  WayFollower(StoredWays& ways, ExtensionSteps<Direction>& steps, const Scoring& scoring,
              std::vector<WaySegment>& passed_over)
      : ways_(ways),
        forest_(ways.forest(Direction{})),
        steps_(steps),
        segments_(passed_over),
        lowest_score_(StoredWays::lowest_score(steps.unit().length(), scoring)) {}

  /// From a decision point `now` with a high score goes on until the score is no longer high, and
  /// moves `best` along. Does nothing where the score is low. Returns false if the way ends where
  /// no decision is to be made.
  bool pass_over(ExtensionState& now, ExtensionState& best) {
    if (now.totals.score < lowest_score_) return true;
    const NodeId first = node_of(now.front, now.totals);
    const ExtensionState start = now;
    assert(segments_.size() == start.way.segments);
    segments_.push_back({first, first});
    for (;;) {
      const WayEnd end = forest_.follow(first, start.totals, lowest_score_, best.totals.score);
      if (end.best_node != kNoNode) best = state_at(start, end.best_node, end.best_totals);
      now = state_at(start, end.node, end.totals);
      segments_.back().to = end.node;
      if (forest_[end.node].is_terminal) return false;
      if (now.totals.score < lowest_score_) return true;
      lengthen(end.node, now);
    }
  }

  /// Forgets what was passed over behind a state.
  void return_to(const WayMark& state) {
    segments_.resize(state.segments);
    if (state.end != kNoNode) segments_.back().to = state.end;
  }

 private:
  /// A decision and what comes between it and the next decision point.
  struct Decision {
    std::uint32_t place;
    std::uint32_t phase;
    Move move;
    AlignmentTotals gain;
  };

  ExtensionState state_at(const ExtensionState& start, NodeId node,
                          const AlignmentTotals& totals) const {
    ExtensionState state = start;
    state.front.place = ways_.place_of(forest_[node]);
    const std::ptrdiff_t residues = std::abs(state.front.place - start.front.place);
    const AlignmentTotals more = totals - start.totals;
    state.front.cursor =
        Direction::unit_base_after(start.front.cursor, steps_.unit(),
                                   residues - std::ptrdiff_t{more.insertions} + more.deletions);
    state.totals = totals;
    state.way = {start.way.segments + 1, node};
    return state;
  }

  std::uint32_t phase_of(const Front& front) {
    const UnitSpan& unit = steps_.unit();
    if (!phases_) {
      phases_ = ways_.phases().of({unit.begin, static_cast<std::size_t>(unit.length())});
    }
    return phases_->phase(static_cast<std::uint32_t>(front.cursor - unit.begin));
  }

  NodeId add_end(const Front& front) {
    return forest_.add_root(ways_.offset_of(front.place), 0, true);
  }

  // The node of a decision point; stores the way from there on if it is new.
  NodeId node_of(Front front, AlignmentTotals totals) {
    std::vector<Decision> decisions;
    NodeId id = kNoNode;
    for (;;) {
      const std::uint32_t place = ways_.offset_of(front.place);
      const bool may_meet = StoredWays::may_meet_at(place, steps_.unit().length());
      const std::uint32_t phase = may_meet ? phase_of(front) : kUnknownPhase;
      id = forest_.find(place, phase);
      if (id != kNoNode) break;
      if (totals.score < lowest_score_) {
        id = forest_.add_root(place, phase, false);
        break;
      }
      decisions.push_back({place, phase, Move::kNone, {}});
      if (!make_decision(front, totals, decisions.back())) {
        id = add_end(front);
        break;
      }
    }
    for (auto decision = decisions.rbegin(); decision != decisions.rend(); ++decision) {
      id = forest_.add(decision->place, decision->phase, decision->move, id, decision->gain);
    }
    return id;
  }

  // Makes the decision at `front` and goes on to the next decision point; false if there is none.
  bool make_decision(Front& front, AlignmentTotals& totals, Decision& decision) {
    const AlignmentTotals before = totals;
    decision.move = steps_.decide(front, totals.score, totals.score);
    assert(decision.move != Move::kNone);  // the lowest score leaves room for each edit
    steps_.make(decision.move, front, totals);
    const bool goes_on = steps_.reach_decision(front, totals);
    decision.gain = totals - before;
    return goes_on;
  }

  // Stores how the way goes on from the root where the extension is now.
  void lengthen(NodeId root, const ExtensionState& now) {
    Front front = now.front;
    AlignmentTotals totals = now.totals;
    Decision decision{};
    const bool goes_on = make_decision(front, totals, decision);
    const NodeId next = goes_on ? node_of(front, totals) : add_end(front);
    forest_.continue_root(root, decision.move, next, decision.gain);
  }

  StoredWays& ways_;
  WayForest& forest_;
  ExtensionSteps<Direction>& steps_;
  std::vector<WaySegment>& segments_;
  std::int64_t lowest_score_;
  std::optional<UnitPhases::Unit> phases_;
};

}  // namespace vorlan
