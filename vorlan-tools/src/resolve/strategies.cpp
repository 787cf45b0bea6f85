// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "resolve/strategies.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace vorlan_tools {

namespace {

std::vector<Stretch> best_readings(const std::vector<ScoredSpan>& readings) {
  const std::vector<bool> is_chosen = choose_best(readings, 0);
  std::vector<Stretch> stretches;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (is_chosen[i]) stretches.push_back({readings[i].start, readings[i].end, i});
  }
  return stretches;
}

std::vector<Stretch> merged_readings(const std::vector<ScoredSpan>& readings,
                                     std::int64_t max_gap) {
  std::vector<Stretch> stretches;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (stretches.empty() || readings[i].start > stretches.back().end + max_gap) {
      stretches.push_back({readings[i].start, readings[i].end, i});
      continue;
    }
    Stretch& last = stretches.back();
    last.end = std::max(last.end, readings[i].end);
    if (is_better(readings[i], readings[last.reading])) last.reading = i;
  }
  return stretches;
}

/// The place of each reading among all, the best first.
std::vector<std::size_t> ranks_of(const std::vector<ScoredSpan>& readings) {
  std::vector<std::size_t> order(readings.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return is_better(readings[a], readings[b]);
  });
  std::vector<std::size_t> ranks(readings.size());
  for (std::size_t rank = 0; rank < order.size(); ++rank) ranks[order[rank]] = rank;
  return ranks;
}

/// A reading begins or ends; what ends at a place does so before anything begins there.
struct Event {
  std::int64_t place;
  bool is_begin;
  std::size_t reading;
};

std::vector<Event> events_of(const std::vector<ScoredSpan>& readings) {
  std::vector<Event> events;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    events.push_back({readings[i].start, true, i});
    events.push_back({readings[i].end, false, i});
  }
  std::stable_sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
    return a.place != b.place ? a.place < b.place : a.is_begin < b.is_begin;
  });
  return events;
}

void add_tile(std::vector<Stretch>& stretches, const Stretch& tile) {
  const bool goes_on = !stretches.empty() && stretches.back().end == tile.start &&
                       stretches.back().reading == tile.reading;
  if (goes_on) {
    stretches.back().end = tile.end;
  } else if (tile.start < tile.end) {
    stretches.push_back(tile);
  }
}

/// From event to event, the best of the readings that cover the bases between is known.
std::vector<Stretch> tiles(const std::vector<ScoredSpan>& readings) {
  const std::vector<std::size_t> ranks = ranks_of(readings);
  std::set<std::pair<std::size_t, std::size_t>> covering;  // rank and reading
  std::vector<Stretch> stretches;
  std::int64_t place = 0;
  for (const Event& event : events_of(readings)) {
    if (!covering.empty()) add_tile(stretches, {place, event.place, covering.begin()->second});
    place = event.place;
    if (event.is_begin) {
      covering.emplace(ranks[event.reading], event.reading);
    } else {
      covering.erase({ranks[event.reading], event.reading});
    }
  }
  return stretches;
}

}  // namespace

std::vector<Stretch> resolve(const std::vector<ScoredSpan>& readings, Strategy strategy,
                             std::int64_t max_gap) {
  switch (strategy) {
    case Strategy::kUnion:
      return merged_readings(readings, max_gap);
    case Strategy::kTile:
      return tiles(readings);
    default:
      return best_readings(readings);
  }
}

std::size_t stretch_of(const std::vector<ScoredSpan>& readings, std::size_t reading,
                       const std::vector<Stretch>& stretches, std::int64_t& shown) {
  const ScoredSpan& span = readings[reading];
  shown = 0;
  std::int64_t most = 0;
  std::size_t found = stretches.size();
  const auto first =
      std::partition_point(stretches.begin(), stretches.end(),
                           [&](const Stretch& stretch) { return stretch.end <= span.start; });
  for (auto i = first; i != stretches.end() && i->start < span.end; ++i) {
    if (i->reading == reading) shown += i->end - i->start;
    const std::int64_t common = std::min(i->end, span.end) - std::max(i->start, span.start);
    if (common <= most) continue;
    most = common;
    found = static_cast<std::size_t>(i - stretches.begin());
  }
  return found;
}

}  // namespace vorlan_tools
