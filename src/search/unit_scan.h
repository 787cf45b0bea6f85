// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

namespace vorlan {

/// Which stretches of one length can be units at all, whatever the marks say; asked from left to
/// right.
class UnitScan {
 public:
  UnitScan(const char* seq_begin, const char* seq_end, std::size_t unit_length)
      : seq_begin_(seq_begin),
        seq_end_(seq_end),
        unit_length_(unit_length),
        last_asked_(seq_begin),
        next_N_(next_N(seq_begin)) {}

  /// Number of starts: a unit is followed by at least one base, so a stretch that ends at the last
  /// base of the sequence is never tried.
  std::ptrdiff_t starts() const {
    return std::max<std::ptrdiff_t>(
        0, seq_end_ - seq_begin_ - static_cast<std::ptrdiff_t>(unit_length_));
  }

  /// Whether the stretch at `start` holds no N and is not one base repeated: such repeats belong to
  /// unit length 1. Requires that no start to the right was asked before.
  bool is_unit(const char* start) {
    assert(start >= last_asked_);
    last_asked_ = start;
    if (next_N_ < start) next_N_ = next_N(start);
    return static_cast<std::size_t>(next_N_ - start) >= unit_length_ &&
           (unit_length_ == 1 || !is_homopolymer(start));
  }

 private:
  const char* next_N(const char* from) const {
    const void* found = std::memchr(from, 'N', static_cast<std::size_t>(seq_end_ - from));
    return found == nullptr ? seq_end_ : static_cast<const char*>(found);
  }

  bool is_homopolymer(const char* start) const {
    return std::all_of(start + 1, start + unit_length_, [=](char base) { return base == *start; });
  }

  const char* seq_begin_;
  const char* seq_end_;
  std::size_t unit_length_;
  const char* last_asked_;
  const char* next_N_;  ///< First N at or after the last start asked, or the end.
};

}  // namespace vorlan
