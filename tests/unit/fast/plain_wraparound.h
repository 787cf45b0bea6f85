// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The wraparound bound by its definition: one candidate or one group of neighbours, one cell at a
// time, every row whole.

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
  /// `unit` holds the bases in the order in which they are due, of the start that is met first.
  /// After it, `turns` more starts are met, each a residue further on; `ahead` holds the residues
  /// in the order in which they are met.
  PlainWraparound(const reference::Settings& settings, std::string_view unit,
                  std::string_view ahead, std::size_t turns)
      : settings_(settings), ahead_(ahead), turns_(turns) {
    for (const char base : unit) unit_.emplace_back(1, base);
    for (std::size_t i = 0; i < turns; ++i) {
      if (unit_[i].front() != ahead[i]) unit_[i] += ahead[i];
    }
  }

  /// All starts begin with the score `first_score`.
  std::int64_t best_score(std::int64_t first_score) const {
    Row row(unit_.size());
    row[0] = first_score;
    std::int64_t best = first_score;
    for (std::size_t i = 0; i < ahead_.size(); ++i) {
      if (stops_at(i)) break;
      delete_bases(row, ahead_[i]);
      row = row_behind(row, ahead_[i]);
      if (i < turns_) row[i + 1] = std::max(row[i + 1].value_or(first_score), first_score);
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
  bool stops_at(std::size_t i) const {
    if (!is_bridged(ahead_[i]) || (i > 0 && ahead_[i - 1] == 'N')) return false;
    const std::size_t end = std::min(ahead_.find_first_not_of('N', i), ahead_.size());
    return end - i > static_cast<std::size_t>(settings_.Ns_allowed_in_a_row);
  }

  bool matches(std::size_t base, char residue) const {
    return unit_[base].find(residue) != std::string::npos;
  }

  /// From all bases that may be due.
  bool differs(std::size_t base, char residue) const {
    return !matches(base, residue) && !is_bridged(residue);
  }

  /// From one of them at least.
  bool may_differ(std::size_t base, char residue) const {
    return unit_[base] != std::string(1, residue) && !is_bridged(residue);
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
        if (!row[base] || !may_differ(base, residue)) continue;
        add_edited(row[next(base)], *row[base] + settings_.indel_score);
      }
    }
  }

  Row row_behind(const Row& row, char residue) const {
    Row behind(row.size());
    for (std::size_t base = 0; base < row.size(); ++base) {
      if (!row[base]) continue;
      if (may_differ(base, residue)) {
        add_edited(behind[base], *row[base] + settings_.indel_score);
      }
      if (differs(base, residue)) {
        add_edited(behind[next(base)], *row[base] + settings_.mismatch_score);
      } else {
        const std::int64_t score = *row[base] + (matches(base, residue) ? 1 : 0);
        auto& cell = behind[next(base)];
        cell = std::max(cell.value_or(score), score);
      }
    }
    return behind;
  }

  const reference::Settings& settings_;
  std::vector<std::string> unit_;  ///< All bases that may be due, for each place in turn.
  std::string_view ahead_;
  std::size_t turns_;
};

/// The bound of the starts from `first` to `last`: the best score forward of all, and backward from
/// there.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings, std::size_t first,
                                           std::size_t last, std::size_t unit_length) {
  const std::size_t turns = last - first;
  const std::int64_t forward = PlainWraparound(settings, residues.substr(first, unit_length),
                                               residues.substr(first + unit_length), turns)
                                   .best_score(0);
  std::string unit(residues.substr(last, unit_length));
  std::reverse(unit.begin(), unit.end());
  std::string before(residues.substr(0, last));
  std::reverse(before.begin(), before.end());
  return PlainWraparound(settings, unit, before, turns).best_score(forward);
}

/// The bound of one candidate.
inline std::int64_t plain_wraparound_bound(std::string_view residues,
                                           const reference::Settings& settings, std::size_t start,
                                           std::size_t unit_length) {
  return plain_wraparound_bound(residues, settings, start, start, unit_length);
}

}  // namespace vorlan
