// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/bit_words.h"

namespace vorlan {

/// The residues of a sequence as bits, so that one machine word stands for 64 positions: bit i of a
/// plane belongs to residue i. Two planes hold the base; the third marks what is none.
///
/// Outside the sequence there is a margin that can be read like residues; it is marked as such.
/// Memory: 3/8 byte per residue and margin position.
class BitPlanes {
 public:
  /// Base bits are low/high. Where `no_base` is set there is none: low = 0 means N, low = 1 outside
  /// the sequence. All can be read with `bits_at`.
  struct Words {
    const std::uint64_t* low;
    const std::uint64_t* high;
    const std::uint64_t* no_base;
  };

  /// 64 residues in a row as bits of each plane.
  struct Bits {
    std::uint64_t low;
    std::uint64_t high;
    std::uint64_t no_base;
  };

  /// The residues from position `first` on.
  static Bits read(const Words& words, std::ptrdiff_t first) {
    return {bits_at(words.low, first), bits_at(words.high, first), bits_at(words.no_base, first)};
  }

  /// Which residues of `a` count as equal to those of `b`: equal bases, and, if `bridges_N`, an N
  /// on either side, as it may be bridged. What lies outside the sequence equals nothing.
  static std::uint64_t equal_residues(const Bits& a, const Bits& b, bool bridges_N) {
    const std::uint64_t equal = ~((a.low ^ b.low) | (a.high ^ b.high));
    const std::uint64_t no_base = a.no_base | b.no_base;
    if (!bridges_N) return equal & ~no_base;
    const std::uint64_t outside = (a.no_base & a.low) | (b.no_base & b.low);
    return (equal | no_base) & ~outside;
  }

  /// `margin` is the number of positions that must be readable on either side. Throws
  /// std::bad_alloc. Cost: linear.
  BitPlanes(const char* seq_begin, std::size_t seq_len, std::size_t margin);

  /// The two bits of a base. In ASCII, bits 1 and 2 tell A, C, T and G apart (00, 10, 01, 11).
  static std::uint64_t low_bit(char base) { return static_cast<unsigned char>(base) >> 1 & 1U; }
  static std::uint64_t high_bit(char base) { return static_cast<unsigned char>(base) >> 2 & 1U; }

  /// How many positions can be read on either side, at least what was asked for.
  std::size_t margin() const { return margin_words_ * kBitsPerWord; }

  /// The planes from the word that holds residue 0. Words before it belong to the left margin.
  Words words() const {
    const std::size_t first = margin_words_;
    return {low_.data() + first, high_.data() + first, no_base_.data() + first};
  }

 private:
  void fill_word(std::size_t word, const char* letters, std::size_t count);

  std::size_t margin_words_;
  std::vector<std::uint64_t> low_;
  std::vector<std::uint64_t> high_;
  std::vector<std::uint64_t> no_base_;
};

}  // namespace vorlan
