// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Which candidates with long units the similarity of the sequence to itself can reject.
//
// Idea: until its unit cursor has gone round once, the extension of a candidate (start s, unit
// length u) aligns the sequence with itself: forward from the pair of boundaries (s, s + u) to the
// right, backward from the same pair to the left. One alignment of the sequence with itself, over
// all offsets, therefore says something of every candidate at once.
//
// Let each unit base that is consumed earn a bonus b besides what the extension pays: a match then
// scores 1 + b, a mismatch b less its penalty, a deletion b less its penalty, an insertion its
// penalty alone. Let V be the best sum of a way to the right and W of one to the left, never below
// 0. The lowest score above the floor of the extension is f = 1 - u - preference. So a way that
// uses up the first copy of the unit sums to at least T = b * u + f. A way that gains G within the
// first copy has G matches or more and sums to at least (1 + b) * G.
//
// A candidate is rejected when V < a and W < a, with
//
//     a = min( T * (1 + b) / (2 + b),  min_score * (1 + b) / 2 ).
//
// Why nothing is lost:
//   - if the best state forward lies beyond the first copy, then V >= T >= a;
//   - else the forward gain F is at most V / (1 + b). If the best state backward lies beyond the
//     first copy, its way used up the copy while the score, which began with F, stayed above the
//     floor: W >= T - F >= T - V / (1 + b), which is more than a if V < a;
//   - else both gains come from the first copy: F + B <= (V + W) / (1 + b) < min_score;
//   - a limited score reduction and the look-ahead only leave out ways; an N that is bridged scores
//     0 and is counted as a match; a longer N run ends the extension and is counted as mismatches;
//     beyond the ends of the sequence nothing matches;
//   - scores are capped, where the way of an extension still keeps what the bounds above need,
//     min(V, T) and min(W, T - F). Having consumed n unit bases, such a way has paid for them with
//     a sum of at least f + b * n (forward), so a cap of b * (u - n) leaves T. How small n can be
//     follows from the offset: d deletions more than insertions consume d unit bases, and what
//     they cost below the floor must have been paid for with as many matches. So at offset u - d,
//     n >= d + max(0, d * penalty + f); at offset u + i, n >= max(0, i * penalty + f). Backward the
//     floor is lower by the forward gain F < a / (1 + b), and so is the one of all caps.
//   - outside the band of offsets that is looked at, every score counts as its cap.
//
// The caps must not be lower, and need not be higher: a higher one would let a distant similarity
// shine through more junk than an extension can pay for, and a drift from a far offset.
//
// Example, b = 5/4, u = 8, f = -8, min_score 8: T = 2, a = 18/13. Behind the unit ACGTCCAG the same
// eight bases follow: V is 8 * 9/4, capped to 10, and the candidate stays. If TTTTTTTT follows, the
// best way is a match behind three edits, so V is 0; with nothing to the left W is 0: rejected.
//
// Which b: a low one asks for little, which much of random sequence has as long as units are short;
// a high one lets what is similar shine far through junk, which matters for long units.
//
// Limits: b must be more than 1, or T is at most 1 however long the unit is. The bonus must also
// leave random sequence without a gain in the long run, so cheap penalties cannot be judged. Short
// units ask for so little that much of random sequence has it.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "imperfect/scoring.h"
#include "imperfect/self_alignment/self_alignment_kernel.h"

namespace vorlan {

/// The numbers of the bound, in quarters of a point, so that the bonus is a whole number.
class FirstCopyBound {
 public:
  static constexpr int kScale = 4;

  /// The cap of a longer unit does not fit 16 bits.
  static constexpr unsigned kLongestUnit = 6'000;

  /// The bonus is chosen for units of this length.
  FirstCopyBound(const Scoring& scoring, unsigned unit_length)
      : bonus_(bonus_of(unit_length)),
        mismatch_(penalty(scoring.mismatch_score)),
        indel_(penalty(scoring.indel_score)),
        preference_(scoring.prefer_longer_repeat),
        longest_N_run_(scoring.longest_N_run) {}

