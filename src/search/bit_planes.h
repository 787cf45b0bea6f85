// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorlan {

/// The residues of a sequence as bits, so that one machine word stands for 64 positions: bit i of a
/// plane belongs to residue i. Two planes hold the base; the third marks what is none.
///
/// Outside the sequence there is a margin that can be read like residues; it is marked as such.
/// Memory: 3/8 byte per residue and margin position.
class BitPlanes {
 public:
  static constexpr std::ptrdiff_t kBitsPerWord = 64;

  /// Base bits are low/high; with `special` set, low = 0 means N and low = 1 outside.
  struct Words {
    const std::uint64_t* low;
    const std::uint64_t* high;
    const std::uint64_t* special;
  };

  /// `margin` is the number of positions that must be readable on either side. Throws
  /// std::bad_alloc. Cost: linear.
  BitPlanes(const char* seq_begin, std::size_t seq_len, std::size_t margin);

  /// The two bits of a base. In ASCII, bits 1 and 2 tell A, C, T and G apart (00, 10, 01, 11).
  static std::uint64_t low_bit(char base) { return static_cast<unsigned char>(base) >> 1 & 1U; }
  static std::uint64_t high_bit(char base) { return static_cast<unsigned char>(base) >> 2 & 1U; }

  /// The 64 bits of a plane from position `first` on, which may lie in the margin.
  static std::uint64_t bits_at(const std::uint64_t* plane, std::ptrdiff_t first) {
    const std::ptrdiff_t shift = first & (kBitsPerWord - 1);
    const std::uint64_t* word = plane + (first - shift) / kBitsPerWord;
    return (word[0] >> shift) | ((word[1] << 1) << (kBitsPerWord - 1 - shift));
  }

  /// The planes from the word that holds residue 0. Words before it belong to the left margin.
  Words words() const {
    const std::size_t first = margin_words_;
    return {low_.data() + first, high_.data() + first, special_.data() + first};
  }

 private:
  void fill_word(std::size_t word, const char* letters, std::size_t count);

  std::size_t margin_words_;
  std::vector<std::uint64_t> low_;
  std::vector<std::uint64_t> high_;
  std::vector<std::uint64_t> special_;
};

}  // namespace vorlan
