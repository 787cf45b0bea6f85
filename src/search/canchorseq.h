// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <memory>

#include "search/csat.h"

namespace vorlan {

/// The marks of one sequence ("anchor sequence"): for each residue whether it may still anchor a
/// candidate or lies inside a repeat that was found. One byte per residue; the position before the
/// first residue and the one after the last have marks, too, which are always open.
class CAnchorSeq {
 public:
  /// All marks open. Throws std::bad_alloc.
  CAnchorSeq(const char* seq_begin, std::size_t seq_len);

  /// Opens all marks.
  void reset();

  /// Whether the residue `position` may anchor a candidate.
  bool is_open(const char* position) const { return marks[position - seq_begin] == kOpen; }

  /// Whether the stretch [start, start + unit_length) may be tried as a unit: of the four positions
  /// before and after its two ends, two that belong to the same end of a shifted copy are open.
  /// Requires that the stretch lies inside the sequence.
  bool may_anchor(const char* start, std::size_t unit_length) const {
    const char* first = marks + (start - seq_begin);
    const char* after = first + unit_length;
    const bool last_open = after[-1] == kOpen;
    return (first[0] == kOpen && (last_open || after[0] == kOpen)) ||
           (first[-1] == kOpen && last_open);
  }

  /// Closes the span of `sat` and opens its edit positions again, so that overlapping alternatives
  /// can start there: even where they lie inside another repeat.
  void close(const Csat& sat);

 private:
  static constexpr char kOpen = 'a';
  static constexpr char kClosed = ' ';

  const char* seq_begin;
  std::size_t seq_len;
  std::unique_ptr<char[]> mark_buf;
  char* marks;  ///< The mark of residue p is marks[p - seq_begin], for offsets -1 to seq_len.
};

}  // namespace vorlan