  /// Whether the bonus fits and so much of the background is rejected that it pays to ask.
  bool can_judge(unsigned unit_length, int min_score) const {
    return std::min(mismatch_, indel_) >= kLeastPenalty && unit_length <= kLongestUnit &&
           bonus_of(unit_length) == bonus_ && wanted(unit_length, min_score) >= kLeastWanted;
  }

  /// Whether a band of unit lengths takes more time without the self-alignment, whose own hardly
  /// depends on how many they are. That of the automaton grows with the square of each. A few
  /// short ones are better left to it, since much of random sequence survives there.
  static bool is_worth_it(unsigned first, unsigned last) {
    if (last >= kLongUnit) return true;
    unsigned squares = 0;
    for (unsigned length = first; length <= last; ++length) squares += length * length;
    return squares >= kLongUnit * kLongUnit * 4 / 3;
  }

  AlignmentCosts costs() const {
    return {scaled(kScale + bonus_), scaled(kScale * mismatch_ - bonus_), scaled(kScale * indel_),
            scaled(kScale * indel_ - bonus_)};
  }

  /// The highest score that is kept at an offset for the sake of a unit length. Requires that it
  /// is at most kLongestUnit.
  std::int16_t cap(std::int64_t offset, unsigned unit_length, int min_score) const {
    const std::int64_t length = unit_length;
    const std::int64_t drift = std::abs(offset - length);
    const std::int64_t deletions = std::max<std::int64_t>(length - offset, 0);
    const std::int64_t gain = wanted(unit_length, min_score) / (kScale + bonus_) + 1;
    const std::int64_t matches =
        std::max<std::int64_t>(drift * indel_ + 1 - length - preference_ - gain, 0);
    return scaled(bonus_ * std::max<std::int64_t>(length - deletions - matches, 0));
  }

  /// The score that one direction must have for a candidate to be kept. The same requirement.
  std::int16_t wanted(unsigned unit_length, int min_score) const {
    const std::int64_t length = unit_length;
    const std::int64_t first_copy = bonus_ * length + kScale * (1 - length - preference_);
    const std::int64_t by_copy = first_copy * (kScale + bonus_) / (2 * kScale + bonus_);
    const std::int64_t by_score = std::int64_t{min_score} * (kScale + bonus_) / 2;
    return scaled(std::clamp<std::int64_t>(std::min(by_copy, by_score), 0, bonus_ * length));
  }

  /// How many offsets beyond a unit length to look at, so that what counts as its cap further out
  /// rarely matters: to where that is half of the cap at the unit length itself.
  std::ptrdiff_t margin(unsigned unit_length, int min_score, int direction) const {
    std::ptrdiff_t margin = 1;
    while (cap(unit_length + direction * margin, unit_length, min_score) >
           bonus_ * static_cast<std::int64_t>(unit_length) / 2) {
      ++margin;
    }
    return margin;
  }

  std::ptrdiff_t longest_N_run() const { return longest_N_run_; }

 private:
  static constexpr std::int64_t kLeastPenalty = 5;
  /// Eight points: unit lengths from 23 on. Below, the automaton of the candidate filter is as
  /// fast.
  static constexpr std::int16_t kLeastWanted = 8 * kScale;
  /// The automaton takes as much time for this unit length alone.
  static constexpr unsigned kLongUnit = 45;

  /// In quarters of a point.
  static constexpr int kBonusOfShortUnits = 6;
  static constexpr int kBonus = 5;
  static constexpr unsigned kLongestShortUnit = 59;
  static_assert(kBonus * kLongestUnit + kScale + kBonus <= 32767);

  static int bonus_of(unsigned unit_length) {
    return unit_length <= kLongestShortUnit ? kBonusOfShortUnits : kBonus;
  }

  /// A smaller penalty than the true one only lets more survive.
  static std::int64_t penalty(std::int64_t score) { return std::min<std::int64_t>(-score, 1'000); }

  static std::int16_t scaled(std::int64_t number) { return static_cast<std::int16_t>(number); }

  int bonus_;
  std::int64_t mismatch_;
  std::int64_t indel_;
  std::int64_t preference_;
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
