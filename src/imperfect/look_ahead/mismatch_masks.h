// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imperfect/look_ahead/unit_strip.h"
#include "imperfect/look_ahead/words_ahead.h"
#include "search/bit_planes.h"
#include "search/direction.h"

namespace vorlan {

/// Where the residues ahead of a decision differ from the unit, on each diagonal, as bits: a walk
/// over matches is one count of zeros instead of a loop. Looks no further than kWords words, and
/// not across anything but bases; there the walk has to be made step by step.
///
/// Example, unit AC, diagonal 0, residues ACTC.. and bases for a whole word: bits 0010.., and the
/// first mismatch is 2 residues ahead. With residues ACNC.. the word is not known.
template <class Direction>
class MismatchMasks {
 public:
  static constexpr std::int32_t kUnknown = -1;

 private:
  static constexpr std::int32_t kBits = kBitsPerWord;
  /// Paths of five edits seldom get further. Chosen by the bench, table "Tuning".
  static constexpr std::int32_t kWords = 4;

 public:
  /// How many positions outside the sequence may be looked at: a word more than the masks hold, and
  /// one for reading across its end.
  static constexpr std::size_t kReach = std::size_t{kWords + 2} * std::size_t{kBits};

  /// For decisions at `place` (an offset in the sequence), where unit base `cursor` is due. The
  /// unit must outlive the use.
  void start(const BitPlanes::Words& planes, const UnitStrip& unit, std::ptrdiff_t place,
             std::ptrdiff_t cursor, std::size_t diagonals) {
    planes_ = planes;
    unit_ = &unit;
    place_ = place;
    cursor_ = cursor;
    masks_.resize(diagonals * std::size_t{kWords});
    is_known_.assign(diagonals, 0);
  }

  /// The first residue from `advance` on that does not match, or kUnknown. `slot` is where the
  /// masks of `diagonal` are kept.
  std::int32_t next_mismatch(std::size_t slot, std::ptrdiff_t diagonal, std::int32_t advance) {
    for (std::int32_t word = advance / kBits; word < kWords; ++word, advance = word * kBits) {
      if ((is_known_[slot] >> word & 1) == 0 && !compute(slot, diagonal, word)) return kUnknown;
      const std::uint64_t mask = masks_[slot * kWords + static_cast<std::size_t>(word)];
      const std::int32_t offset = WordsAhead<Direction>::first_bit(mask, advance % kBits);
      if (offset < kBits) return word * kBits + offset;
    }
    return kUnknown;
  }

 private:
  bool compute(std::size_t slot, std::ptrdiff_t diagonal, std::int32_t word) {
    const std::ptrdiff_t first = WordsAhead<Direction>::first_residue(place_, word * kBits);
    if (bits_at(planes_.no_base, first) != 0) return false;
    const std::ptrdiff_t due =
        WordsAhead<Direction>::first_unit_base(cursor_, word * kBits, diagonal);
    const UnitStrip::Bits unit = unit_->from(unit_->phase(static_cast<std::int32_t>(due)));
    masks_[slot * kWords + static_cast<std::size_t>(word)] =
        (bits_at(planes_.low, first) ^ unit.low) | (bits_at(planes_.high, first) ^ unit.high);
    is_known_[slot] = static_cast<std::uint8_t>(is_known_[slot] | 1 << word);
    return true;
  }

  BitPlanes::Words planes_{};
  const UnitStrip* unit_ = nullptr;
  std::ptrdiff_t place_ = 0;
  std::ptrdiff_t cursor_ = 0;
  std::vector<std::uint64_t> masks_;
  std::vector<std::uint8_t> is_known_;  // one bit for each word
};

}  // namespace vorlan
