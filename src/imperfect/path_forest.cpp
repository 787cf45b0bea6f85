// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/path_forest.h"

#include <algorithm>
#include <utility>

namespace vorlan {

NodeId NodeTable::find(std::uint32_t place, std::uint32_t phase) const {
  if (entries_.empty()) return kNoNode;
  for (std::size_t slot = slot_of(place, phase);; slot = (slot + 1) & (entries_.size() - 1)) {
    const Entry& entry = entries_[slot];
    if (entry.id == kNoNode || (entry.place == place && entry.phase == phase)) return entry.id;
  }
}

void NodeTable::insert(std::uint32_t place, std::uint32_t phase, NodeId id) {
  if (2 * (used_ + 1) > entries_.size()) grow();
  place_entry({place, phase, id});
  ++used_;
}

void NodeTable::clear() {
  entries_.clear();
  used_ = 0;
}

void NodeTable::place_entry(const Entry& entry) {
  std::size_t slot = slot_of(entry.place, entry.phase);
  while (entries_[slot].id != kNoNode) slot = (slot + 1) & (entries_.size() - 1);
  entries_[slot] = entry;
}

void NodeTable::grow() {
  constexpr std::size_t kFirstSize = 1024;
  std::vector<Entry> old(std::max(kFirstSize, 2 * entries_.size()));
  std::swap(old, entries_);
  for (const Entry& entry : old) {
    if (entry.id != kNoNode) place_entry(entry);
  }
}

NodeId PathForest::append(const PathNode& node, const Link& link, const Counts& counts) {
  const auto id = static_cast<NodeId>(nodes_.size());
  nodes_.push_back(node);
  links_.push_back(link);
  counts_.push_back(counts);
  if (!node.is_terminal) ids_.insert(node.place, node.phase, id);
  return id;
}

NodeId PathForest::add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal) {
  Link link;
  link.jump = static_cast<NodeId>(nodes_.size());
  return append({place, phase, Move::kNone, is_terminal}, link, {});
}

NodeId PathForest::add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
                       const PathTotals& gain) {
  const Link& parent = links_[next];
  Counts counts = counts_[next];
  ++counts.depth;
  counts.mismatches += gain.mismatches;
  counts.insertions += gain.insertions;
  counts.deletions += gain.deletions;
  counts.num_Ns += gain.num_Ns;

  Link link;
  link.next = next;
  link.jump = next;
  link.to_go = parent.to_go + static_cast<std::int32_t>(gain.score);
  link.highest_to_go = link.lowest_to_go = parent.to_go;
  link.lowest = next;
  // Two jumps of equal length in a row become one.
  const Link& jumped = links_[parent.jump];
  const std::uint32_t first_length = counts_[next].depth - counts_[parent.jump].depth;
  const std::uint32_t second_length = counts_[parent.jump].depth - counts_[jumped.jump].depth;
  if (first_length == second_length) {
    link.jump = jumped.jump;
    for (const Link* stretch : {&parent, &jumped}) {
      if (stretch->next == kNoNode) continue;  // a root has nothing behind it
      link.highest_to_go = std::max(link.highest_to_go, stretch->highest_to_go);
      if (!is_better(stretch->lowest_to_go, link.lowest_to_go)) continue;
      link.lowest_to_go = stretch->lowest_to_go;
      link.lowest = stretch->lowest;
    }
  }
  return append({place, phase, move, false}, link, counts);
}

void PathForest::continue_root(NodeId root, Move move, NodeId continuation,
                               const PathTotals& gain) {
  nodes_[root].move = move;
  continuations_.insert_or_assign(root, Continuation{continuation, gain});
}

NodeId PathForest::after(NodeId id) const {
  if (links_[id].next != kNoNode) return links_[id].next;
  const auto found = continuations_.find(id);
  return found == continuations_.end() ? kNoNode : found->second.node;
}

PathTotals PathForest::to_root(NodeId id) const {
  const Counts& counts = counts_[id];
  return {links_[id].to_go, counts.mismatches, counts.insertions, counts.deletions, counts.num_Ns};
}

PathEnd PathForest::follow(NodeId first, const PathTotals& totals, std::int64_t lowest_score,
                           std::int64_t best_score) const {
  PathEnd end{.node = first, .totals = totals};
  // What has been collected and what is still to come is the same all along a tree.
  PathTotals whole = totals + to_root(first);
  PathTotals whole_at_best;
  const auto consider = [&](NodeId id) {
    const std::int64_t score = whole.score - links_[id].to_go;
    if (prefer_later_ ? score < best_score : score <= best_score) return;
    best_score = score;
    end.best_node = id;
    whole_at_best = whole;
  };
  NodeId id = first;
  for (;;) {
    const Link& link = links_[id];
    if (link.next != kNoNode && whole.score - link.highest_to_go >= lowest_score) {
      consider(link.lowest);
      id = link.jump;
      continue;
    }
    if (link.next != kNoNode) {
      id = link.next;
    } else {
      const auto continuation = continuations_.find(id);
      if (continuation == continuations_.end()) break;
      id = continuation->second.node;
      whole = whole + continuation->second.gain + to_root(id);
    }
    consider(id);
    if (whole.score - links_[id].to_go < lowest_score) break;
  }
  end.node = id;
  end.totals = whole - to_root(id);
  if (end.best_node != kNoNode) end.best_totals = whole_at_best - to_root(end.best_node);
  return end;
}

void PathForest::clear() {
  links_.clear();
  nodes_.clear();
  counts_.clear();
  continuations_.clear();
  ids_.clear();
}

}  // namespace vorlan
