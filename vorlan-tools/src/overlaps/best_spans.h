// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <vector>

namespace vorlan_tools {

/// A stretch of a sequence that a reading explains; from 0, the end excluded.
struct ScoredSpan {
  std::int64_t start = 0;
  std::int64_t end = 0;
  std::int64_t score = 0;
  std::int64_t unit_length = 0;
};

/// Whether two spans lie less than `gap` bases apart; with a gap of 0, whether they overlap.
inline bool are_near(const ScoredSpan& a, const ScoredSpan& b, std::int64_t gap) {
  return b.start < a.end + gap && a.start < b.end + gap;
}

/// Whether `a` is the better reading: by score, then by length, then by the shorter unit, then by
/// the earlier start. A total order but for spans that are equal in all of these.
bool is_better(const ScoredSpan& a, const ScoredSpan& b);

/// Chooses spans no two of which are near: the best of all, then the best of those that are left
/// and not near to it, and so on. Returns whether each is chosen. Every span that is not chosen is
/// near to a better one that is.
///
///     score 66   ==========                chosen
///     score 40          ========           near to the one above
///     score 12                 ====        chosen: only the dropped one is near
///
/// Time n log n.
std::vector<bool> choose_best(const std::vector<ScoredSpan>& spans, std::int64_t gap);

}  // namespace vorlan_tools
