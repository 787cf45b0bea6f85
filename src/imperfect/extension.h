// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "imperfect/look_ahead/bit_look_ahead.h"
#include "imperfect/merged_look_ahead.h"
#include "imperfect/unit_paths.h"
#include "search/csat.h"

namespace vorlan {

/// What the extensions of one search share.
struct ExtensionContext {
  const char* seq_begin = nullptr;  ///< Where places are counted from.
  AlignmentSettings settings{};
  const BitPlanes* planes = nullptr;  ///< Of the sequence; only for speed, may be null.
  UnitPaths* paths = nullptr;         ///< Where ways are stored; may be null.
  MergedLookAheadMemory<Forward> forward_memory{};
  MergedLookAheadMemory<Backward> backward_memory{};
  BitLookAheadMemory bit_memory{};
};

/// Extends `sat` in one direction and leaves the best alignment found in it, its events unsorted.
///
/// With stored ways, stretches that other extensions have gone are passed over: their edits are
/// counted, but stand in `segments` instead of in the events of `sat`.
///
/// Whether the score is below `least_score` or not is right at the end, but below it no more of the
/// alignment than that need be.
///
/// `stop` is the end of the sequence forward and its first residue backward. A nearer one is
/// allowed only in a context without planes and ways, which know nothing of it.
template <class Direction>
void extend(Csat& sat, const char* stop, ExtensionContext& context,
            std::vector<PathSegment>& segments,
            std::int64_t least_score = std::numeric_limits<std::int64_t>::min());

/// Extends `sat` in both directions and trims it. Returns whether it reaches the thresholds; only
/// then its events are sorted, and complete unless there are many: most alignments with many are
/// removed again, so those keep in `passed_over` what `events_pending` says is missing.
bool extend_and_judge(Csat& sat, const char* seq_end, ExtensionContext& context, int min_score,
                      int min_length, PassedOver& passed_over);

/// The event of a move from `place`. A deletion is recorded at the residue to the right of the gap,
/// whichever way the extension goes.
template <class Direction>
Missense event_of(Move move, const char* place) {
  switch (move) {
    case Move::kMismatch:
      return {Direction::residue(place), kMismatchEvent};
    case Move::kInsertion:
      return {Direction::residue(place), kInsertionEvent};
    default:
      return {place, kDeletionEvent};
  }
}

/// Adds the edits of stretches that were passed over to the events of `sat`.
template <class Direction>
void append_events(const std::vector<PathSegment>& segments, const UnitPaths& paths, Csat& sat) {
  const PathForest& forest = paths.forest(Direction{});
  for (const PathSegment& segment : segments) {
    for (NodeId id = segment.from; id != segment.to; id = forest.after(id)) {
      sat.missense.push_back(event_of<Direction>(forest[id].move, paths.place_of(forest[id])));
    }
  }
}

}  // namespace vorlan
