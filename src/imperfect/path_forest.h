// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The ways that extensions have gone, kept so that others need not find them again.
//
// Idea: when the score is so high that no edit the look-ahead may try comes near the floor, a
// decision depends on nothing but the place and the unit as read from there. Extensions that meet
// at such a decision point go on together. A decision point is a node, the next one its parent; the
// ways of all extensions form a forest, and its roots are where no extension has gone on yet.
//
// Each node knows what is still to come until the root: score, edits and N. The difference between
// two nodes is what lies between them, so an extension passes over any stretch in one step. With
// the lowest and the highest score to go on the whole way it knows at once whether its score ever
// falls too low, and where it is best. Where it does fall too low, jump pointers (E. W. Myers, "An
// applicative random-access stack", Information Processing Letters 17, 1983) lead there in
// logarithmic time.
//
// Why results stay the same: an extension follows a stored way only while its own score is that
// high, so it would have made the same decisions; scores, counts and the place are exact.
//
// Example, unit AC, each node with its score to go: ACACTCACAC.. (a mismatch at T) has a node at T,
// whose parent is the next decision point. A second extension, started behind the first A with unit
// CA, arrives at T expecting A as well: the same node.
//
// A root that is passed later gets a continuation into another tree. Roots with continuations form
// a forest of their own, with jump pointers of the same kind.
//
// Limits: roots that get their continuations one after the other, each behind the end of the last
// one, are passed one by one. Memory: about 124 bytes a node; a forest that has grown too large is
// forgotten.

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "imperfect/leap_ahead.h"

namespace vorlan {

/// A node is named by its index.
using NodeId = std::uint32_t;
inline constexpr NodeId kNoNode = std::numeric_limits<NodeId>::max();

/// What an extension collects on its way. Also used for what is still to come.
struct PathTotals {
  std::int64_t score = 0;
  std::uint32_t mismatches = 0;
  std::uint32_t insertions = 0;
  std::uint32_t deletions = 0;
  std::uint32_t num_Ns = 0;

  friend PathTotals operator+(PathTotals a, const PathTotals& b) {
    return {a.score + b.score, a.mismatches + b.mismatches, a.insertions + b.insertions,
            a.deletions + b.deletions, a.num_Ns + b.num_Ns};
  }
  friend PathTotals operator-(PathTotals a, const PathTotals& b) {
    return {a.score - b.score, a.mismatches - b.mismatches, a.insertions - b.insertions,
            a.deletions - b.deletions, a.num_Ns - b.num_Ns};
  }
  std::uint32_t edits() const { return mismatches + insertions + deletions; }
};

/// A decision point, or the point where a way ends for good.
struct PathNode {
  std::uint32_t place;  ///< Offset of the place in the sequence.
  std::uint32_t phase;  ///< The unit as read from the place; see UnitPhases.
  Move move = Move::kNone;
  bool is_terminal = false;  ///< End of the sequence, or an N run that is too long.
};

/// Where following a way has led.
struct PathEnd {
  NodeId node;  ///< Terminal, or with a score below the limit, or a root without continuation.
  PathTotals totals;           ///< Of the extension when it arrives there.
  NodeId best_node = kNoNode;  ///< The best node behind the first one, if it is as good as asked.
  PathTotals best_totals{};
};

/// From the key of a decision point to its node. Decision points on the same way lie next to each
/// other, so that a way is looked up from the cache.
class NodeTable {
 public:
  NodeId find(std::uint32_t place, std::uint32_t phase) const;
  void insert(std::uint32_t place, std::uint32_t phase, NodeId id);
  void clear();

 private:
  struct Entry {
    std::uint32_t place;
    std::uint32_t phase;
    NodeId id = kNoNode;
  };

  std::size_t slot_of(std::uint32_t place, std::uint32_t phase) const {
    constexpr std::size_t kSpread = 0x9E3779B97F4A7C15;  // an odd number without pattern
    return (place + phase * kSpread) & (entries_.size() - 1);
  }
  void place_entry(const Entry& entry);
  void grow();

  std::vector<Entry> entries_;  ///< A power of two of them, at most half in use.
  std::size_t used_ = 0;
};

/// The ways in one direction.
class PathForest {
 public:
  /// Of equal scores the later node counts as better if `prefer_later`, else the earlier one.
  explicit PathForest(bool prefer_later) : prefer_later_(prefer_later) {}

  const PathNode& operator[](NodeId id) const { return nodes_[id]; }

  /// The decision point at `place` with `phase`, or kNoNode.
  NodeId find(std::uint32_t place, std::uint32_t phase) const { return ids_.find(place, phase); }

  /// Adds a root.
  NodeId add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal);

  /// Adds a decision point whose `move` leads to `next`, with `gain` on the way.
  NodeId add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
             const PathTotals& gain);

  /// Tells how a root goes on; once for each.
  void continue_root(NodeId root, Move move, NodeId continuation, const PathTotals& gain);

  /// Follows the way from `first`, where an extension has arrived with `totals`, until it ends or
  /// the score is below `lowest_score`. The best node is the best one that is not worse than
  /// `best_score`; with equal scores only if later ones are preferred.
  PathEnd follow(NodeId first, const PathTotals& totals, std::int64_t lowest_score,
                 std::int64_t best_score) const;

  /// The node after `id` on its way, past roots; kNoNode where the way ends.
  NodeId after(NodeId id) const;

  /// A node further on in the same tree; a root itself.
  NodeId jump(NodeId id) const { return links_[id].jump.end; }

  std::size_t size() const { return nodes_.size(); }

  void clear();

 private:
  /// What lies behind a node, up to and with the one at `end`.
  struct Stretch {
    NodeId end = kNoNode;
    std::int32_t highest_to_go = 0;
    std::int32_t lowest_to_go = 0;
    NodeId lowest = kNoNode;
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
    PathTotals to_end;
    std::int64_t lowest_score;
    NodeId best;
    PathTotals to_best;
  };

  static constexpr std::uint32_t kNoContinuation = std::numeric_limits<std::uint32_t>::max();

  /// How a root goes on.
  struct Continuation {
    NodeId node;
    PathTotals gain;
    RootStretch to_next_root;
    RootStretch jump;
    std::size_t jumped_roots;
  };

  NodeId append(const PathNode& node, const Link& link, const Counts& counts);
  PathTotals to_root(NodeId id) const;
  void append(Stretch& stretch, const Stretch& more) const;
  RootStretch stretch_to_next_root(NodeId continuation, const PathTotals& gain) const;
  void append(RootStretch& stretch, const RootStretch& more) const;
  const Continuation* continuation_of(NodeId root) const;

  /// Whether a score is better than one earlier on the same way.
  bool is_better(std::int64_t score, std::int64_t earlier) const {
    return prefer_later_ ? score >= earlier : score > earlier;
  }

  bool prefer_later_;
  std::vector<Link> links_;
  std::vector<PathNode> nodes_;
  std::vector<Counts> counts_;
  std::vector<Continuation> continuations_;
  std::vector<std::uint32_t> continuation_ids_;  ///< Of each node; only roots have one.
  NodeTable ids_;
};

}  // namespace vorlan
