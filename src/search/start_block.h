// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "search/bit_planes.h"
#include "search/canchorseq.h"

namespace vorlan {

/// The start positions of one block that are worth an extension, as bits: those that the marks
/// allow and that survive a filter. Reading and judging 512 starts at once is what makes scans
/// fast.
///
/// Use: construct, let a filter judge `survivors`, then collect and take.
class StartBlock {
 public:
  static constexpr std::size_t kWords = 8;
  static constexpr std::ptrdiff_t kStarts = kWords * kBitsPerWord;

  /// A block of the scan for one unit length, which has starts from 0 up to `end_of_starts`; the
  /// filter will judge those that `anchors` allow now.
  /// Requires that `begin` is a multiple of kStarts and below `end_of_starts`.
  StartBlock(std::ptrdiff_t begin, std::ptrdiff_t end_of_starts, std::size_t unit_length,
             const CAnchorSeq& anchors, const BitPlanes& planes)
      : begin_(begin),
        end_(std::min(begin + kStarts, end_of_starts)),
        unit_length_(unit_length),
        no_base_(planes.words().no_base + first_word()) {
    assert(begin % kStarts == 0 && begin < end_of_starts);
    judged_ = survivors_ = allowed_from(begin, anchors);
  }

  /// Where the filter clears the starts that cannot lead to a repeat: kWords words from
  /// `first_word` on.
  std::uint64_t* survivors() { return survivors_.data(); }
  std::ptrdiff_t first_word() const { return begin_ / kBitsPerWord; }
  bool has_survivors() const {
    return std::any_of(survivors_.begin(), survivors_.end(),
                       [](std::uint64_t word) { return word != 0; });
  }

  /// Takes over what is known of all starts, whatever the marks: `survivors(start)` tells which of
  /// the 64 starts from there on survive.
  template <class Survivors>
  void set_survivors(const Survivors& survivors) {
    judged_.fill(~std::uint64_t{0});
    for (std::size_t i = 0; i < kWords; ++i) {
      const std::ptrdiff_t begin = begin_ + static_cast<std::ptrdiff_t>(i) * kBitsPerWord;
      if (begin >= end_) break;
      survivors_[i] = survivors(begin);
    }
  }

  /// Adds a start to the survivors.
  void keep(std::ptrdiff_t start) {
    const std::ptrdiff_t offset = start - begin_;
    survivors_[static_cast<std::size_t>(offset / kBitsPerWord)] |= std::uint64_t{1}
                                                                   << offset % kBitsPerWord;
  }

  /// Collects the starts from `first` on that `anchors` allow now and that the filter left. Starts
  /// that were closed when the filter judged have not been judged: they stay.
  void collect(std::ptrdiff_t first, const CAnchorSeq& anchors) {
    words_ = allowed_from(first, anchors);
    for (std::size_t i = 0; i < kWords; ++i) words_[i] &= survivors_[i] | ~judged_[i];
  }

  /// Whether no start is left to take.
  bool is_empty() const {
    return std::all_of(words_.begin(), words_.end(), [](std::uint64_t word) { return word == 0; });
  }

  /// Takes the lowest start out of the block; -1 when there is none.
  std::ptrdiff_t take() {
    for (std::size_t i = 0; i < kWords; ++i) {
      if (words_[i] == 0) continue;
      const int bit = std::countr_zero(words_[i]);
      words_[i] &= words_[i] - 1;
      return begin_ + static_cast<std::ptrdiff_t>(i) * kBitsPerWord + bit;
    }
    return -1;
  }

  std::ptrdiff_t begin() const { return begin_; }
  std::ptrdiff_t end() const { return end_; }

 private:
  /// The bits of a word from `bit` on, which may lie outside the word.
  static std::uint64_t at_or_above(std::ptrdiff_t bit) {
    if (bit <= 0) return ~std::uint64_t{0};
    return bit >= kBitsPerWord ? 0 : ~std::uint64_t{0} << bit;
  }

  using Words = std::array<std::uint64_t, kWords>;

  Words allowed_from(std::ptrdiff_t first, const CAnchorSeq& anchors) const {
    Words words{};
    for (std::size_t i = 0; i < kWords; ++i) {
      const std::ptrdiff_t word = first_word() + static_cast<std::ptrdiff_t>(i);
      const std::ptrdiff_t begin = word * kBitsPerWord;
      if (begin >= end_) break;
      words[i] = anchors.may_anchor(word, unit_length_) & ~no_base_[i] &
                 at_or_above(first - begin) & ~at_or_above(end_ - begin);
    }
    return words;
  }

  std::ptrdiff_t begin_;
  std::ptrdiff_t end_;
  std::size_t unit_length_;
  const std::uint64_t* no_base_;  // where there are no bases, hence no unit begins
  Words words_{};
  Words judged_{};
  Words survivors_{};
};

}  // namespace vorlan
