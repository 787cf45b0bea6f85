// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Walks over matches by bits against walks residue by residue.

#include "imperfect/look_ahead/mismatch_masks.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "extension_settings.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"

namespace vorlan {
namespace {

using differential::Random;

std::ptrdiff_t remainder(std::ptrdiff_t number, std::ptrdiff_t divisor) {
  return (number % divisor + divisor) % divisor;
}

/// Places in a sequence as the two directions count from them.
template <class Direction>
constexpr bool kIsForward = false;
template <>
constexpr bool kIsForward<Forward> = true;

/// A decision in a sequence, with masks and with plain walks.
template <class Direction>
class Decision {
 public:
  Decision(const std::string& residues, const std::string& unit, std::ptrdiff_t place,
           std::ptrdiff_t cursor)
      : residues_(residues), unit_(unit), place_(place), cursor_(cursor) {}

  /// The residue `ahead` residues ahead of the place; nothing outside the sequence.
  std::optional<char> residue(std::ptrdiff_t ahead) const {
    const std::ptrdiff_t position = kIsForward<Direction> ? place_ + ahead : place_ - 1 - ahead;
    if (position < 0 || position >= static_cast<std::ptrdiff_t>(residues_.size())) return {};
    return residues_[static_cast<std::size_t>(position)];
  }

  /// The unit base due there: an insertion has consumed a residue but no unit base.
  char due(std::ptrdiff_t ahead, std::ptrdiff_t diagonal) const {
    const std::ptrdiff_t steps = ahead - diagonal;
    const auto period = static_cast<std::ptrdiff_t>(unit_.size());
    const std::ptrdiff_t base = kIsForward<Direction> ? cursor_ + steps : cursor_ - steps;
    return unit_[static_cast<std::size_t>(remainder(base, period))];
  }

  /// The first residue from `ahead` on that is not the unit base due; nothing when the walk comes
  /// to anything but a base before.
  std::optional<std::int32_t> next_mismatch(std::ptrdiff_t diagonal, std::int32_t ahead) const {
    for (;; ++ahead) {
      const std::optional<char> here = residue(ahead);
      if (!here || *here == 'N') return {};
      if (*here != due(ahead, diagonal)) return ahead;
    }
  }

  /// Whether all residues of the stretch are bases.
  bool holds_only_bases(std::ptrdiff_t begin, std::ptrdiff_t end) const {
    for (std::ptrdiff_t ahead = begin; ahead < end; ++ahead) {
      if (residue(ahead).value_or('N') == 'N') return false;
    }
    return true;
  }

 private:
  const std::string& residues_;
  const std::string& unit_;
  std::ptrdiff_t place_;
  std::ptrdiff_t cursor_;
};

template <class Direction>
class MismatchMasksTest : public testing::Test {
 protected:
  static constexpr std::int32_t kMostEdits = 5;

  // Asks for one diagonal and several starts, in any order, as a look-ahead does.
  void expect_same_walks(Random& random, const std::string& residues, const std::string& unit) {
    // The unit is a stretch of the sequence: here behind all that is looked at.
    const std::string followed =
        residues + std::string(MismatchMasks<Direction>::kReach, 'N') + unit;
    const Dna dna(followed);
    const BitPlanes planes(dna.at(0), followed.size(), MismatchMasks<Direction>::kReach);
    UnitStrip strip;
    strip.assign(planes.words(), static_cast<std::ptrdiff_t>(followed.size() - unit.size()),
                 static_cast<std::ptrdiff_t>(unit.size()));
    const std::ptrdiff_t place = random.between(0, static_cast<int>(residues.size()));
    const auto cursor = static_cast<std::ptrdiff_t>(random.below(unit.size()));
    const Decision<Direction> decision(residues, unit, place, cursor);
    masks_.start(planes.words(), strip, place, cursor, 2 * kMostEdits + 1);
    for (int i = 0; i < 30; ++i) {
      const std::int32_t diagonal = random.between(-kMostEdits, kMostEdits);
      const std::int32_t ahead =
          random.per_cent(60) ? random.between(0, 20) : random.between(0, 300);
      const auto slot = static_cast<std::size_t>(diagonal + kMostEdits);
      const std::int32_t found = masks_.next_mismatch(slot, diagonal, ahead);
      const std::optional<std::int32_t> expected = decision.next_mismatch(diagonal, ahead);
      if (found != MismatchMasks<Direction>::kUnknown) {
        ASSERT_EQ(std::optional(found), expected)
            << residues << " unit " << unit << " place " << place << " cursor " << cursor
            << " diagonal " << diagonal << " ahead " << ahead;
        ++known_;
        if (found >= 64) ++known_behind_first_word_;
      } else {
        // Among the first 64 residues only something else than a base keeps it from telling.
        ASSERT_FALSE(expected && *expected < 64 && decision.holds_only_bases(0, 64))
            << residues << " unit " << unit << " place " << place << " cursor " << cursor
            << " diagonal " << diagonal << " ahead " << ahead;
        ++unknown_;
      }
    }
  }

  MismatchMasks<Direction> masks_;
  int known_ = 0;
  int known_behind_first_word_ = 0;
  int unknown_ = 0;
};

using Directions = testing::Types<Forward, Backward>;
TYPED_TEST_SUITE(MismatchMasksTest, Directions);

TYPED_TEST(MismatchMasksTest, StopWhereAWalkResidueByResidueStops) {
  for (int seed = 0; seed < 1000 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const std::size_t unit_length =
        random.per_cent(80) ? 1 + random.below(10) : 1 + random.below(90);
    const std::string unit = differential::random_residues(random, unit_length, "ACGT");
    std::string residues =
        random.per_cent(40)
            ? differential::random_record(random, 1 + random.below(400))
            : differential::diverged(random, differential::array_of(unit, 20 + random.below(700)),
                                     random.between(0, 30));
    if (random.per_cent(30)) differential::overwrite_with_Ns(random, residues, 2, 3);
    if (residues.empty()) continue;
    ASSERT_NO_FATAL_FAILURE(this->expect_same_walks(random, residues, unit));
  }
  EXPECT_GT(this->known_, 1000);
  EXPECT_GT(this->known_behind_first_word_, 100);
  EXPECT_GT(this->unknown_, 100);
}

}  // namespace
}  // namespace vorlan
