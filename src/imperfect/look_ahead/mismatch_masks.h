// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imperfect/look_ahead/words_ahead.h"
#include "search/bit_planes.h"
#include "search/direction.h"

namespace vorlan {

/// A unit written out again and again, as bits.
class PeriodicUnit {
 public:
  struct Bits {
    std::uint64_t low;
    std::uint64_t high;
  };

  /// Cost: linear in the length, and at least 128 steps.
  void assign(const UnitSpan& unit);

  /// 64 bases from unit base `offset` on, which may be any number.
  Bits from(std::ptrdiff_t offset) const {
    offset %= length_;
    if (offset < 0) offset += length_;
    return {bits_at(low_.data(), offset), bits_at(high_.data(), offset)};
  }

 private:
  std::ptrdiff_t length_ = 1;
  std::vector<std::uint64_t> low_;
  std::vector<std::uint64_t> high_;
};

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

  /// For decisions at `place` (an offset in the sequence), where unit base `cursor` is due.
  void start(const BitPlanes::Words& planes, const PeriodicUnit& unit, std::ptrdiff_t place,
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
    const PeriodicUnit::Bits unit =
        unit_->from(WordsAhead<Direction>::first_unit_base(cursor_, word * kBits, diagonal));
    masks_[slot * kWords + static_cast<std::size_t>(word)] =
        (bits_at(planes_.low, first) ^ unit.low) | (bits_at(planes_.high, first) ^ unit.high);
    is_known_[slot] = static_cast<std::uint8_t>(is_known_[slot] | 1 << word);
    return true;
  }

  BitPlanes::Words planes_{};
  const PeriodicUnit* unit_ = nullptr;
  std::ptrdiff_t place_ = 0;
  std::ptrdiff_t cursor_ = 0;
  std::vector<std::uint64_t> masks_;
  std::vector<std::uint8_t> is_known_;  // one bit for each word
};

inline void PeriodicUnit::assign(const UnitSpan& unit) {
  length_ = unit.length();
  const std::ptrdiff_t bits = length_ + kBitsPerWord;
  const auto words = static_cast<std::size_t>(bits / kBitsPerWord + 2);
  low_.assign(words, 0);
  high_.assign(words, 0);
  const char* base = unit.begin;
  for (std::ptrdiff_t i = 0; i < bits; ++i) {
    const auto word = static_cast<std::size_t>(i / kBitsPerWord);
    low_[word] |= BitPlanes::low_bit(*base) << i % kBitsPerWord;
    high_[word] |= BitPlanes::high_bit(*base) << i % kBitsPerWord;
    if (++base == unit.end) base = unit.begin;
  }
}

}  // namespace vorlan
