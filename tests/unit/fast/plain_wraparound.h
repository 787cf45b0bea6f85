// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The wraparound bound by its definition: one candidate, one cell at a time, every row whole.

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

/// The best score of all paths in one direction.
class PlainWraparound {
 public:
  /// `unit` holds the bases in the order in which they are due.
  PlainWraparound(const reference::Settings& settings, std::string unit)
      : settings_(settings), unit_(std::move(unit)) {}

  /// `ahead` holds the residues in the order in which they are met, `first_score` the score at
  /// first.
  std::int64_t best_score(std::string_view ahead, std::int64_t first_score) const {
    Row row(unit_.size());
    row[0] = first_score;
    std::int64_t best = first_score;
    for (std::size_t i = 0; i < ahead.size(); ++i) {
      if (stops_at(ahead, i)) break;
      delete_bases(row, ahead[i]);
      row = row_behind(row, ahead[i]);
      if (row == Row(unit_.size())) break;
      for (const auto& score : row) best = std::max(best, score.value_or(best));
    }
    return best;
  }

 private:
  /// By the base that is due; none where there is no path.
  using Row = std::vector<std::optional<std::int64_t>>;

  bool is_bridged(char residue) const {
    return residue == 'N' && settings_.Ns_allowed_in_a_row != 0 && !settings_.treat_Ns_as_missense;
  }

  /// Whether a run of N begins there that is too long.
  bool stops_at(std::string_view ahead, std::size_t i) const {
    if (!is_bridged(ahead[i]) || (i > 0 && ahead[i - 1] == 'N')) return false;
    const std::size_t end = std::min(ahead.find_first_not_of('N', i), ahead.size());
    return end - i > static_cast<std::size_t>(settings_.Ns_allowed_in_a_row);
  }

  bool differs(std::size_t base, char residue) const {
    return unit_[base] != residue && !is_bridged(residue);
  }

  std::size_t next(std::size_t base) const { return (base + 1) % unit_.size(); }

  /// Adds a path, if its edit leaves it above the floor.
  void add_edited(std::optional<std::int64_t>& cell, std::int64_t score) const {
    const std::int64_t floor =
        -static_cast<std::int64_t>(unit_.size()) - settings_.prefer_longer_repeat;
    if (score > floor) cell = std::max(cell.value_or(score), score);
  }

  void delete_bases(Row& row, char residue) const {
    for (Row before; before != row;) {
      before = row;
      for (std::size_t base = 0; base < row.size(); ++base) {
        if (!row[base] || !differs(base, residue)) continue;
        add_edited(row[next(base)], *row[base] + settings_.indel_score);
      }
    }
  }

  Row row_behind(const Row& row, char residue) const {
    Row behind(row.size());
    for (std::size_t base = 0; base < row.size(); ++base) {
      if (!row[base]) continue;
      if (differs(base, residue)) {
        add_edited(behind[next(base)], *row[base] + settings_.mismatch_score);
        add_edited(behind[base], *row[base] + settings_.indel_score);
      } else {
        const std::int64_t score = *row[base] + (is_bridged(residue) ? 0 : 1);
        auto& cell = behind[next(base)];
        cell = std::max(cell.value_or(score), score);
      }
    }
    return behind;
  }

  const reference::Settings& settings_;
  std::string unit_;
};

/// The bound of the candidate at `start`: the best score forward, and backward from there.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings, std::size_t start,
                                           std::size_t unit_length) {
  std::string unit(residues.substr(start, unit_length));
  const std::int64_t forward =
      PlainWraparound(settings, unit).best_score(residues.substr(start + unit_length), 0);
  std::reverse(unit.begin(), unit.end());
  std::string before(residues.substr(0, start));
  std::reverse(before.begin(), before.end());
  return PlainWraparound(settings, unit).best_score(before, forward);
}

}  // namespace vorlan
