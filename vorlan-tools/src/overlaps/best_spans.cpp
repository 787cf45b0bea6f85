// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "overlaps/best_spans.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>

namespace vorlan_tools {

bool is_better(const ScoredSpan& a, const ScoredSpan& b) {
  const std::int64_t length_a = a.end - a.start;
  const std::int64_t length_b = b.end - b.start;
  return std::tie(b.score, length_b, a.unit_length, a.start) <
         std::tie(a.score, length_a, b.unit_length, b.start);
}

std::vector<bool> choose_best(const std::vector<ScoredSpan>& spans, std::int64_t gap) {
  std::vector<std::size_t> order(spans.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return is_better(spans[a], spans[b]); });
  std::vector<bool> is_chosen(spans.size());
  // No two of them are near, so that only the neighbours on both sides can be.
  std::map<std::int64_t, const ScoredSpan*> chosen;
  for (const std::size_t i : order) {
    const auto next = chosen.lower_bound(spans[i].start);
    if (next != chosen.end() && are_near(*next->second, spans[i], gap)) continue;
    if (next != chosen.begin() && are_near(*std::prev(next)->second, spans[i], gap)) continue;
    chosen.emplace_hint(next, spans[i].start, &spans[i]);
    is_chosen[i] = true;
  }
  return is_chosen;
}

}  // namespace vorlan_tools
