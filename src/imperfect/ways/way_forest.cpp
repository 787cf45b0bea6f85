// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/ways/way_forest.h"

#include <algorithm>
#include <cassert>

namespace vorlan {

NodeId WayForest::add_node(const WayNode& node, const Link& link, const Counts& counts) {
  const auto id = static_cast<NodeId>(nodes_.size());
  nodes_.push_back(node);
  links_.push_back(link);
  counts_.push_back(counts);
  continuation_ids_.push_back(kNoContinuation);
  if (!node.is_terminal && node.phase != kUnknownPhase) ids_.insert(node.place, node.phase, id);
  return id;
}

NodeId WayForest::add_root(std::uint32_t place, std::uint32_t phase, bool is_terminal) {
  Link link;
  link.jump.end = link.whole_way.end = static_cast<NodeId>(nodes_.size());
  return add_node({place, phase, Move::kNone, is_terminal}, link, {});
}

// Adds to `stretch` what comes behind it. A root has nothing behind it.
void WayForest::lengthen(Stretch& stretch, const Stretch& more) const {
  stretch.end = more.end;
  if (more.peak == kNoNode) return;
  stretch.dip_to_go = std::max(stretch.dip_to_go, more.dip_to_go);
  // What is to go is taken from one and the same score at the root.
  if (!is_better(-more.peak_to_go, -stretch.peak_to_go)) return;
  stretch.peak_to_go = more.peak_to_go;
  stretch.peak = more.peak;
}

NodeId WayForest::add(std::uint32_t place, std::uint32_t phase, Move move, NodeId next,
                      const AlignmentTotals& gain) {
  assert(next < nodes_.size());
  Counts counts = counts_[next];
  ++counts.depth;
  counts.mismatches += gain.mismatches;
  counts.insertions += gain.insertions;
  counts.deletions += gain.deletions;
  counts.num_Ns += gain.num_Ns;

  const Link& parent = links_[next];
  const Stretch one_step{next, parent.to_go, parent.to_go, next};
  Link link{next, parent.to_go + static_cast<std::int32_t>(gain.score), one_step, one_step};
  lengthen(link.whole_way, parent.whole_way);
  // Two jumps of equal length in a row become one.
  const Link& jumped = links_[parent.jump.end];
  const std::uint32_t first_length = counts_[next].depth - counts_[parent.jump.end].depth;
  const std::uint32_t second_length =
      counts_[parent.jump.end].depth - counts_[jumped.jump.end].depth;
  if (first_length == second_length) {
    lengthen(link.jump, parent.jump);
    lengthen(link.jump, jumped.jump);
  }
  return add_node({place, phase, move, false}, link, counts);
}

void WayForest::continue_root(NodeId root, Move move, NodeId continuation,
                              const AlignmentTotals& gain) {
  assert(links_[root].next == kNoNode && continuation_of(root) == nullptr);
  nodes_[root].move = move;
  const RootStretch one_root = stretch_to_next_root(continuation, gain);
  Continuation to_add{continuation, gain, one_root, one_root, 1};
  // As for nodes: two jumps of equal length in a row become one.
  if (const Continuation* first = continuation_of(one_root.end)) {
    const Continuation* second = continuation_of(first->jump.end);
    if (second != nullptr && first->jumped_roots == second->jumped_roots) {
      lengthen(to_add.jump, first->jump);
      lengthen(to_add.jump, second->jump);
      to_add.jumped_roots += 2 * first->jumped_roots;
    }
  }
  continuation_ids_[root] = static_cast<std::uint32_t>(continuations_.size());
  continuations_.push_back(to_add);
}

WayForest::RootStretch WayForest::stretch_to_next_root(NodeId continuation,
                                                       const AlignmentTotals& gain) const {
  const Link& link = links_[continuation];
  Stretch stretch{continuation, link.to_go, link.to_go, continuation};
  lengthen(stretch, link.whole_way);
  const AlignmentTotals to_end = gain + to_root(continuation);
  return {stretch.end, to_end, to_end.score - stretch.dip_to_go, stretch.peak,
          to_end - to_root(stretch.peak)};
}

void WayForest::lengthen(RootStretch& stretch, const RootStretch& more) const {
  stretch.dip = std::min(stretch.dip, stretch.to_end.score + more.dip);
  const AlignmentTotals to_peak = stretch.to_end + more.to_peak;
  if (is_better(to_peak.score, stretch.to_peak.score)) {
    stretch.peak = more.peak;
    stretch.to_peak = to_peak;
  }
  stretch.end = more.end;
  stretch.to_end = stretch.to_end + more.to_end;
}

const WayForest::Continuation* WayForest::continuation_of(NodeId root) const {
  const std::uint32_t id = continuation_ids_[root];
  return id == kNoContinuation ? nullptr : &continuations_[id];
}

NodeId WayForest::after(NodeId id) const {
  if (links_[id].next != kNoNode) return links_[id].next;
  const Continuation* continuation = continuation_of(id);
  return continuation == nullptr ? kNoNode : continuation->node;
}

AlignmentTotals WayForest::to_root(NodeId id) const {
  const Counts& counts = counts_[id];
  return {links_[id].to_go, counts.mismatches, counts.insertions, counts.deletions, counts.num_Ns};
}

WayEnd WayForest::follow(NodeId first, const AlignmentTotals& totals, std::int64_t lowest_score,
                         std::int64_t best_score) const {
  Journey journey{first, totals + to_root(first), lowest_score, best_score};
  while (links_[journey.id].next != kNoNode ? go_on_in_tree(journey) : go_on_behind_root(journey)) {
  }
  return {journey.id, journey.at_root - to_root(journey.id), journey.best_node,
          journey.best_totals};
}

// Goes on by a jump, if the score stays high, or by one node. Returns whether the journey goes on.
bool WayForest::go_on_in_tree(Journey& journey) const {
  const Link& link = links_[journey.id];
  if (!stays_high(journey, link.jump)) return arrive(journey, link.next);
  const Stretch& passed = stays_high(journey, link.whole_way) ? link.whole_way : link.jump;
  remember_if_best(journey, passed.peak);
  journey.id = passed.end;
  return true;
}

// The same from a root, over whole trees.
bool WayForest::go_on_behind_root(Journey& journey) const {
  const Continuation* continuation = continuation_of(journey.id);
  if (continuation == nullptr) return false;
  const auto stays_high_on = [&](const RootStretch& stretch) {
    return journey.at_root.score + stretch.dip >= journey.lowest_score;
  };
  if (!stays_high_on(continuation->to_next_root)) {
    journey.at_root = journey.at_root + continuation->gain + to_root(continuation->node);
    return arrive(journey, continuation->node);
  }
  const RootStretch& passed =
      stays_high_on(continuation->jump) ? continuation->jump : continuation->to_next_root;
  const AlignmentTotals at_peak = journey.at_root + passed.to_peak;
  if (is_better(at_peak.score, journey.best_score)) {
    journey.best_score = at_peak.score;
    journey.best_node = passed.peak;
    journey.best_totals = at_peak;
  }
  journey.id = passed.end;
  journey.at_root = journey.at_root + passed.to_end;
  return true;
}

// Arrives at the next node. Returns whether the score is still high there.
bool WayForest::arrive(Journey& journey, NodeId id) const {
  journey.id = id;
  remember_if_best(journey, id);
  return journey.at_root.score - links_[id].to_go >= journey.lowest_score;
}

void WayForest::remember_if_best(Journey& journey, NodeId id) const {
  const std::int64_t score = journey.at_root.score - links_[id].to_go;
  if (!is_better(score, journey.best_score)) return;
  journey.best_score = score;
  journey.best_node = id;
  journey.best_totals = journey.at_root - to_root(id);
}

void WayForest::clear() {
  links_.clear();
  nodes_.clear();
  counts_.clear();
  continuations_.clear();
  continuation_ids_.clear();
  ids_.clear();
}

}  // namespace vorlan
