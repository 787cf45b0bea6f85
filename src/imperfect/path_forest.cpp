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
  continuation_ids_.push_back(kNoContinuation);
  if (!node.is_terminal) ids_.insert(node.place, node.phase, id);
  return id;
}

NodeId PathForest::add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal) {
  Link link;
  link.jump.end = link.whole_way.end = static_cast<NodeId>(nodes_.size());
  return append({place, phase, Move::kNone, is_terminal}, link, {});
}

// Makes `stretch` longer by what comes behind it. A root has nothing behind it.
void PathForest::append(Stretch& stretch, const Stretch& more) const {
  stretch.end = more.end;
  if (more.lowest == kNoNode) return;
  stretch.highest_to_go = std::max(stretch.highest_to_go, more.highest_to_go);
  if (!is_better(-more.lowest_to_go, -stretch.lowest_to_go)) return;
  stretch.lowest_to_go = more.lowest_to_go;
  stretch.lowest = more.lowest;
}

NodeId PathForest::add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
                       const PathTotals& gain) {
  Counts counts = counts_[next];
  ++counts.depth;
  counts.mismatches += gain.mismatches;
  counts.insertions += gain.insertions;
  counts.deletions += gain.deletions;
  counts.num_Ns += gain.num_Ns;

  const Link& parent = links_[next];
  const Stretch one_step{next, parent.to_go, parent.to_go, next};
  Link link{next, parent.to_go + static_cast<std::int32_t>(gain.score), one_step, one_step};
  append(link.whole_way, parent.whole_way);
  // Two jumps of equal length in a row become one.
  const Link& jumped = links_[parent.jump.end];
  const std::uint32_t first_length = counts_[next].depth - counts_[parent.jump.end].depth;
  const std::uint32_t second_length =
      counts_[parent.jump.end].depth - counts_[jumped.jump.end].depth;
  if (first_length == second_length) {
    append(link.jump, parent.jump);
    append(link.jump, jumped.jump);
  }
  return append({place, phase, move, false}, link, counts);
}

void PathForest::continue_root(NodeId root, Move move, NodeId continuation,
                               const PathTotals& gain) {
  nodes_[root].move = move;
  const RootStretch one_root = stretch_to_next_root(continuation, gain);
  Continuation to_add{continuation, gain, one_root, one_root, 1};
  // As for nodes: two jumps of equal length in a row become one.
  if (const Continuation* first = continuation_of(one_root.end)) {
    const Continuation* second = continuation_of(first->jump.end);
    if (second != nullptr && first->jumped_roots == second->jumped_roots) {
      append(to_add.jump, first->jump);
      append(to_add.jump, second->jump);
      to_add.jumped_roots += 2 * first->jumped_roots;
    }
  }
  continuation_ids_[root] = static_cast<std::uint32_t>(continuations_.size());
  continuations_.push_back(to_add);
}

PathForest::RootStretch PathForest::stretch_to_next_root(NodeId continuation,
                                                         const PathTotals& gain) const {
  const Link& link = links_[continuation];
  Stretch stretch{continuation, link.to_go, link.to_go, continuation};
  append(stretch, link.whole_way);
  const PathTotals to_end = gain + to_root(continuation);
  return {stretch.end, to_end, to_end.score - stretch.highest_to_go, stretch.lowest,
          to_end - to_root(stretch.lowest)};
}

void PathForest::append(RootStretch& stretch, const RootStretch& more) const {
  stretch.lowest_score = std::min(stretch.lowest_score, stretch.to_end.score + more.lowest_score);
  const PathTotals to_best = stretch.to_end + more.to_best;
  if (is_better(to_best.score, stretch.to_best.score)) {
    stretch.best = more.best;
    stretch.to_best = to_best;
  }
  stretch.end = more.end;
  stretch.to_end = stretch.to_end + more.to_end;
}

const PathForest::Continuation* PathForest::continuation_of(NodeId root) const {
  const std::uint32_t id = continuation_ids_[root];
  return id == kNoContinuation ? nullptr : &continuations_[id];
}

NodeId PathForest::after(NodeId id) const {
  if (links_[id].next != kNoNode) return links_[id].next;
  const Continuation* continuation = continuation_of(id);
  return continuation == nullptr ? kNoNode : continuation->node;
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
  const auto is_best = [&](std::int64_t score) {
    if (!is_better(score, best_score)) return false;
    best_score = score;
    return true;
  };
  const auto consider = [&](NodeId id) {
    if (!is_best(whole.score - links_[id].to_go)) return;
    end.best_node = id;
    end.best_totals = whole - to_root(id);
  };
  NodeId id = first;
  for (;;) {
    const Link& link = links_[id];
    const auto stays_high = [&](const Stretch& stretch) {
      return link.next != kNoNode && whole.score - stretch.highest_to_go >= lowest_score;
    };
    if (stays_high(link.jump)) {
      const Stretch& passed = stays_high(link.whole_way) ? link.whole_way : link.jump;
      consider(passed.lowest);
      id = passed.end;
      continue;
    }
    if (link.next != kNoNode) {
      id = link.next;
    } else {
      const Continuation* continuation = continuation_of(id);
      if (continuation == nullptr) break;
      if (whole.score + continuation->to_next_root.lowest_score >= lowest_score) {
        const bool jumps = whole.score + continuation->jump.lowest_score >= lowest_score;
        const RootStretch& passed = jumps ? continuation->jump : continuation->to_next_root;
        if (is_best(whole.score + passed.to_best.score)) {
          end.best_node = passed.best;
          end.best_totals = whole + passed.to_best;
        }
        id = passed.end;
        whole = whole + passed.to_end;
        continue;
      }
      id = continuation->node;
      whole = whole + continuation->gain + to_root(id);
    }
    consider(id);
    if (whole.score - links_[id].to_go < lowest_score) break;
  }
  end.node = id;
  end.totals = whole - to_root(id);
  return end;
}

void PathForest::clear() {
  links_.clear();
  nodes_.clear();
  counts_.clear();
  continuations_.clear();
  continuation_ids_.clear();
  ids_.clear();
}

}  // namespace vorlan
