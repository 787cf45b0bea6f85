// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>

#include "report/repeat.h"

namespace vorlan_tools {

/// Sums over a class of repeats. All are whole numbers, so that tallies of parts add up exactly.
struct Tally {
  std::int64_t repeats = 0;
  std::int64_t perfect = 0;        ///< repeats without edits
  std::int64_t bases = 0;          ///< of the sequence; where repeats overlap, each counts them
  std::int64_t perfect_bases = 0;  ///< in repeats without edits
  Thousandths copies = 0;
  std::int64_t mismatches = 0;  ///< these three stay 0 where the report does not tell them
  std::int64_t insertions = 0;
  std::int64_t deletions = 0;
  std::int64_t longest = 0;  ///< bases of the longest repeat

  void add(const Repeat& repeat);
  void add(const Tally& other);
};

/// Whether a repeat has no edits; by its perfection where a report does not count them.
bool is_perfect(const Repeat& repeat);

/// Classes of copies: class i begins with kCopyClasses[i] copies and ends in front of those of the
/// next one; the last is open.
inline constexpr std::array<std::int64_t, 25> kCopyClasses = {
    0,  2,  3,  4,  5,  6,  7,   8,   9,   10,  12,  14,  17,
    20, 25, 30, 40, 50, 70, 100, 150, 200, 300, 500, 1000};

std::size_t copy_class(Thousandths copies);

/// Classes of divergence, which is 100 % less the perfection: class 0 is no divergence at all,
/// class i from 1 to 50 is above i - 1 % up to i %, class 51 is above 50 %.
inline constexpr std::size_t kDivergenceClasses = 52;

std::size_t divergence_class(Thousandths perfection);

/// Repeats and bases of a class.
struct Count {
  std::int64_t repeats = 0;
  std::int64_t bases = 0;

  void add(const Count& other) {
    repeats += other.repeats;
    bases += other.bases;
  }
};

/// The repeats of one unit length.
struct UnitLengthStats {
  Tally tally;
  std::array<Count, kCopyClasses.size()> by_copies;
  std::array<Count, kDivergenceClasses> by_divergence;

  void add(const Repeat& repeat);
  void add(const UnitLengthStats& other);
};

using ByUnitLength = std::map<std::int64_t, UnitLengthStats>;

}  // namespace vorlan_tools
