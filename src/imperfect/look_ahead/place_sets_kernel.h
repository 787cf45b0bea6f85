// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead by numbers of edits instead of path by path.
//
// Idea: a path's score is the place it has come to (residues consumed since the decision) plus what
// its edits cost, where an insertion or a mismatch costs one more for the residue that it consumes
// without a match. So of paths with the same numbers of mismatches, insertions and deletions only
// the places have to be known: a set, one bit for each place, since all of them are on the same
// diagonal (insertions - deletions), where the same unit base is due at the same place. An edit
// moves a whole set by one place or none. All walks of a set are one addition: at each place that
// matches, a one is carried on to the next place that does not.
//
//     place                7 6 5 4 3 2 1 0
//     matches              0 1 1 1 0 0 1 1     next mismatches: 2 and 7
//     arrivals             0 0 1 0 0 0 1 0     two paths, at 1 and 5
//     their sum            1 0 0 1 0 1 0 1     the ones that were carried on: 2 and 7
//     where they end       1 0 0 0 0 1 0 0     the sum where nothing matches
//
// 56 sets behind up to 5 edits for each first move, instead of 363 paths. The sets of the three
// first moves lie side by side in the lanes of a register. The value of a first move is the highest
// score in its sets.
//
// Why it gives the same decision. With a constant threshold the value of a first move is the
// highest score over all paths that begin with it, and every path of the look-ahead is in the sets,
// as long as every edit of it leaves a score above the threshold: from each set the places are
// taken whose score is too low. A path that has come to the end of the sequence goes on here, but
// nothing matches there, and each edit costs more than it gains: such paths are worth less than
// before, under the same first move.
//
// With a limit of the score reduction the threshold rises with the best score on a path. It is at
// least that of the best score so far, and at most that of the highest score that is reached with
// this one: the look-ahead goes all paths that stay above the higher of the two, and none that do
// not stay above the lower. Where both give the same edit the same value, so does the look-ahead.
//
// Example, unit AC at ..|GTACAC: mismatch, then insertion, and insertion, then mismatch, arrive at
// the same place: one bit. An insertion alone and a mismatch alone do not, since their diagonals
// differ.
//
// Limits: an N is passed without a gain, and beyond the last place less those that leads may differ
// nothing is known; such decisions are tried again with more words, or left to others.
//
// Cost: some 15 instructions for each numbers of edits, 50 of them at depth 5; no branch depends on
// the residues, and no memory is needed.

#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlan {

/// What the decisions of one search have in common. Scores are negative.
struct PlaceSetsPlan {
  std::int32_t mismatch_score;
  std::int32_t indel_score;
  std::int32_t most_edits;  ///< Explored in a row: 1 to kMostEditsOfSets.
};

/// More edits are left to others: the sets grow with the square of them.
inline constexpr std::int32_t kMostEditsOfSets = 7;

/// How many words of 64 places a decision may look at, to be tried in this order: in a satellite
/// six of seven decisions need one word, and one of thirty more than two.
inline constexpr std::int32_t kWordsOfSets[] = {1, 2, 4};
inline constexpr std::int32_t kMostWordsOfSets = 4;

/// Where the residues ahead differ from the unit: a bit for each place, the lowest for the nearest.
/// `first` is the word of the first 64 places on diagonal 0, between those of the diagonals from
/// -`most_edits` to `most_edits`. Those of the next 64 places lie `distance` words further on, and
/// so on: for `count` times 64 places, one of kWordsOfSets. The words belong to whoever made them,
/// DiagonalMasks in a search.
struct DiagonalWords {
  const std::uint64_t* first;
  std::ptrdiff_t distance;
  std::int32_t count;
};

/// The first moves, in the order that decides ties, and what else a decision may be.
enum class FirstEdit : std::int8_t { kMismatch, kInsertion, kDeletion, kNone, kUnknown };

/// A decision, what it is worth if it is an edit, and the furthest place that any path came to.
/// Scores are relative to that at the decision.
struct FirstEditChoice {
  FirstEdit edit;
  std::int32_t value;
  std::int32_t furthest;
};

/// The edit that the look-ahead values most, kNone when the threshold allows none, kUnknown when
/// that cannot be told. An edit is made only while the score stays above `threshold`. Requires
/// scores whose sums fit 32 bits.
using ChooseFirstEdit = FirstEditChoice(const PlaceSetsPlan& plan, const DiagonalWords& differs,
                                        std::int32_t threshold);

/// The function of one instruction set.
struct PlaceSetsKernel {
  ChooseFirstEdit* choose;
  const char* name;  ///< Of the instruction set, for messages.
};
namespace portable {
ChooseFirstEdit choose_first_edit;
}  // namespace portable
namespace avx2 {
ChooseFirstEdit choose_first_edit;
}  // namespace avx2

}  // namespace vorlan
