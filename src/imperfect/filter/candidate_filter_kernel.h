// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter before the extension: most candidates are proved hopeless without extending them.
//
// Idea: the extension of a candidate is a path through a small automaton. The path consumes
// residues, j of them so far; it makes edits, e of them; and its diagonal d = insertions -
// deletions tells which unit base is due. One bit per start position in each cell (e, d) says
// whether some path of that start is there, so a step over one residue moves 512 starts at once.
//
//              d   -2   -1    0   +1   +2
//        e = 0                o                match: the path stays in its cell
//        e = 1           o    o    o           mismatch: one row down
//        e = 2      o    o    o    o    o      insertion: one row down, one to the right
//                                              deletion: one row down, one to the left
//
// Edits leave a cell only from a mismatch, as in the extension, and only while the score allows it.
//
// The score of a cell is bounded for all starts alike: of j residues, a path with e edits on
// diagonal d matched at most j - ceil((e + d) / 2), since at least that many residues were inserted
// or mismatched, and each edit cost at least the smaller penalty.
//
// A start survives if a path is still alive where the look ends, or if the bounds reached forward
// and backward together come up to the least score that is accepted. All others are hopeless:
//   - every path of the extension is a path of the automaton: the extension makes an edit only if
//     the score behind that edit is above the threshold, which is at least the floor, and the bound
//     is at least the score, so the automaton makes the same edit; the look-ahead only chooses
//     among the edits that the automaton makes;
//   - an N that is bridged counts as a match, which adds to the bound but never to the score;
//   - outside the sequence nothing matches;
//   - the backward extension starts with what the forward one gained. A start that gains `max_gain`
//     forward survives at once; so less than that is what the backward floor has to allow for.
// A rejected candidate leaves no trace, so it does not matter that it was never extended.
//
// Example, unit length 2, penalties 5, longer repeats preferred: the floor is -3, so an edit needs
// a score of at least 3 before it. The look goes 8 residues far, the least score is 6, and forward
// gains are told apart up to 6. At AC|GT no path survives the first residue, neither forward nor
// backward anything is gained, and the start is hopeless. At AC|ACAGACAC the path may edit at G,
// where it has 3 points, and goes on with -2; it is still there when the look ends, and the start
// survives.
//
// Cost: about 12 word operations for each cell and residue, for 512 starts.

#pragma once

#include <cstddef>
#include <cstdint>

#include "search/bit_planes.h"

namespace vorlan {

/// Words of one block: 512 start positions.
inline constexpr std::size_t kFilterWords = 8;
inline constexpr int kFilterStarts = kFilterWords * kBitsPerWord;

/// One bit for each start position of a block.
using Lanes __attribute__((vector_size(kFilterWords * sizeof(std::uint64_t)))) = std::uint64_t;

/// What one look at the starts of one unit length needs to know.
struct FilterPlan {
  int unit_length;
  int floor;               ///< An edit is tried only if the score stays above it.
  int penalty;             ///< The smaller cost of an edit, positive.
  int min_score;           ///< At least 1.
  int horizon;             ///< Residues that are looked at in each direction, at most.
  int first_check;         ///< After this many residues it begins to look how many starts are left.
  int few_enough_to_stop;  ///< When so few starts are left, they survive unseen.
  int checks_without_loss;  ///< After so many checks in which no start was lost, the rest survive.
  int max_gain;             ///< Forward gains are told apart up to here: at most min_score.
  int max_edits;            ///< No path makes more edits within the horizon.
  int row_size;    ///< Lanes in a row: max_edits on either side of the middle, and two more for
                   ///< neighbours that are always empty.
  bool bridges_N;  ///< N is passed over, rather than an ordinary residue that matches nothing.
};

/// Offsets from a start that a look at it reads, rounded up to whole words.
constexpr int filter_offsets(const FilterPlan& plan) {
  constexpr int kWord = static_cast<int>(kBitsPerWord);
  return (plan.unit_length + 2 * plan.horizon + kWord - 1) / kWord * kWord;
}

/// Memory of a kernel.
struct FilterBuffers {
  Lanes* shifted;         ///< Three planes for each of the offsets from -horizon on.
  Lanes* cells;           ///< max_edits + 1 rows.
  Lanes* mismatches;      ///< One row.
  Lanes* leaving;         ///< Two rows.
  Lanes* nothing;         ///< A row that stays empty.
  Lanes* forward_gains;   ///< Starts that gain at least i, for i up to max_gain.
  Lanes* backward_gains;  ///< For i up to min_score or horizon.
};

/// Clears the hopeless starts among `candidates`, kFilterWords words from `first_word` of the
/// planes.
using JudgeBlock = void(const FilterPlan& plan, const BitPlanes::Words& planes,
                        std::ptrdiff_t first_word, const FilterBuffers& buffers,
                        std::uint64_t* candidates);

/// The same for kFilterStarts starts that lie anywhere, in order: bit i of `candidates` belongs to
/// starts[i].
using JudgeStarts = void(const FilterPlan& plan, const BitPlanes::Words& planes,
                         const std::ptrdiff_t* starts, const FilterBuffers& buffers,
                         std::uint64_t* candidates);

/// The same two functions, compiled for several instruction sets.
struct FilterKernel {
  JudgeBlock* judge_block;
  JudgeStarts* judge_starts;
  const char* name;  ///< Of the instruction set, for messages.
};
namespace portable {
JudgeBlock judge_block;
JudgeStarts judge_starts;
}  // namespace portable
namespace avx2 {
JudgeBlock judge_block;
JudgeStarts judge_starts;
}  // namespace avx2
namespace avx512 {
JudgeBlock judge_block;
JudgeStarts judge_starts;
}  // namespace avx512

}  // namespace vorlan
