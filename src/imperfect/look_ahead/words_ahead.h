// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "search/direction.h"

namespace vorlan {

/// The same bits in the other order.
inline std::uint64_t reversed(std::uint64_t bits) {
  const auto swap = [&bits](int distance, std::uint64_t lower) {
    bits = (bits >> distance & lower) | (bits & lower) << distance;
  };
  swap(1, 0x5555555555555555);
  swap(2, 0x3333333333333333);
  swap(4, 0x0F0F0F0F0F0F0F0F);
  return __builtin_bswap64(bits);
}

/// How the residues ahead of a place, or the unit bases ahead of a cursor, lie in words of 64 bits
/// whose lowest bit is the leftmost base. Forward the base that is next has the lowest bit,
/// backward the highest.
///
///     forward    place|0 1 2 .. 63          backward    63 .. 2 1 0|place
///                      word of bits                     word of bits
template <class Direction>
struct WordsAhead;

template <>
struct WordsAhead<Forward> {
  /// How far ahead the first bit set is, of those that lie at least `skip` ahead; 64 if none is.
  static std::int32_t first_bit(std::uint64_t bits, std::int32_t skip) {
    return bits >> skip == 0 ? 64 : skip + std::countr_zero(bits >> skip);
  }
  /// The word with the nearest base in its lowest bit.
  static std::uint64_t nearest_lowest(std::uint64_t bits) { return bits; }
  /// The leftmost residue of the word that begins `ahead` residues ahead of `place`.
  static std::ptrdiff_t first_residue(std::ptrdiff_t place, std::ptrdiff_t ahead) {
    return place + ahead;
  }
  /// The unit base that meets that residue on `diagonal`, when `cursor` is due at the place.
  static std::ptrdiff_t first_unit_base(std::ptrdiff_t cursor, std::ptrdiff_t ahead,
                                        std::ptrdiff_t diagonal) {
    return cursor + ahead - diagonal;
  }
};

template <>
struct WordsAhead<Backward> {
  static std::int32_t first_bit(std::uint64_t bits, std::int32_t skip) {
    return bits << skip == 0 ? 64 : skip + std::countl_zero(bits << skip);
  }
  static std::uint64_t nearest_lowest(std::uint64_t bits) { return reversed(bits); }
  static std::ptrdiff_t first_residue(std::ptrdiff_t place, std::ptrdiff_t ahead) {
    return place - ahead - 64;
  }
  static std::ptrdiff_t first_unit_base(std::ptrdiff_t cursor, std::ptrdiff_t ahead,
                                        std::ptrdiff_t diagonal) {
    return cursor - ahead + diagonal - 63;
  }
};

}  // namespace vorlan
