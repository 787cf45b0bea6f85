// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/shown_repeats.h"

#include <algorithm>
#include <iterator>

namespace vorlan_tools {

ShownRepeat shown(const Repeat& repeat, const std::string& sequence, std::size_t columns) {
  ShownRepeat result{sequence,
                     repeat.start,
                     repeat.end,
                     repeat.unit_length,
                     repeat.unit,
                     repeat.bases,
                     repeat.copies,
                     repeat.perfection,
                     repeat.score,
                     0,
                     {}};
  if (repeat.has_alignment()) {
    result.columns = static_cast<std::int64_t>(repeat.sequence_line.size());
    result.rows = {repeat.sequence_line.substr(0, columns), repeat.match_line.substr(0, columns),
                   repeat.unit_line.substr(0, columns)};
  } else if (!repeat.residues.empty()) {
    result.columns = static_cast<std::int64_t>(repeat.residues.size());
    result.rows = {repeat.residues.substr(0, columns)};
  }
  return result;
}

/// Where a candidate belongs: in front of the first that it beats.
template <typename Candidate>
std::vector<ShownRepeat>::iterator ShownRepeats::place_of(const Candidate& candidate) {
  const auto beats = [this](const Candidate& a, const ShownRepeat& b) {
    if (rank_ == Rank::kMostDiverged && a.perfection != b.perfection) {
      return a.perfection < b.perfection;
    }
    return a.bases > b.bases;
  };
  return std::upper_bound(list_.begin(), list_.end(), candidate, beats);
}

void ShownRepeats::offer(const Repeat& repeat, const std::string& sequence) {
  const auto place = place_of(repeat);
  if (place == list_.end() && list_.size() == size_) return;
  list_.insert(place, shown(repeat, sequence, columns_));
  if (list_.size() > size_) list_.pop_back();
}

void ShownRepeats::merge(ShownRepeats&& other) {
  for (ShownRepeat& repeat : other.list_) {
    const auto place = place_of(repeat);
    if (place == list_.end() && list_.size() == size_) continue;
    list_.insert(place, std::move(repeat));
    if (list_.size() > size_) list_.pop_back();
  }
}

}  // namespace vorlan_tools
