// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The ways that extensions have gone, kept so that others need not find them again.
//
// Idea: when the score is so high that no edit the look-ahead may try comes near the floor, a
// decision depends on nothing but the place and the unit as read from there. Extensions that meet
// at such a decision point go on together. A decision point is a node, and the decision point that
// its decision leads to is its parent; the ways of all extensions form a forest. Its roots are the
// decision points from which no extension has gone on yet, and the ends of ways.
//
// Why results stay the same: an extension follows a stored way only while its own score is that
// high, so it would have made the same decisions; scores, counts and the place are exact.
//
// Each node knows its score to go: what an extension that passes will gain (or lose, if negative)
// until the root. All along a tree
//
//     score of an extension at a node = its score at the root - score to go of the node
//
// so the score is lowest where most is to go (the dip of a stretch), and highest where least is to
// go (its peak), for every extension alike. A node knows dip and peak of its whole way to the root:
// an extension sees in one step whether its score ever falls too low, and where it is best. Where
// it does fall too low, jump pointers (E. W. Myers, "An applicative random-access stack",
// Information Processing Letters 17, 1983) lead there in logarithmic time.
//
// Example, unit AC, penalties 5, residues ..ACTCACACGCACA|. Decision points are T and G, both with
// A due; the way ends at the end of the sequence. In brackets what is still to go:
//
//     node T [-5 + 5 - 5 + 4 = -1] --- mismatch, CACAC ---> node G [-5 + 4 = -1] --- mismatch, CACA
//     ---> root: the end [0]
//
// An extension that arrives at T with 30 will have 29 at the end. The most that is to go behind T
// is 0, so the score never falls below 29 - 0 behind T: one step. The least is -1, at G: there the
// score is best, 29 + 1. An extension that started one base later, with the unit CA, arrives at T
// expecting A as well: the same node. One that expects C there is at another node.
//
// A root that is passed later gets a continuation into another tree. Roots with continuations form
// a forest of their own, with jump pointers of the same kind; scores count from each root, since
// what comes behind it may still grow.
//
// Limits: where roots got their continuations in the order of the way, each when the one before it
// had its own already, they have no long jumps and are passed one by one. Memory: about 80 bytes a
// node, and 40 more where other ways may find it, as they need not everywhere: a node whose phase
// is unknown is found by none, and may stand for a decision point that has another one. A forest
// that has grown too large is forgotten.

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "imperfect/moves.h"
#include "imperfect/ways/node_table.h"

namespace vorlan {

/// The phase of a decision point that no other way is to find: what stands there is not known.
inline constexpr std::uint32_t kUnknownPhase = std::numeric_limits<std::uint32_t>::max();

/// A decision point, or the point where a way ends for good.
struct WayNode {
  std::uint32_t place;  ///< Offset of the place in the sequence.
  std::uint32_t phase;  ///< The unit as read from the place, see UnitPhases, or kUnknownPhase.
  Move move = Move::kNone;
  bool is_terminal = false;  ///< End of the sequence, or an N run that is too long.
};

/// Where following a way has led.
struct WayEnd {
  NodeId node;  ///< Terminal, or with a score below the limit, or a root without continuation.
  AlignmentTotals totals;      ///< Of the extension when it arrives there.
  NodeId best_node = kNoNode;  ///< The best node behind the first one, if it is as good as asked.
  AlignmentTotals best_totals{};
};

/// The ways in one direction.
class WayForest {
 public:
  /// Of equal scores the later node counts as better if `prefer_later`, else the earlier one.
  explicit WayForest(bool prefer_later) : prefer_later_(prefer_later) {}

  const WayNode& operator[](NodeId id) const { return nodes_[id]; }

  /// The decision point at `place` with `phase`, or kNoNode.
  NodeId find(std::uint32_t place, std::uint32_t phase) const {
    return phase == kUnknownPhase ? kNoNode : ids_.find(place, phase);
  }

  /// Adds a root.
  NodeId add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal);

