// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlan {

/// Bits of a sequence of words: bit i is bit i % 64 of word i / 64.
inline constexpr std::ptrdiff_t kBitsPerWord = 64;

/// The 64 bits that begin with bit `shift`, 0 to 63, of `word` and go on in `next`. The second word
/// is shifted in two steps: a shift by 64, which a `shift` of 0 asks for, is undefined in one.
constexpr std::uint64_t bits_across(std::uint64_t word, std::uint64_t next, std::ptrdiff_t shift) {
  return (word >> shift) | ((next << 1) << (kBitsPerWord - 1 - shift));
}

/// The 64 bits from bit `first` on; negative ones lie in words before `words`. Requires that the
/// word of bit `first` and the one behind it can be read.
constexpr std::uint64_t bits_at(const std::uint64_t* words, std::ptrdiff_t first) {
  const std::ptrdiff_t shift = first & (kBitsPerWord - 1);
  const std::uint64_t* const word = words + (first - shift) / kBitsPerWord;
  return bits_across(word[0], word[1], shift);
}

}  // namespace vorlan
