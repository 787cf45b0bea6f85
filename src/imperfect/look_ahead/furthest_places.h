// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead without a limit of the score reduction, by numbers of edits instead of path by
// path.
//
// Idea: a path's score is the place it has come to (residues consumed since the decision) plus what
// its edits cost, where an insertion or a mismatch costs one more for the residue that it consumes
// without a match. So behind the same numbers of mismatches, insertions and deletions only the
// furthest place counts: 105 places at depth 5, 35 for each first move, instead of 363 paths.
//
// Why it gives the same decision. Without a limit the threshold is a constant, so the value of a
// first move is the highest score over all states that follow it. Let A and B be two of them behind
// their walk over matches, with the same numbers of edits, and B not behind A. They are on the same
// diagonal (insertions - deletions): the same unit base is due at the same place. B's score is at
// least A's, so whatever edit A may make, B may make; it leads B to a place not behind A's, and of
// two walks on one diagonal the one that begins further on ends no earlier. So B reaches at least
// A's value, and A can be dropped. Of places before the walk only the furthest need be walked from,
// for the same reason. Where two first moves lead to such A and B, A can be dropped if its move
// comes behind B's in the order that decides ties.
//
// Example, unit AC at ..|GTACAC: mismatch, then insertion, and insertion, then mismatch, arrive at
// the same place: one walk, and the second repeats a value of the first. An insertion alone and a
// mismatch alone do not, since their diagonals differ.
//
// Limits: an N is passed without a gain, and where the masks end nothing is known; such decisions
// are left to others. At the end of the sequence a path ends.
//
// Cost: at most 105 walks at depth 5, fewer near the threshold; no memory but the table of places.

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "imperfect/leap_ahead.h"
#include "imperfect/look_ahead/diagonal_masks.h"
#include "imperfect/scoring.h"

namespace vorlan {

/// See above. Scores are relative to that at the decision.
template <class Direction>
class FurthestPlaces {
 public:
  using Masks = DiagonalMasks<Direction>;

  /// More edits are left to others: the table grows with the square of them.
  static constexpr int kMostEdits = 7;
  static constexpr std::int32_t kLargest = 1 << 24;

  /// Whether decisions with these settings can be made here.
  static bool can_decide(const Scoring& scoring) {
    return scoring.has_constant_threshold() && scoring.deepest_level() > 0 &&
           scoring.deepest_level() <= kMostEdits &&
           // So many edits stay above a threshold that was clamped to -kLargest.
           scoring.dearest_edit() * kMostEdits > -kLargest;
  }

  explicit FurthestPlaces(const Scoring& scoring)
      : mismatch_score_(static_cast<std::int32_t>(scoring.mismatch_score)),
        indel_score_(static_cast<std::int32_t>(scoring.indel_score)),
        most_edits_(scoring.deepest_level()) {}

  /// The move that LeapAhead::best_move chooses at level 0, or nothing when it cannot be told.
  /// `masks` have been started at the decision with at least as many diagonals as edits are
  /// explored; `residues` is how many there are until the stop, at least 1. Requires settings that
  /// it `can_decide` with, and a threshold of at least -kLargest.
  std::optional<Move> best_move(Masks& masks, std::int32_t threshold, std::int64_t residues) {
    threshold_ = threshold;
    residues_ = residues;
    runs_out_ = false;
    values_.fill(kDead);
    bool goes_on = make_first_edits(masks);
    for (std::int32_t edits = 2; goes_on && edits <= most_edits_; ++edits) {
      masks.open(edits);
      goes_on = make_edits(masks, edits);
    }
    if (runs_out_ || masks.has_N()) return {};
    std::size_t best = 0;
    for (std::size_t first = 1; first < kFirstMoves.size(); ++first) {
      if (values_[first] > values_[best]) best = first;
    }
    return values_[best] == kDead ? Move::kNone : kFirstMoves[best];
  }

