// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <vector>

#include "search/csat.h"

namespace vorlan {

/// The marks of a sequence as one bool for each residue, and one on either side of it.
class PlainMarks {
 public:
  PlainMarks(const char* seq_begin, std::size_t length)
      : seq_begin_(seq_begin), open_(length + 2, true) {}

  bool is_open(std::ptrdiff_t position) const {
    return open_[static_cast<std::size_t>(position + 1)];
  }

  /// Two marks that belong to one shift of the stretch are open: the one it stands at, the one a
  /// residue further, or the one a residue before.
  bool may_anchor(std::ptrdiff_t begin, std::ptrdiff_t unit_length) const {
    const std::ptrdiff_t end = begin + unit_length;
    return (is_open(begin) && is_open(end - 1)) || (is_open(begin) && is_open(end)) ||
           (is_open(begin - 1) && is_open(end - 1));
  }

  void set(const char* begin, const char* end, bool open) {
    for (const char* residue = begin; residue != end; ++residue) {
      open_[static_cast<std::size_t>(residue - seq_begin_ + 1)] = open;
    }
  }

  void close(const Csat& sat) {
    set(sat.pos_left, sat.pos_right, false);
    for (const Missense& event : sat.missense) set(event.first, event.first + 1, true);
  }

 private:
  const char* seq_begin_;
  std::vector<bool> open_;
};

}  // namespace vorlan
