// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The wraparound bound by its definition: one candidate or one group of neighbours, one place
// of the strip at a time, every row whole.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plain_search.h"

namespace vorlan {

/// Candidates that are judged together: all starts from the first to the last, with all unit
/// lengths from the first to the last.
struct PlainGroup {
  std::size_t first_start;
  std::size_t last_start;
  std::size_t first_length;
  std::size_t last_length;
};

/// The best score of all paths of a group in one direction.
class PlainWraparound {
 public:
  /// Where a candidate begins its paths: how many residues are passed by then, and its place in the
  /// strip.
  struct Begin {
    std::size_t residues;
    std::size_t place;
  };

  /// `strip` holds the bases of all units in the order in which they are due, and `ahead` the
  /// residues in the order in which they are met.
  PlainWraparound(const reference::Settings& settings, const PlainGroup& group,
                  std::string_view strip, std::string_view ahead, std::vector<Begin> begins)
      : settings_(settings),
        group_(group),
        strip_(strip),
        ahead_(ahead),
        begins_(std::move(begins)) {}

  /// All candidates begin with the score `first_score`.
  std::int64_t best_score(std::int64_t first_score) const {
    Row row(strip_.size() + 1);
    std::int64_t best = first_score;
    for (std::size_t i = 0; i < ahead_.size() && !stops_at(i); ++i) {
      begin_paths(row, i, first_score);
      go_on_in_row(row, ahead_[i]);
      row = row_behind(row, ahead_[i]);
      for (const auto& score : row) best = std::max(best, score.value_or(best));
    }
    return best;
  }

 private:
  /// By the place in the strip, with its end; none where there is no path.
  using Row = std::vector<std::optional<std::int64_t>>;

  bool is_bridged(char residue) const {
    return residue == 'N' && settings_.Ns_allowed_in_a_row != 0 && !settings_.treat_Ns_as_missense;
  }

  /// Whether a run of N begins there that is too long.
  bool stops_at(std::size_t i) const {
    if (!is_bridged(ahead_[i]) || (i > 0 && ahead_[i - 1] == 'N')) return false;
    const std::size_t end = std::min(ahead_.find_first_not_of('N', i), ahead_.size());
    return end - i > static_cast<std::size_t>(settings_.Ns_allowed_in_a_row);
  }

  void begin_paths(Row& row, std::size_t residues, std::int64_t score) const {
    for (const Begin& begin : begins_) {
      if (begin.residues == residues) raise(row[begin.place], score);
    }
  }

  static void raise(std::optional<std::int64_t>& cell, std::int64_t score) {
    cell = std::max(cell.value_or(score), score);
  }

  /// An N in the strip belongs to no unit.
  bool matches(std::size_t place, char residue) const {
    return strip_[place] == residue && residue != 'N';
  }

  bool differs(std::size_t place, char residue) const {
    return !matches(place, residue) && !is_bridged(residue);
  }

  /// Adds a path, if its edit leaves it above the floor.
  void add_edited(std::optional<std::int64_t>& cell, std::int64_t score) const {
    const std::int64_t floor =
        -static_cast<std::int64_t>(group_.last_length) - settings_.prefer_longer_repeat;
    if (score > floor) raise(cell, score);
  }

  /// Round from the end of a unit, and over bases that are deleted.
  void go_on_in_row(Row& row, char residue) const {
    for (Row before; before != row;) {
      before = row;
      for (std::size_t place = 0; place < row.size(); ++place) {
        if (!row[place]) continue;
        for (std::size_t length = group_.first_length; length <= group_.last_length; ++length) {
          if (length <= place) raise(row[place - length], *row[place]);
        }
        if (place == strip_.size() || !differs(place, residue)) continue;
        add_edited(row[place + 1], *row[place] + settings_.indel_score);
      }
    }
  }

  Row row_behind(const Row& row, char residue) const {
    Row behind(row.size());
    for (std::size_t place = 0; place < strip_.size(); ++place) {
      if (!row[place]) continue;
      if (differs(place, residue)) {
        add_edited(behind[place], *row[place] + settings_.indel_score);
        add_edited(behind[place + 1], *row[place] + settings_.mismatch_score);
      } else {
        raise(behind[place + 1], *row[place] + (matches(place, residue) ? 1 : 0));
      }
    }
    return behind;
  }

  const reference::Settings& settings_;
  PlainGroup group_;
  std::string_view strip_;
  std::string_view ahead_;
  std::vector<Begin> begins_;
};

/// The bound of a group: the best score forward of all, and backward from there.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings,
                                           const PlainGroup& group) {
  std::vector<PlainWraparound::Begin> forward;
  std::vector<PlainWraparound::Begin> backward;
  for (std::size_t start = group.first_start; start <= group.last_start; ++start) {
    for (std::size_t length = group.first_length; length <= group.last_length; ++length) {
      const std::size_t from_first = start - group.first_start;
      const std::size_t to_last = group.last_start - start;
      forward.push_back({from_first + length - group.first_length, from_first});
      backward.push_back({to_last, to_last + group.last_length - length});
    }
  }
  const std::size_t end = group.last_start + group.last_length;
  std::string strip(residues.substr(group.first_start, end - group.first_start));
  const std::int64_t best =
      PlainWraparound(settings, group, strip,
                      residues.substr(group.first_start + group.first_length), std::move(forward))
          .best_score(0);
  std::reverse(strip.begin(), strip.end());
  std::string before(residues.substr(0, group.last_start));
  std::reverse(before.begin(), before.end());
  return PlainWraparound(settings, group, strip, before, std::move(backward)).best_score(best);
}

/// The bound of the starts from `first` to `last`, with one unit length.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings, std::size_t first,
                                           std::size_t last, std::size_t unit_length) {
  return plain_wraparound_bound(residues, settings, {first, last, unit_length, unit_length});
}

/// The bound of one candidate.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings, std::size_t start,
                                           std::size_t unit_length) {
  return plain_wraparound_bound(residues, settings, start, start, unit_length);
}

}  // namespace vorlan