 private:
  static constexpr std::int32_t kDead = -(1 << 29);
  /// In the order that decides ties.
  static constexpr std::array<Move, 3> kFirstMoves{Move::kMismatch, Move::kInsertion,
                                                   Move::kDeletion};
  static constexpr std::size_t kStride = kMostEdits + 1;

  static constexpr std::size_t cell_of(std::int32_t insertions, std::int32_t deletions) {
    return static_cast<std::size_t>(insertions) * kStride + static_cast<std::size_t>(deletions);
  }

  // The score of all paths with these edits, minus their place. The other edits are mismatches.
  std::int32_t lead_of(std::int32_t edits, std::int32_t insertions, std::int32_t deletions) const {
    return (edits - insertions - deletions) * (mismatch_score_ - 1) +
           insertions * (indel_score_ - 1) + deletions * indel_score_;
  }

  bool make_first_edits(Masks& masks) {
    for (auto& places : places_) {
      places[cell_of(0, 0)] = places[cell_of(1, 0)] = places[cell_of(0, 1)] = kDead;
    }
    masks.open(1);
    bool goes_on = false;
    if (mismatch_score_ > threshold_) goes_on |= walk(masks, 0, 0, 0, 1, mismatch_score_ - 1);
    if (indel_score_ > threshold_) {
      goes_on |= walk(masks, 1, 1, 0, 1, indel_score_ - 1);
      goes_on |= walk(masks, 2, 0, 1, 0, indel_score_);
    }
    return goes_on;
  }

  // Turns the places behind one edit less into those behind `edits`. Returns whether any is left.
  // Cells are rewritten from the highest numbers down, so that those they depend on are still old.
  bool make_edits(Masks& masks, std::int32_t edits) {
    for (std::int32_t i = 0; i <= edits; ++i) {
      for (auto& places : places_) places[cell_of(i, edits - i)] = kDead;
    }
    bool goes_on = false;
    for (std::int32_t insertions = edits; insertions >= 0; --insertions) {
      for (std::int32_t deletions = edits - insertions; deletions >= 0; --deletions) {
        const std::int32_t lead = lead_of(edits, insertions, deletions);
        std::int32_t beaten = threshold_ - lead;
        for (std::size_t first = 0; first < kFirstMoves.size(); ++first) {
          const std::int32_t place = furthest_before(first, insertions, deletions);
          if (place <= beaten) {
            places_[first][cell_of(insertions, deletions)] = kDead;
          } else {
            beaten = place;
            goes_on |= walk(masks, first, insertions, deletions, place, lead);
          }
        }
      }
    }
    return goes_on;
  }

  // Behind the last edit, which may have been any of the three.
  std::int32_t furthest_before(std::size_t first, std::int32_t insertions,
                               std::int32_t deletions) const {
    const auto& places = places_[first];
    const std::size_t cell = cell_of(insertions, deletions);
    std::int32_t place = places[cell] + 1;
    if (insertions > 0) place = std::max(place, places[cell - kStride] + 1);
    if (deletions > 0) place = std::max(place, places[cell - 1]);
    return place;
  }

  // Returns whether an edit may follow.
  bool walk(Masks& masks, std::size_t first, std::int32_t insertions, std::int32_t deletions,
            std::int32_t place, std::int32_t lead) {
    place = masks.next_mismatch(insertions - deletions, place);
    runs_out_ |= place == Masks::kReach;
    values_[first] = std::max(values_[first], place + lead);
    const bool goes_on = place < residues_;
    places_[first][cell_of(insertions, deletions)] = goes_on ? place : kDead;
    return goes_on;
  }

  std::int32_t mismatch_score_;
  std::int32_t indel_score_;
  std::int32_t most_edits_;
  std::int32_t threshold_ = 0;
  std::int64_t residues_ = 0;
  bool runs_out_ = false;
  std::array<std::int32_t, 3> values_{};
  /// By first move, then by insertions and deletions.
  std::array<std::array<std::int32_t, kStride * kStride>, 3> places_;
};

}  // namespace vorlan
