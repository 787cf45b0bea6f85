// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/bit_words.h"
#include "search/csat.h"

namespace vorlan {

/// The marks of one sequence ("anchor sequence"): for each residue whether it may still anchor a
/// candidate (open) or lies inside a repeat that was found (closed). What lies outside the sequence
/// is always open. One bit per residue.
class CAnchorSeq {
 public:
  /// All marks open. Throws std::bad_alloc.
  CAnchorSeq(const char* seq_begin, std::size_t seq_len);

  /// Opens all marks.
  void reset();

  /// The 64 starts from residue `word` * 64 on whose stretch of `unit_length` residues may be tried
  /// as a unit, one bit for each. A stretch may be tried if both marks at its ends are open, or
  /// both after it is shifted by one residue to the left or to the right at one end:
  ///
  ///     marks      before|first ...  last|after
  ///     open       first and last, or before and last, or first and after
  ///
  /// Example, unit length 2: when only residue 2 is closed, starts 1 and 2 may be tried, shifted
  /// off it. When residues 2 and 3 are closed, starts 1, 2 and 3 may not.
  ///
  /// Bits for starts without room in the sequence are without meaning. Requires that the first of
  /// the starts has room.
  std::uint64_t may_anchor(std::ptrdiff_t word, std::size_t unit_length) const {
    const auto position = word * kBitsPerWord;
    const std::uint64_t first = marks_from(position);
    const std::uint64_t before = marks_from(position - 1);
    const auto end = position + static_cast<std::ptrdiff_t>(unit_length);
    const std::uint64_t last = marks_from(end - 1);
    const std::uint64_t after = marks_from(end);
    return (first & (last | after)) | (before & last);
  }

  /// Closes the residues of [begin, end).
  void close(const char* begin, const char* end);

  /// Opens the mark of one residue.
  void open(const char* residue) {
    const std::size_t bit = bit_of(residue);
    words_[bit / kBitsPerWord] |= std::uint64_t{1} << bit % kBitsPerWord;
  }

  /// Closes the span of `sat` and opens its edit positions, so that overlapping alternatives can
  /// start there: even where they lie inside another repeat.
  void close(const Csat& sat);

 private:
  /// Words that belong to positions before the sequence; one position of them is ever asked for.
  static constexpr std::ptrdiff_t kWordsBefore = 1;

  std::size_t bit_of(const char* residue) const {
    return static_cast<std::size_t>(residue - seq_begin_ + kWordsBefore * kBitsPerWord);
  }

  /// The marks of 64 positions from `position` on.
  std::uint64_t marks_from(std::ptrdiff_t position) const {
    assert((position >> 6) + kWordsBefore + 1 < static_cast<std::ptrdiff_t>(words_.size()));
    return bits_at(words_.data() + kWordsBefore, position);
  }

  const char* seq_begin_;
  std::vector<std::uint64_t> words_;
};

}  // namespace vorlan
