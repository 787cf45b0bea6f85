// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Whether an extension that stands at a decision can come back to a score that it asks for.
//
// Idea: nine in ten decisions are made behind the end of a repeat, on the way from its best score
// down to the floor, and change nothing: the extension returns to its best state. So before a
// decision an upper bound is put on all that can follow: any edits in any order, without the
// look-ahead. If the bound stays below what would replace the best state, the extension is over.
//
// Why nothing is lost: after e edits, on diagonal d (insertions - deletions), a path is at a place
// p (residues consumed) with a lead l (score - residues consumed; a matter of its edits alone,
// since a match adds one to both). Here only the largest place P and the largest lead L are kept
// for each e and d, though they may belong to different paths. By induction p <= P and l <= L for
// every path:
//   - an edit moves place and lead by the same amounts for all paths on a diagonal;
//   - a walk over matches that begins no further ends no further;
//   - a path may make an edit while its score stays above the threshold, and p + l <= P + L.
// So no score exceeds the largest P + L. An N counts as a match, which it never is; the end of the
// sequence as a mismatch, though no path goes on there. Until the best state is replaced the best
// score does not change, and with it neither does the threshold, whatever the limit of the score
// reduction. The depth of the look-ahead only chooses among these paths.
//
// Example, unit AC, penalties -5, score 3 at ..|GTGTGTGT, threshold -3: one edit leads to -2 and no
// match follows it on the diagonals -1, 0 and 1; a second edit is not allowed. It is over. At
// ..|GACACAC an insertion leads to -2 and six matches to 4, above the best: it is not.
//
// Why not the values of the look-ahead: those end at its depth, and cost a walk for each order of
// edits. Cost: a walk for each number of edits and diagonal, quadratic in the edits that the score
// allows.
//
// Limits: so many edits as there are diagonals in the masks, and their reach; paths beyond may come
// back.

#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "imperfect/look_ahead/diagonal_masks.h"
#include "imperfect/scoring.h"

namespace vorlan {

/// See above. Scores are relative to that at the decision.
template <class Direction>
class Comeback {
 public:
  using Masks = DiagonalMasks<Direction>;

  explicit Comeback(const Scoring& scoring)
      : mismatch_score_(clamped(scoring.mismatch_score)),
        indel_score_(clamped(scoring.indel_score)) {}

  /// Whether some path that begins with an edit may reach `goal`, when edits are made only while
  /// the score behind them is above `threshold`. False is a proof. `masks` have been started at the
  /// decision with `most_edits` diagonals. Requires a threshold and a goal of at most kLargest,
  /// either sign.
  bool may_reach(Masks& masks, std::int32_t goal, std::int32_t threshold, std::int32_t most_edits) {
    set(0, {0, 0});
    set(-1, kNone);
    set(1, kNone);
    std::int32_t highest = 0;
    for (std::int32_t edits = 1; edits <= most_edits; ++edits) {
      if (highest + std::max(mismatch_score_, indel_score_) <= threshold) return false;
      masks.open(edits);
      highest = make_edits(masks, edits, threshold);
      if (highest >= goal) return true;
      if (highest == kDead) return false;
    }
    return true;
  }
  static constexpr std::int32_t kLargest = 1 << 24;

 private:
  /// The largest place and the largest lead of the paths on a diagonal.
  struct Reach {
    std::int32_t place;
    std::int32_t lead;
  };

  static constexpr std::int32_t kDead = -(1 << 29);
  static constexpr Reach kNone{kDead, kDead};
  /// With one more on either side, which has no paths.
  static constexpr std::int32_t kMostDiagonals = Masks::kMostDiagonals + 1;

  static std::int32_t clamped(std::int64_t penalty) {
    return static_cast<std::int32_t>(std::max<std::int64_t>(penalty, -kLargest));
  }

  /// Makes the next edit of all paths. Returns the highest score behind the walks, kDead if there
  /// are no paths; what runs out of the masks may have any score.
  std::int32_t make_edits(Masks& masks, std::int32_t widest, std::int32_t threshold) {
    set(widest + 1, kNone);
    set(-widest - 1, kNone);
    std::int32_t highest = kDead;
    Reach below = kNone;
    Reach here = kNone;  // of the diagonal -widest, which had no paths yet
    for (std::int32_t diagonal = -widest; diagonal <= widest; ++diagonal) {
      const Reach above = reach(diagonal + 1);
      Reach next{std::max({here.place + 1, below.place + 1, above.place}),
                 std::max({here.lead + mismatch_score_ - 1, below.lead + indel_score_ - 1,
                           above.lead + indel_score_})};
      if (next.place + next.lead <= threshold) {
        next = kNone;
      } else {
        next.place = masks.next_mismatch(diagonal, next.place);
        highest =
            std::max(highest, next.place == Masks::kReach ? kLargest : next.place + next.lead);
      }
      set(diagonal, next);
      below = here;
      here = above;
    }
    return highest;
  }

  const Reach& reach(std::int32_t diagonal) const {
    return reaches_[static_cast<std::size_t>(std::ptrdiff_t{diagonal} + kMostDiagonals)];
  }
  void set(std::int32_t diagonal, const Reach& reach) {
    reaches_[static_cast<std::size_t>(std::ptrdiff_t{diagonal} + kMostDiagonals)] = reach;
  }

  std::int32_t mismatch_score_;
  std::int32_t indel_score_;
  std::array<Reach, 2 * kMostDiagonals + 1> reaches_;
};

}  // namespace vorlan
