// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Units and masks as bits against residues read one by one.

#include "imperfect/look_ahead/diagonal_masks.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "extension_settings.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"

namespace vorlan {
namespace {

using differential::Random;

std::ptrdiff_t remainder_of(std::ptrdiff_t number, std::ptrdiff_t divisor) {
  return (number % divisor + divisor) % divisor;
}

TEST(UnitStrip, HoldsTheUnitWrittenAgainAndAgain) {
  Random random(1);
  const std::string text = differential::random_residues(random, 400, "ACGT");
  const BitPlanes planes(text.data(), text.size(), 256);
  UnitStrip strip;
  for (std::ptrdiff_t length = 1; length <= 200; ++length) {
    const auto begin = static_cast<std::ptrdiff_t>(random.below(200));
    strip.assign(planes.words(), begin, length);
    for (std::ptrdiff_t phase = 0; phase <= length + 64; ++phase) {
      const UnitStrip::Bits bits = strip.from(phase);
      for (std::ptrdiff_t i = 0; i < 64; ++i) {
        const char base = text[static_cast<std::size_t>(begin + (phase + i) % length)];
        ASSERT_EQ(bits.low >> i & 1, BitPlanes::low_bit(base)) << length << " from " << phase;
        ASSERT_EQ(bits.high >> i & 1, BitPlanes::high_bit(base)) << length << " from " << phase;
      }
    }
  }
}

TEST(UnitStrip, FindsTheUnitBaseOfAnyNumberOfSteps) {
  const std::string text = "ACGTACGT";
  const BitPlanes planes(text.data(), text.size(), 64);
  UnitStrip strip;
  strip.assign(planes.words(), 1, 5);
  EXPECT_EQ(strip.phase(4), 4);
  EXPECT_EQ(strip.phase(5), 0);
  EXPECT_EQ(strip.phase(-1), 4);
  EXPECT_EQ(strip.phase(-10), 0);
}

template <class Direction>
class DiagonalMasksTest : public testing::Test {};

using Directions = testing::Types<Forward, Backward>;
TYPED_TEST_SUITE(DiagonalMasksTest, Directions);

/// The first residue from `advance` on that does not match, read one by one.
template <class Direction>
std::int32_t plain_next_mismatch(const Dna& dna, UnitSpan unit, const char* place,
                                 std::ptrdiff_t cursor, std::int32_t diagonal,
                                 std::int32_t advance) {
  constexpr bool kIsForward = std::is_same_v<Direction, Forward>;
  for (; advance < DiagonalMasks<Direction>::kReach; ++advance) {
    const char* residue = kIsForward ? place + advance : place - 1 - advance;
    if (residue < dna.at(0) || residue >= dna.end()) return advance;
    const std::ptrdiff_t steps = std::ptrdiff_t{advance} - diagonal;
    const char due =
        unit.begin[remainder_of(kIsForward ? cursor + steps : cursor - steps, unit.length())];
    if (*residue != 'N' && *residue != due) return advance;
  }
  return advance;
}

TYPED_TEST(DiagonalMasksTest, FindTheNextMismatchOnEveryDiagonal) {
  using Masks = DiagonalMasks<TypeParam>;
  Masks masks;
  long beyond_first_word = 0;
  for (int seed = 0; seed < 300 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const std::size_t length = random.per_cent(70) ? 1 + random.below(8) : 1 + random.below(150);
    const std::string unit_bases = differential::random_residues(random, length, "ACGT");
    std::string array = differential::array_of(unit_bases, random.below(600));
    array = differential::diverged(random, array, random.between(0, 40));
    if (random.per_cent(30) && !array.empty()) {
      differential::overwrite_with_Ns(random, array, 2, 4);
    }
    const Dna dna(unit_bases + array);
    const auto residues = static_cast<std::size_t>(dna.end() - dna.at(0));
    const BitPlanes planes(dna.at(0), residues, Masks::kMargin);
    UnitStrip strip;
    strip.assign(planes.words(), 0, static_cast<std::ptrdiff_t>(length));
    masks.read_unit(planes.words(), strip);
    const UnitSpan unit{dna.at(0), dna.at(0) + length};
    for (int i = 0; i < 20; ++i) {
      const auto place = static_cast<std::ptrdiff_t>(random.below(residues + 1));
      const auto cursor = static_cast<std::ptrdiff_t>(random.below(length));
      const int diagonals = random.between(0, Masks::kMostDiagonals);
      masks.start(place, cursor, diagonals);
      masks.open(diagonals);
      const int diagonal = random.between(-diagonals, diagonals);
      const int advance =
          random.between(0, random.per_cent(70) ? 40 : static_cast<int>(Masks::kReach) - 1);
      const std::int32_t expected =
          plain_next_mismatch<TypeParam>(dna, unit, dna.at(place), cursor, diagonal, advance);
      ASSERT_EQ(masks.next_mismatch(diagonal, advance), expected)
          << "place " << place << " diagonal " << diagonal << " from " << advance;
      beyond_first_word += expected >= Masks::kBits ? 1 : 0;
    }
  }
  EXPECT_GT(beyond_first_word, 100);
}

TYPED_TEST(DiagonalMasksTest, ReportAnNThatWasLookedAt) {
  const std::string text = "ACACACNCACACAC";
  const BitPlanes planes(text.data(), text.size(), DiagonalMasks<TypeParam>::kMargin);
  UnitStrip strip;
  strip.assign(planes.words(), 0, 2);
  DiagonalMasks<TypeParam> masks;
  masks.read_unit(planes.words(), strip);
  constexpr bool kIsForward = std::is_same_v<TypeParam, Forward>;
  masks.start(kIsForward ? 3 : 10, 0, 1);
  EXPECT_TRUE(masks.has_N());
  masks.start(kIsForward ? 7 : 6, 0, 1);
  EXPECT_FALSE(masks.has_N());
}

}  // namespace
}  // namespace vorlan
