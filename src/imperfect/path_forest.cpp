// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/path_forest.h"

#include <algorithm>

namespace vorlan {

NodeId PathForest::find(std::uint32_t place, std::uint32_t phase) const {
  const auto found = ids_.find(key(place, phase));
  return found == ids_.end() ? kNoNode : found->second;
}

NodeId PathForest::add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal) {
  const auto id = static_cast<NodeId>(nodes_.size());
  PathNode node{.place = place, .phase = phase, .is_terminal = is_terminal, .jump = id};
  nodes_.push_back(node);
  if (!is_terminal) ids_.emplace(key(place, phase), id);
  return id;
}

NodeId PathForest::add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
                       const PathTotals& gain) {
  const auto id = static_cast<NodeId>(nodes_.size());
  const PathNode& parent = nodes_[next];
  PathNode node{.place = place,
                .phase = phase,
                .move = move,
                .depth = parent.depth + 1,
                .next = next,
                .to_root = gain + parent.to_root};
  node.highest_to_go = node.lowest_to_go = parent.to_root.score;
  node.lowest = next;
  // Two jumps of equal length in a row become one.
  const PathNode& jumped = nodes_[parent.jump];
  if (parent.depth - jumped.depth == jumped.depth - nodes_[jumped.jump].depth) {
    node.jump = jumped.jump;
    for (const PathNode* stretch : {&parent, &jumped}) {
      if (stretch->lowest == kNoNode) continue;  // a root has nothing behind it
      node.highest_to_go = std::max(node.highest_to_go, stretch->highest_to_go);
      if (is_better(stretch->lowest_to_go, node.lowest_to_go)) {
        node.lowest_to_go = stretch->lowest_to_go;
        node.lowest = stretch->lowest;
      }
    }
  } else {
    node.jump = next;
  }
  nodes_.push_back(node);
  ids_.emplace(key(place, phase), id);
  return id;
}

void PathForest::continue_root(NodeId root, Move move, NodeId continuation,
                               const PathTotals& gain) {
  nodes_[root].move = move;
  nodes_[root].continuation = continuation;
  nodes_[root].to_continuation = gain;
}

PathEnd PathForest::follow(NodeId first, const PathTotals& totals, std::int64_t lowest_score,
                           std::int64_t best_score) const {
  PathEnd end{.node = first, .totals = totals};
  // Score plus score to go is the same all along a tree.
  PathTotals whole = totals + nodes_[first].to_root;
  const auto consider = [&](NodeId id) {
    const std::int64_t score = whole.score - nodes_[id].to_root.score;
    if (prefer_later_ ? score < best_score : score <= best_score) return;
    best_score = score;
    end.best_node = id;
    end.best_totals = whole - nodes_[id].to_root;
  };
  NodeId id = first;
  for (;;) {
    const PathNode& node = nodes_[id];
    if (node.next == kNoNode) {
      if (node.continuation == kNoNode) break;
      whole = (whole + node.to_continuation) + nodes_[node.continuation].to_root;
      id = node.continuation;
      consider(id);
    } else if (whole.score - node.highest_to_go >= lowest_score) {
      consider(node.lowest);
      id = node.jump;
      continue;
    } else {
      id = node.next;
      consider(id);
    }
    if (whole.score - nodes_[id].to_root.score < lowest_score) break;
  }
  end.node = id;
  end.totals = whole - nodes_[id].to_root;
  return end;
}

}  // namespace vorlan
