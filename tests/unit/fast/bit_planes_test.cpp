// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The planes against the letters they are made from, bit by bit.

#include "search/bit_planes.h"

#include <gtest/gtest.h>

#include <string>

#include "random.h"
#include "random_residues.h"
#include "support/dna.h"

namespace vorlan {
namespace {

constexpr std::size_t kMargins[] = {0, 1, 63, 64, 65, 200};
constexpr std::size_t kLongest = 200;

/// One position of the three planes.
struct Bits {
  bool low;
  bool high;
  bool no_base;

  bool operator==(const Bits&) const = default;
};

void PrintTo(const Bits& bits, std::ostream* out) {
  *out << "low " << bits.low << " high " << bits.high << " no_base " << bits.no_base;
}

Bits expected_bits(const std::string& residues, std::ptrdiff_t position) {
  if (position < 0 || position >= static_cast<std::ptrdiff_t>(residues.size())) return {1, 0, 1};
  switch (residues[static_cast<std::size_t>(position)]) {
    case 'A':
      return {false, false, false};
    case 'C':
      return {true, false, false};
    case 'T':
      return {false, true, false};
    case 'G':
      return {true, true, false};
    default:
      return {false, false, true};
  }
}

bool bit_of(const std::uint64_t* plane, std::ptrdiff_t position) {
  const std::ptrdiff_t bit = position & 63;
  return (plane[(position - bit) / 64] >> bit & 1) != 0;
}

Bits stored_bits(const BitPlanes::Words& words, std::ptrdiff_t position) {
  return {bit_of(words.low, position), bit_of(words.high, position),
          bit_of(words.no_base, position)};
}

TEST(BitPlanes, HoldTheLettersAndMarkWhatLiesOutside) {
  differential::Random random(1);
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const std::string residues = differential::random_residues(random, length, "ACGTN");
    const Dna dna(residues);
    for (const std::size_t margin : kMargins) {
      const BitPlanes planes(dna.at(0), length, margin);
      const auto begin = -static_cast<std::ptrdiff_t>(margin);
      const auto end = static_cast<std::ptrdiff_t>(length + margin);
      for (std::ptrdiff_t position = begin; position < end; ++position) {
        ASSERT_EQ(stored_bits(planes.words(), position), expected_bits(residues, position))
            << residues << " margin " << margin << " position " << position;
      }
    }
  }
}

TEST(BitPlanes, GiveSixtyFourPositionsFromAnyOneOn) {
  differential::Random random(2);
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const std::string residues = differential::random_residues(random, length, "ACGTN");
    const Dna dna(residues);
    const std::size_t margin = 64 + random.below(130);
    const BitPlanes planes(dna.at(0), length, margin);
    const auto first = -static_cast<std::ptrdiff_t>(margin);
    const auto last = static_cast<std::ptrdiff_t>(length + margin) - 64;
    for (std::ptrdiff_t from = first; from <= last; ++from) {
      const std::uint64_t low = bits_at(planes.words().low, from);
      const std::uint64_t high = bits_at(planes.words().high, from);
      const std::uint64_t no_base = bits_at(planes.words().no_base, from);
      for (int i = 0; i < 64; ++i) {
        const Bits bits{(low >> i & 1) != 0, (high >> i & 1) != 0, (no_base >> i & 1) != 0};
        ASSERT_EQ(bits, expected_bits(residues, from + i))
            << residues << " margin " << margin << " from " << from << " bit " << i;
      }
    }
  }
}

TEST(BitPlanes, BitsOfABaseAreThoseInThePlanes) {
  for (const char base : std::string("ACGT")) {
    const Bits bits = expected_bits(std::string(1, base), 0);
    EXPECT_EQ(BitPlanes::low_bit(base), bits.low ? 1U : 0U) << base;
    EXPECT_EQ(BitPlanes::high_bit(base), bits.high ? 1U : 0U) << base;
  }
}

}  // namespace
}  // namespace vorlan
