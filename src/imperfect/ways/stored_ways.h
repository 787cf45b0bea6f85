// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <limits>
#include <vector>

#include "imperfect/scoring.h"
#include "imperfect/ways/unit_phases.h"
#include "imperfect/ways/way_forest.h"
#include "input/csequence_mol.h"

namespace vorlan {

/// A stretch of a stored way: the decisions of the nodes from `from` up to but not including `to`.
struct WaySegment {
  NodeId from;
  NodeId to;
};

/// What an extension of a repeat in both directions passed over.
struct PassedOver {
  std::vector<WaySegment> forward;
  std::vector<WaySegment> backward;
};

/// The ways that the extensions in one record have gone. Unit lengths share them: ACAC reads like
/// AC.
class StoredWays {
 public:
  /// `seq_begin` is where places are counted from.
  StoredWays(const char* seq_begin, const Scoring& scoring)
      : seq_begin_(seq_begin),
        forward_(scoring.prefer_longer_repeat != 0),
        backward_(scoring.prefer_longer_repeat != 0) {}

  /// Whether decisions can be shared at all: a limit of the score reduction makes them depend on
  /// the best score, and a look-ahead of unlimited depth reaches every floor.
  static bool can_share(const Scoring& scoring) {
    return scoring.has_constant_threshold() && scoring.deepest_level() > 0;
  }

  /// Ways are followed and stored only while the score is at least this: then no edit that the
  /// look-ahead may try, at any level, comes down to the floor.
  static std::int64_t lowest_score(std::ptrdiff_t unit_length, const Scoring& scoring) {
    const std::int64_t most_to_lose = -scoring.dearest_edit() * scoring.maximum_recursion_depth;
    return std::max({scoring.floor(unit_length) + 1 + most_to_lose, kWorthStoring,
                     kWorthStoringLongUnit * (unit_length - kLongUnit)});
  }

  /// Whether an extension with this unit length looks for a stored way at `place`, and can be found
  /// there itself. Once it has met a way it is on it for good, so one that goes far need not look
  /// everywhere: a long unit looks at one place of eight, the same ones for all ways.
  static bool may_meet_at(std::uint32_t place, std::ptrdiff_t unit_length) {
    if (unit_length <= kLongUnit) return true;
    constexpr std::uint32_t kSpread = 0x9E3779B1;  // an odd number without pattern
    const std::uint32_t spread = place * kSpread;
    // Twice: steps of 36 places, spread once, come to every fourth value again and again.
    return (spread ^ spread >> 15) * kSpread >> (32 - kMeetingPlaceBits) == 0;
  }

  /// Whether there are so many ways, about 70 MB, that they are better forgotten.
  bool is_full() const { return nodes() > kMostNodes; }
  std::size_t nodes() const { return forward_.size() + backward_.size(); }

  /// Forgets all ways. Node names are without meaning afterwards.
  void forget() {
    forward_.clear();
    backward_.clear();
    phases_ = UnitPhases();
  }

  std::uint32_t offset_of(const char* place) const {
    assert(place >= seq_begin_ &&
           place - seq_begin_ <= std::ptrdiff_t{CSequence_Mol::kMaxResidues});
    return static_cast<std::uint32_t>(place - seq_begin_);
  }
  const char* place_of(const WayNode& node) const { return seq_begin_ + node.place; }

  UnitPhases& phases() { return phases_; }

  WayForest& forest(Forward) { return forward_; }
  WayForest& forest(Backward) { return backward_; }
  const WayForest& forest(Forward) const { return forward_; }
  const WayForest& forest(Backward) const { return backward_; }

  /// Adds the edits of stretches that were passed over to the events of `sat`.
  template <class Direction>
  void append_events(const std::vector<WaySegment>& segments, Csat& sat) const {
    const WayForest& ways = forest(Direction{});
    for (const WaySegment& segment : segments) {
      for (NodeId id = segment.from; id != segment.to; id = ways.after(id)) {
        sat.missense.push_back(event_of<Direction>(ways[id].move, place_of(ways[id])));
      }
    }
  }

 private:
  static_assert(CSequence_Mol::kMaxResidues <= std::numeric_limits<std::uint32_t>::max(),
                "places are stored in 32 bits");

  /// A node takes about 80 bytes, and 40 more where other ways may find it.
  static constexpr std::size_t kMostNodes = 600'000;

  /// Extensions that never get this far are over soon, whatever the floor; storing their ways would
  /// cost more than it saves. Chosen by the bench, table "Tuning".
  static constexpr std::int64_t kWorthStoring = 10;

  /// Nearly every start of a long unit has a unit of its own, since neighbouring copies differ
  /// somewhere, so few extensions meet. Ways are stored only behind many copies, where going on
  /// would cost most: from this many points for each base above kLongUnit. Chosen by the bench,
  /// table "Tuning".
  static constexpr std::int64_t kLongUnit = 16;
  static constexpr std::int64_t kWorthStoringLongUnit = 64;

  /// The places where long units meet are one of two to the power of this. Chosen by the bench,
  /// table "Tuning".
  static constexpr unsigned kMeetingPlaceBits = 3;

  const char* seq_begin_;
  UnitPhases phases_;
  WayForest forward_;
  WayForest backward_;
};

}  // namespace vorlan
