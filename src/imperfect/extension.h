// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <vector>

#include "imperfect/merged_look_ahead.h"
#include "imperfect/unit_paths.h"
#include "search/csat.h"

namespace vorlan {

/// Extends `sat` up to `stop` (the end of the sequence forward, its first residue backward) and
/// leaves the best alignment found in it, its events unsorted.
///
/// With `paths`, stretches that other extensions have gone are passed over: their edits are
/// counted, but stand in `segments` instead of in the events of `sat`.
template <class Direction>
void extend(Csat& sat, const char* stop, const AlignmentSettings& settings,
            MergedLookAheadMemory& memory, UnitPaths* paths = nullptr,
            std::vector<PathSegment>* segments = nullptr);

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

}  // namespace vorlan
