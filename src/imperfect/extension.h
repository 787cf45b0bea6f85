// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <vector>

#include "imperfect/merged_look_ahead.h"
#include "imperfect/unit_paths.h"
#include "search/csat.h"

namespace vorlan {

/// What the extensions of one search share.
struct ExtensionContext {
  const char* seq_begin = nullptr;
  const char* seq_end = nullptr;
  AlignmentSettings settings{};
  const BitPlanes* planes = nullptr;  ///< Of the sequence; only for speed, may be null.
  UnitPaths* paths = nullptr;         ///< Where ways are stored; may be null.
  MergedLookAheadMemory<Forward> forward_memory{};
  MergedLookAheadMemory<Backward> backward_memory{};
};

/// Extends `sat` in one direction up to the end of the sequence and leaves the best alignment found
/// in it, its events unsorted.
///
/// With stored ways, stretches that other extensions have gone are passed over: their edits are
/// counted, but stand in `segments` instead of in the events of `sat`.
template <class Direction>
void extend(Csat& sat, ExtensionContext& context, std::vector<PathSegment>& segments);

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