  /// Adds a decision point whose `move` leads to `next`, with `gain` on the way.
  NodeId add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
             const AlignmentTotals& gain);

  /// Tells how a root goes on; once for each.
  void continue_root(NodeId root, Move move, NodeId continuation, const AlignmentTotals& gain);

  /// Follows the way from `first`, where an extension has arrived with `totals`, until it ends or
  /// the score is below `lowest_score`. The best node is the best one that is not worse than
  /// `best_score`; with equal scores only if later ones are preferred.
  WayEnd follow(NodeId first, const AlignmentTotals& totals, std::int64_t lowest_score,
                std::int64_t best_score) const;

  /// The node after `id` on its way, past roots; kNoNode where the way ends.
  NodeId after(NodeId id) const;

  /// A node further on in the same tree; a root itself.
  NodeId jump(NodeId id) const { return links_[id].jump.end; }

  std::size_t size() const { return nodes_.size(); }

  void clear();

 private:
  /// What lies behind a node in its tree, up to and with the node at `end`.
  struct Stretch {
    NodeId end = kNoNode;
    std::int32_t dip_to_go = 0;   ///< The most that is to go: there the score is lowest.
    std::int32_t peak_to_go = 0;  ///< The least that is to go: there the score is best.
    NodeId peak = kNoNode;
  };

  /// What following needs, apart from the rest for the sake of the cache. Scores fit 32 bits: a way
  /// gains at most one point a residue and loses at most what an extension had.
  struct Link {
    NodeId next = kNoNode;   ///< The next decision point; kNoNode at a root.
    std::int32_t to_go = 0;  ///< Score between here and the root.
    Stretch jump;
    Stretch whole_way;  ///< To the root: most extensions need nothing else.
  };

  /// Edits and N between a node and the root.
  struct Counts {
    std::uint32_t depth = 0;  ///< Nodes until the root.
    std::uint32_t mismatches = 0;
    std::uint32_t insertions = 0;
    std::uint32_t deletions = 0;
    std::uint32_t num_Ns = 0;
  };

  /// What lies behind a root, up to and with the root at `end`. Totals and scores count from the
  /// root where it begins.
  struct RootStretch {
    NodeId end;
    AlignmentTotals to_end;
    std::int64_t dip;  ///< The lowest score.
    NodeId peak;
    AlignmentTotals to_peak;
  };

  static constexpr std::uint32_t kNoContinuation = std::numeric_limits<std::uint32_t>::max();

  /// How a root goes on.
  struct Continuation {
    NodeId node;
    AlignmentTotals gain;
    RootStretch to_next_root;
    RootStretch jump;
    std::size_t jumped_roots;
  };

  /// An extension on its way.
  struct Journey {
    NodeId id;
    AlignmentTotals at_root;  ///< What the extension will have at the root of this tree.
    std::int64_t lowest_score;
    std::int64_t best_score;
    NodeId best_node = kNoNode;
    AlignmentTotals best_totals{};
  };

  NodeId add_node(const WayNode& node, const Link& link, const Counts& counts);
  AlignmentTotals to_root(NodeId id) const;
  void lengthen(Stretch& stretch, const Stretch& more) const;
  RootStretch stretch_to_next_root(NodeId continuation, const AlignmentTotals& gain) const;
  void lengthen(RootStretch& stretch, const RootStretch& more) const;
  const Continuation* continuation_of(NodeId root) const;

  bool stays_high(const Journey& journey, const Stretch& stretch) const {
    return journey.at_root.score - stretch.dip_to_go >= journey.lowest_score;
  }
  bool go_on_in_tree(Journey& journey) const;
  bool go_on_behind_root(Journey& journey) const;
  bool arrive(Journey& journey, NodeId id) const;
  void remember_if_best(Journey& journey, NodeId id) const;

  /// Whether a score is better than one earlier on the same way.
  bool is_better(std::int64_t score, std::int64_t earlier) const {
    return prefer_later_ ? score >= earlier : score > earlier;
  }

  bool prefer_later_;
  std::vector<Link> links_;
  std::vector<WayNode> nodes_;
  std::vector<Counts> counts_;
  std::vector<Continuation> continuations_;
  std::vector<std::uint32_t> continuation_ids_;  ///< Of each node; only roots have one.
  NodeTable ids_;
};

}  // namespace vorlan
