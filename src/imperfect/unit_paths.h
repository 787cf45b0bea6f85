// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <vector>

#include "imperfect/alignment_settings.h"
#include "imperfect/path_forest.h"
#include "imperfect/unit_phases.h"

namespace vorlan {

/// A stretch of a stored way: the decisions of the nodes from `from` up to but not including `to`.
struct PathSegment {
  NodeId from;
  NodeId to;
};

/// What an extension of a repeat in both directions passed over.
struct PassedOver {
  std::vector<PathSegment> forward;
  std::vector<PathSegment> backward;
};

/// What the extensions in one sequence have found out. Unit lengths share it: ACAC reads like AC.
class UnitPaths {
 public:
  /// `seq_begin` is where places are counted from.
  UnitPaths(const char* seq_begin, const AlignmentSettings& settings)
      : seq_begin_(seq_begin),
        forward_(settings.prefer_longer_repeat != 0),
        backward_(settings.prefer_longer_repeat != 0) {}

  /// Whether decisions can be shared at all: a limit of the score reduction makes them depend on
  /// the best score, and a look-ahead of unlimited depth reaches every floor.
  static bool can_share(const AlignmentSettings& settings) {
    return settings.has_constant_threshold() && settings.deepest_level() > 0;
  }

  /// Ways are followed and stored only while the score is at least this: then no edit that the
  /// look-ahead may try, at any level, comes down to the floor.
  static std::int64_t lowest_score(std::ptrdiff_t unit_length, const AlignmentSettings& settings) {
    const std::int64_t floor = -unit_length - settings.prefer_longer_repeat;
    const std::int64_t worst_edit = std::min(settings.mismatch_score, settings.indel_score);
    return std::max(floor + 1 - worst_edit * settings.maximum_recursion_depth, kWorthStoring);
  }

  /// More nodes than this, about 300 MB, are better forgotten.
  static constexpr std::size_t kMostNodes = 2'500'000;

  std::size_t stored_nodes() const { return forward_.size() + backward_.size(); }

  /// Forgets all ways. Node names are without meaning afterwards.
  void forget() {
    forward_.clear();
    backward_.clear();
    phases_ = UnitPhases();
  }

  std::uint32_t offset_of(const char* place) const {
    return static_cast<std::uint32_t>(place - seq_begin_);
  }
  const char* place_of(const PathNode& node) const { return seq_begin_ + node.place; }

  UnitPhases& phases() { return phases_; }

  PathForest& forest(Forward) { return forward_; }
  PathForest& forest(Backward) { return backward_; }
  const PathForest& forest(Forward) const { return forward_; }
  const PathForest& forest(Backward) const { return backward_; }

 private:
  /// Extensions that never get this far are over soon, whatever the floor; storing their ways would
  /// cost more than it saves.
  static constexpr std::int64_t kWorthStoring = 10;

  const char* seq_begin_;
  UnitPhases phases_;
  PathForest forward_;
  PathForest backward_;
};

}  // namespace vorlan
