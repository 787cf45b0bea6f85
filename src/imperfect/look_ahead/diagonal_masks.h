// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "imperfect/look_ahead/place_sets_kernel.h"
#include "imperfect/look_ahead/unit_strip.h"
#include "imperfect/look_ahead/words_ahead.h"
#include "search/bit_planes.h"

namespace vorlan {

/// Where the residues ahead of a place differ from the unit, as bits, on the diagonals (insertions
/// - deletions since the place) nearest to its own: a walk over matches is one count of zeros.
///
/// An N counts as a match, what lies outside the sequence as a mismatch.
///
/// Example, unit AC, A due, residues ATAC..: 0100.. on diagonal 0. On diagonal -1, where C is due
/// instead, 1111..
template <class Direction>
class DiagonalMasks {
 public:
  static constexpr std::int32_t kBits = kBitsPerWord;
  /// How far the masks reach: paths that gain little seldom get further.
  static constexpr std::int32_t kWords = 4;
  static constexpr std::int32_t kReach = kWords * kBits;
  /// Positions outside the sequence that may be looked at: a word is read across its end.
  static constexpr std::size_t kMargin = kReach + 2 * std::size_t{kBits};
  /// Diagonals on either side: two words of the unit hold what all of them read.
  static constexpr std::int32_t kMostDiagonals = 31;

  /// From now on places are in the sequence of `planes`, and the unit is another one. Both must
  /// outlive the use.
  void read_unit(const BitPlanes::Words& planes, const UnitStrip& unit) {
    planes_ = planes;
    unit_ = &unit;
    place_ = kNoPlace;
  }

  /// For the place with this offset in the sequence, where unit base `cursor` is due. Up to
  /// `diagonals` diagonals on either side, at most kMostDiagonals, may be opened then; that of the
  /// place is open. Free for the place of the last call.
  void start(std::ptrdiff_t place, std::ptrdiff_t cursor, std::int32_t diagonals) {
    if (place == place_ && cursor == cursor_ && diagonals <= diagonals_) return;
    place_ = place;
    cursor_ = cursor;
    diagonals_ = diagonals;
    has_N_ = false;
    first_word_ = read_word(0);
    words_ = 1;
    open_ = 0;
    write_mask(0, 0, first_word_);
  }

  /// Opens the diagonals from -`count` to `count`.
  void open(std::int32_t count) {
    while (open_ < count) {
      ++open_;
      write_mask(0, open_, first_word_);
      write_mask(0, -open_, first_word_);
    }
  }

  /// The first residue from `advance` on that does not match, or kReach, on an open diagonal.
  /// Residues are counted from the place on; requires an advance of at least 0.
  std::int32_t next_mismatch(std::int32_t diagonal, std::int32_t advance) {
    if (advance < kBits) {
      const std::uint64_t differs = mask(0, diagonal) >> advance;
      if (differs != 0) return advance + std::countr_zero(differs);
      advance = kBits;
    }
    return next_mismatch_further_on(diagonal, advance);
  }

  /// Where the next `count` times kBits residues do not match on the open diagonals. Requires a
  /// count of at most kWords. The words are valid until the next call of `start`.
  DiagonalWords words(std::int32_t count) {
    for (; words_ < count; ++words_) write_masks(words_);
    return {&mask(0, 0), std::ssize(masks_[0]), count};
  }

  /// Whether an N is among the residues that masks have been made of.
  bool has_N() const { return has_N_; }

 private:
  static constexpr std::ptrdiff_t kNoPlace = -1;

  /// The residues of a word of masks, and the unit bases that are due there: 128 of them, of which
  /// each diagonal needs 64 in a row.
  struct Word {
    std::uint64_t low;
    std::uint64_t high;
    std::uint64_t no_base;
    UnitStrip::Bits unit_begin;
    UnitStrip::Bits unit_end;
  };

  Word read_word(std::int32_t word) {
    const std::int32_t ahead = word * kBits;
    const std::ptrdiff_t first = WordsAhead<Direction>::first_residue(place_, ahead);
    const auto nearest_lowest = [](std::uint64_t bits) {
      return WordsAhead<Direction>::nearest_lowest(bits);
    };
    const Word read{nearest_lowest(bits_at(planes_.low, first)),
                    nearest_lowest(bits_at(planes_.high, first)),
                    nearest_lowest(bits_at(planes_.no_base, first)),
                    due_on_the_last_diagonal(ahead), due_on_the_last_diagonal(ahead + kBits)};
    has_N_ = has_N_ || (read.no_base & ~read.low) != 0;
    return read;
  }

  // The 64 unit bases that are due from `ahead` residues ahead on, where least of them are used up.
  UnitStrip::Bits due_on_the_last_diagonal(std::int32_t ahead) const {
    const std::ptrdiff_t first = WordsAhead<Direction>::first_unit_base(cursor_, ahead, diagonals_);
    const UnitStrip::Bits bases = unit_->from(unit_->phase(static_cast<std::int32_t>(first)));
    return {WordsAhead<Direction>::nearest_lowest(bases.low),
            WordsAhead<Direction>::nearest_lowest(bases.high)};
  }

  void write_mask(std::int32_t word, std::int32_t diagonal, const Word& read) {
    const std::int32_t skip = diagonals_ - diagonal;
    const auto due = [skip](std::uint64_t begin, std::uint64_t end) {
      return bits_across(begin, end, skip);
    };
    const std::uint64_t differs = (read.low ^ due(read.unit_begin.low, read.unit_end.low)) |
                                  (read.high ^ due(read.unit_begin.high, read.unit_end.high));
    mask(word, diagonal) = (differs & ~read.no_base) | (read.no_base & read.low);
  }

  std::int32_t next_mismatch_further_on(std::int32_t diagonal, std::int32_t advance) {
    for (std::int32_t word = advance / kBits; word < kWords; ++word, advance = word * kBits) {
      for (; words_ <= word; ++words_) write_masks(words_);
      const std::uint64_t differs = mask(word, diagonal) >> advance % kBits;
      if (differs != 0) return advance + std::countr_zero(differs);
    }
    return kReach;
  }

  void write_masks(std::int32_t word) {
    const Word read = read_word(word);
    for (std::int32_t i = -diagonals_; i <= diagonals_; ++i) write_mask(word, i, read);
  }

  std::uint64_t& mask(std::int32_t word, std::int32_t diagonal) {
    return masks_[static_cast<std::size_t>(word)]
                 [static_cast<std::size_t>(std::ptrdiff_t{diagonal} + kMostDiagonals)];
  }

  BitPlanes::Words planes_{};
  const UnitStrip* unit_ = nullptr;
  std::ptrdiff_t place_ = kNoPlace;
  std::ptrdiff_t cursor_ = 0;
  std::int32_t diagonals_ = 0;
  std::int32_t open_ = 0;   ///< In the first word; in others all are open.
  std::int32_t words_ = 0;  ///< With masks.
  bool has_N_ = false;
  Word first_word_{};
  std::array<std::array<std::uint64_t, 2 * kMostDiagonals + 1>, kWords> masks_;
};

}  // namespace vorlan
