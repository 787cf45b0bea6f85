// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/bit_words.h"

namespace vorlan {

/// A set of start positions of which few words of 64 hold any: only those are stored. Memory: 12
/// bytes for each such word.
class SparseStarts {
 public:
  static constexpr std::ptrdiff_t kNone = -1;

  /// Adds the starts `first` + i for each bit i that is set. Requires that calls come in rising or
  /// in falling order of `first`, 64 apart or more. Positions below 0 are left out.
  void add_rising(std::ptrdiff_t first, std::uint64_t bits);
  void add_falling(std::ptrdiff_t first, std::uint64_t bits);

  /// Turns a set that was filled in falling order.
  void reverse();

  /// Adds the starts of another set. Requires that both are in rising order.
  void unite(const SparseStarts& other);

  /// Removes the starts of another set. The same requirement.
  void subtract(const SparseStarts& other);

  void clear() { *this = {}; }

  /// Bytes that are held, words with starts, and how many starts there are.
  std::size_t memory() const {
    return indices_.capacity() * sizeof(std::uint32_t) + bits_.capacity() * sizeof(std::uint64_t);
  }
  std::size_t words() const { return bits_.size(); }
  std::size_t count() const;

  bool is_empty() const { return bits_.empty(); }

  /// Reads the set from left to right.
  class Reader {
   public:
    explicit Reader(const SparseStarts& starts) : starts_(&starts) {}

    /// The first position of the first word at or behind `position` that holds starts, or kNone.
    /// Requires that no position to the right was asked before.
    std::ptrdiff_t next_word(std::ptrdiff_t position);

    /// The 64 starts from `position` on, a multiple of 64. The same requirement.
    std::uint64_t word(std::ptrdiff_t position) {
      return next_word(position) == position ? starts_->bits_[next_] : 0;
    }

   private:
    const SparseStarts* starts_;
    std::size_t next_ = 0;
  };

 private:
  void add_word(std::uint32_t index, std::uint64_t bits);

  std::vector<std::uint32_t> indices_;
  std::vector<std::uint64_t> bits_;
};

}  // namespace vorlan
