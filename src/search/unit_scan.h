// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstddef>

#include "search/canchorseq.h"

namespace vorlan {

/// The candidates of one unit length of 2 or more in one sequence, asked from left to right.
class UnitScan {
 public:
  UnitScan(const char* seq_begin, const char* seq_end, const CAnchorSeq& anchors,
           std::size_t unit_length)
      : seq_end_(seq_end),
        anchors_(anchors),
        unit_length_(unit_length),
        next_N_(std::find(seq_begin, seq_end, 'N')) {}

  /// Whether `start` can be the first base of a unit at all: the unit is followed by at least one
  /// base. A stretch that ends at the last base of the sequence is therefore never tried.
  bool has_room(const char* start) const {
    return static_cast<std::size_t>(seq_end_ - start) > unit_length_;
  }

  /// Whether the stretch at `start` is tried as a unit: the marks allow it, it holds no N and is
  /// not one base repeated, which belongs to unit length 1. Requires `has_room(start)`, and that no
  /// start to the right was asked before.
  bool is_candidate(const char* start) {
    if (next_N_ < start) next_N_ = std::find(start, seq_end_, 'N');
    return anchors_.may_anchor(start, unit_length_) &&
           static_cast<std::size_t>(next_N_ - start) >= unit_length_ && !is_homopolymer(start);
  }

 private:
  bool is_homopolymer(const char* start) const {
    return std::all_of(start + 1, start + unit_length_, [=](char base) { return base == *start; });
  }

  const char* seq_end_;
  const CAnchorSeq& anchors_;
  std::size_t unit_length_;
  const char* next_N_;  ///< First N at or after the last start asked, or the end.
};

}  // namespace vorlan
