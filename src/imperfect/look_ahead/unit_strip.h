// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/bit_planes.h"

namespace vorlan {

/// A unit written out again and again, as bits, copied from the planes of one sequence.
class UnitStrip {
 public:
  struct Bits {
    std::uint64_t low;
    std::uint64_t high;
  };

  /// The unit is the `length` residues from offset `begin` of the sequence on, at least one, none
  /// of them an N. Throws std::bad_alloc. Cost: linear in the words of the unit; nothing when it is
  /// the unit of the last call. Requires the planes of the first call.
  void assign(const BitPlanes::Words& planes, std::ptrdiff_t begin, std::ptrdiff_t length);

  /// 64 bases from unit base `phase` on. Requires a phase from 0 to the unit length plus 64.
  Bits from(std::ptrdiff_t phase) const {
    return {bits_at(low_.data(), phase), bits_at(high_.data(), phase)};
  }

  /// The unit base at this number of steps from the first one, round and round.
  std::ptrdiff_t phase(std::int32_t steps) const {
    if (steps >= 0 && steps < length_) return steps;
    // No sequence is longer than 32 bits tell; a shorter division takes half the time.
    const std::int32_t remainder = steps % static_cast<std::int32_t>(length_);
    return remainder < 0 ? remainder + length_ : remainder;
  }

 private:
  static constexpr std::ptrdiff_t kBits = kBitsPerWord;
  static constexpr std::ptrdiff_t kNoUnit = -1;

  void write(const std::uint64_t* plane, std::ptrdiff_t begin,
             std::vector<std::uint64_t>& words) const;
  /// A unit shorter than a word, from its begin on, until the word is full.
  std::uint64_t repeated(std::uint64_t bases) const;

  std::ptrdiff_t begin_ = kNoUnit;
  std::ptrdiff_t length_ = 1;
  std::vector<std::uint64_t> low_;
  std::vector<std::uint64_t> high_;
};

}  // namespace vorlan
