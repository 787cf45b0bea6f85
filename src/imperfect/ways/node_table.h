// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace vorlan {

/// A node is named by its index, of which there are far fewer than 32 bits hold: stored ways are
/// forgotten before.
using NodeId = std::uint32_t;
inline constexpr NodeId kNoNode = std::numeric_limits<NodeId>::max();

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

}  // namespace vorlan
