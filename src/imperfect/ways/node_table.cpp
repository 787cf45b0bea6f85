// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/ways/node_table.h"

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

}  // namespace vorlan
