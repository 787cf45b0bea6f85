// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "imperfect/self_alignment/self_alignment.h"

namespace vorlan {

/// The self-alignment cell by cell, row by row, without tiles, registers or masks. Far outside the
/// sequence all scores begin with 0.
class PlainSelfAlignment {
 public:
  PlainSelfAlignment(std::string_view residues, const FirstCopyBound& bound, unsigned first,
                     unsigned last, const MinScoreOf& min_score_of)
      : residues_(residues),
        bound_(bound),
        first_(first),
        last_(last),
        min_score_of_(min_score_of),
        band_(offsets_of(bound, first, last, min_score_of)),
        length_(static_cast<std::ptrdiff_t>(residues.size())) {
    const std::ptrdiff_t far = 2 * (band_.highest - band_.lowest);
    rows_to_the_right_.resize(residues.size() + 1);
    rows_to_the_left_.resize(residues.size() + 1);
    Row row(static_cast<std::size_t>(band_.highest - band_.lowest + 1), 0);
    for (std::ptrdiff_t x = length_ + far; x >= 0; --x) {
      row = next_to_the_right(x, row);
      if (x <= length_) rows_to_the_right_[static_cast<std::size_t>(x)] = row;
    }
    std::fill(row.begin(), row.end(), 0);
    for (std::ptrdiff_t x = -far; x <= length_; ++x) {
      row = next_to_the_left(x, row);
      if (x >= 0) rows_to_the_left_[static_cast<std::size_t>(x)] = row;
    }
  }

  bool survives(std::size_t start, unsigned unit_length) const {
    const auto lane = static_cast<std::size_t>(unit_length - band_.lowest);
    const int wanted = bound_.wanted(unit_length, min_score_of_(unit_length));
    return rows_to_the_right_[start][lane] >= wanted || rows_to_the_left_[start][lane] >= wanted;
  }

 private:
  using Row = std::vector<int>;

  int cap(std::ptrdiff_t offset) const {
    const unsigned unit_length = static_cast<unsigned>(
        std::clamp<std::ptrdiff_t>(offset, std::ptrdiff_t{first_}, std::ptrdiff_t{last_}));
    return bound_.cap(offset, unit_length, min_score_of_(unit_length));
  }

  int score(const Row& row, std::ptrdiff_t offset) const {
    if (offset < band_.lowest || offset > band_.highest) return cap(offset);
    return row[static_cast<std::size_t>(offset - band_.lowest)];
  }

  bool is_bridged_N(std::ptrdiff_t position) const {
    if (residues_[static_cast<std::size_t>(position)] != 'N') return false;
    std::ptrdiff_t begin = position;
    std::ptrdiff_t end = position;
    while (begin > 0 && residues_[static_cast<std::size_t>(begin - 1)] == 'N') --begin;
    while (end < length_ && residues_[static_cast<std::size_t>(end)] == 'N') ++end;
    return end - begin <= bound_.longest_N_run();
  }

  int pair(std::ptrdiff_t x, std::ptrdiff_t y) const {
    const auto is_outside = [this](std::ptrdiff_t i) { return i < 0 || i >= length_; };
    const AlignmentCosts costs = bound_.costs();
    if (is_outside(x) || is_outside(y)) return -costs.mismatch;
    const char left = residues_[static_cast<std::size_t>(x)];
    const char right = residues_[static_cast<std::size_t>(y)];
    const bool is_base[] = {left != 'N' || is_bridged_N(x), right != 'N' || is_bridged_N(y)};
    if (!is_base[0] || !is_base[1]) return -costs.mismatch;
    return left == right || left == 'N' || right == 'N' ? costs.match : -costs.mismatch;
  }

  int kept(std::ptrdiff_t offset, int pair, int deletion, int insertion) const {
    const AlignmentCosts costs = bound_.costs();
    const int best = std::max({0, pair, deletion - costs.deletion, insertion - costs.insertion});
    return std::min(best, cap(offset));
  }

  // The unit is on the left of a pair: a deletion leads from (x, y) to (x + 1, y).
  Row next_to_the_right(std::ptrdiff_t x, const Row& behind) const {
    Row row(behind.size());
    for (std::ptrdiff_t k = band_.highest; k >= band_.lowest; --k) {
      row[static_cast<std::size_t>(k - band_.lowest)] =
          kept(k, score(behind, k) + pair(x, x + k), score(behind, k - 1), score(row, k + 1));
    }
    return row;
  }

  // The unit is on the right of a pair: a deletion leads from (x, y) to (x, y - 1).
  Row next_to_the_left(std::ptrdiff_t x, const Row& before) const {
    Row row(before.size());
    for (std::ptrdiff_t k = band_.lowest; k <= band_.highest; ++k) {
      row[static_cast<std::size_t>(k - band_.lowest)] = kept(
          k, score(before, k) + pair(x - 1, x + k - 1), score(row, k - 1), score(before, k + 1));
    }
    return row;
  }

  std::string_view residues_;
  const FirstCopyBound& bound_;
  unsigned first_;
  unsigned last_;
  const MinScoreOf& min_score_of_;
  OffsetBand band_;
  std::ptrdiff_t length_;
  std::vector<Row> rows_to_the_right_;
  std::vector<Row> rows_to_the_left_;
};

}  // namespace vorlan
