// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The inner loop of the self-alignment: scores of all diagonals, one antidiagonal after the other.
//
// Geometry: a cell (x, k) is the pair of boundaries x and y = x + k of the sequence. Cells of one
// antidiagonal t = x + y do not depend on each other. On every other antidiagonal k is even, on
// those between it is odd; so two rows of scores are enough, and each lane of a row keeps its k:
//
//     lane        0      1      2            x grows by one from lane to lane, y falls by one;
//     even t     top   top-2  top-4          from one even antidiagonal to the next both grow
//     odd t     top-1  top-3  top-5          by one in every lane.
//
// A cell is replaced in place by the best of: itself (the cell one pair further on the same
// diagonal) with the pair of residues between, and its neighbours in the other row, which lie an
// edit away. The neighbour with k - 1 is reached by an edit that consumes a unit base, the one with
// k + 1 by an edit that consumes a residue. That holds in both directions of the alignment; only
// the order of the antidiagonals and the residues between two cells differ.

#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlan {

/// Lanes that are judged together; rows are whole groups.
inline constexpr int kAlignmentGroup = 32;

/// Antidiagonals of each kind in one tile: as many as bits in a word of starts.
inline constexpr int kAlignmentSteps = 64;

/// What steps cost, in the scale of the scores; costs are positive.
struct AlignmentCosts {
  std::int16_t match;
  std::int16_t mismatch;
  std::int16_t insertion;
  std::int16_t deletion;
};

/// One tile: kAlignmentSteps even antidiagonals, each followed by an odd one. Index 0 is even k,
/// index 1 odd k.
struct AlignmentTile {
  int groups;
  AlignmentCosts costs;
  /// The scores, which are updated. One lane before and one behind can be read; they stay.
  std::int16_t* scores[2];
  const std::int16_t* caps[2];    ///< No score is kept above these.
  const std::int16_t* wanted[2];  ///< A score that comes up to these is a hit.
  /// One-hot bases, of which two match when they share a bit: what lane 0 of the first even
  /// antidiagonal aligns. In `right` they stand in reverse, so that it is read backwards from step
  /// to step and forwards from lane to lane.
  const std::int16_t* left;
  const std::int16_t* right;
  /// kAlignmentSteps masks for each group in turn, where those with hits are put; the others stay.
  std::uint32_t* hits[2];
  std::uint8_t* has_hits[2];  ///< One for each group; set when it has hits.
};

/// Goes through a tile, by rising antidiagonals (for the alignment to the left) or falling ones.
using AlignTile = void(const AlignmentTile& tile);

/// The same two functions, compiled for several instruction sets.
struct AlignmentKernel {
  AlignTile* align_rising;
  AlignTile* align_falling;
};
namespace portable {
AlignTile align_rising;
AlignTile align_falling;
}  // namespace portable
namespace avx2 {
AlignTile align_rising;
AlignTile align_falling;
}  // namespace avx2
namespace avx512 {
AlignTile align_rising;
AlignTile align_falling;
}  // namespace avx512

}  // namespace vorlan
