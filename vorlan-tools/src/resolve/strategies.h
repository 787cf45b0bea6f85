// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <vector>

#include "overlaps/best_spans.h"

namespace vorlan_tools {

/// How readings that overlap become stretches that do not.
///
///     readings   a  ==========           score 8
///                b        ==========     score 7
///                c                ====   score 3
///
///     kBest         aaaaaaaaaa    cccc   the best, then the best of those that overlap none chosen
///     kUnion        aaaaaaaaaaaaaaaaaa   one stretch, named after the best reading in it
///     kTile         aaaaaaaaaabbbbbbcc   each base to the best reading that covers it
enum class Strategy { kBest, kUnion, kTile };

/// A stretch of the result; from 0, the end excluded.
struct Stretch {
  std::int64_t start = 0;
  std::int64_t end = 0;
  std::size_t reading = 0;  ///< index of the reading that the stretch shows
};

/// Resolves readings, given in the order of their starts, into stretches in the same order, no two
/// of which overlap. kBest covers no base that no chosen reading covers; kTile covers exactly the
/// bases that any reading covers; kUnion these and what lies between stretches that are at most
/// `max_gap` bases apart. Time n log n.
std::vector<Stretch> resolve(const std::vector<ScoredSpan>& readings, Strategy strategy,
                             std::int64_t max_gap);

/// The stretch that holds most bases of a reading, the first of several; `stretches.size()` if none
/// holds any. Sets `shown` to the bases of all stretches that show the reading.
std::size_t stretch_of(const std::vector<ScoredSpan>& readings, std::size_t reading,
                       const std::vector<Stretch>& stretches, std::int64_t& shown);

}  // namespace vorlan_tools
