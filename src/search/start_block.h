// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "search/bit_planes.h"
#include "search/canchorseq.h"

namespace vorlan {

/// The start positions of one block that are worth an extension, as bits: those that the marks
/// allow and that survive a filter. Reading and judging 512 starts at once is what makes scans
/// fast.
class StartBlock {
 public:
  static constexpr std::size_t kWords = 8;
  static constexpr std::ptrdiff_t kStarts = kWords * BitPlanes::kBitsPerWord;

  /// A block of the scan for one unit length, which has starts from 0 up to `end_of_starts`.
  /// Collects the starts that `anchors` and `filter` leave; `filter` has a member
  /// keep_survivors(first word, words) that clears the bits of starts that cannot lead to a repeat.
  /// Requires that `begin` is a multiple of kStarts and below `end_of_starts`.
  template <typename Filter>
  StartBlock(std::ptrdiff_t begin, std::ptrdiff_t end_of_starts, std::size_t unit_length,
             const CAnchorSeq& anchors, const BitPlanes& planes, Filter& filter)
      : begin_(begin),
        end_(std::min(begin + kStarts, end_of_starts)),
        unit_length_(unit_length),
        special_(planes.words().special + first_word()) {
    collect(begin, anchors);
    judged_ = words_;
    if (std::any_of(words_.begin(), words_.end(), [](std::uint64_t word) { return word != 0; })) {
      filter.keep_survivors(first_word(), words_.data());
    }
    survivors_ = words_;
  }

  /// Collects the starts from `first` on again, after the marks have changed. Starts that were
  /// closed before have not been judged by the filter: they stay.
  void collect_again(std::ptrdiff_t first, const CAnchorSeq& anchors) {
    collect(first, anchors);
    for (std::size_t i = 0; i < kWords; ++i) words_[i] &= survivors_[i] | ~judged_[i];
  }

  /// Takes the lowest start out of the block; -1 when there is none.
  std::ptrdiff_t take() {
    for (std::size_t i = 0; i < kWords; ++i) {
      if (words_[i] == 0) continue;
      const int bit = std::countr_zero(words_[i]);
      words_[i] &= words_[i] - 1;
      return begin_ + static_cast<std::ptrdiff_t>(i) * BitPlanes::kBitsPerWord + bit;
    }
    return -1;
  }

  std::ptrdiff_t begin() const { return begin_; }
  std::ptrdiff_t end() const { return end_; }

 private:
  /// The bits of a word from `bit` on, which may lie outside the word.
  static std::uint64_t at_or_above(std::ptrdiff_t bit) {
    if (bit <= 0) return ~std::uint64_t{0};
    return bit >= BitPlanes::kBitsPerWord ? 0 : ~std::uint64_t{0} << bit;
  }

  using Words = std::array<std::uint64_t, kWords>;

  std::ptrdiff_t first_word() const { return begin_ / BitPlanes::kBitsPerWord; }

  void collect(std::ptrdiff_t first, const CAnchorSeq& anchors) {
    for (std::size_t i = 0; i < kWords; ++i) {
      const std::ptrdiff_t word = first_word() + static_cast<std::ptrdiff_t>(i);
      const std::ptrdiff_t begin = word * BitPlanes::kBitsPerWord;
      words_[i] = begin >= end_ ? 0
                                : anchors.may_anchor(word, unit_length_) & ~special_[i] &
                                      at_or_above(first - begin) & ~at_or_above(end_ - begin);
    }
  }

  std::ptrdiff_t begin_;
  std::ptrdiff_t end_;
  std::size_t unit_length_;
  const std::uint64_t* special_;  // where there are no bases, hence no unit begins
  Words words_{};
  Words judged_{};
  Words survivors_{};
};

}  // namespace vorlan
