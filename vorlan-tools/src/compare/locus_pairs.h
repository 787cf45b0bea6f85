// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "compare/border_shift.h"
#include "compare/compared_locus.h"

namespace vorlan_tools {

/// What became of a locus in the other report.
enum class LocusFate : std::uint8_t {
  kUnpaired,  ///< it is not there
  kPaired,    ///< it is there
  kReread,    ///< its place is read otherwise: with other borders, or another unit
};

/// A locus of the second report that is one of the first.
struct LocusPair {
  std::size_t first = 0;
  std::size_t second = 0;
  bool is_reverse = false;  ///< on the other strand
  /// How far the border of the second locus would have to move outwards, to the left and to the
  /// right as the first one is read, to be the border of the first; absent if flanks do not tell.
  std::optional<BorderShift> left_shift;
  std::optional<BorderShift> right_shift;
  /// One of the two covers other loci, which have no partner, too.
  bool is_shared = false;
};

/// Which loci of two reports are the same.
struct Pairing {
  std::vector<LocusPair> pairs;  ///< by first locus
  std::vector<LocusFate> first_fates;
  std::vector<LocusFate> second_fates;
};

/// Loci of one unit that overlap on sequences of one name; of several, the one that begins and ends
/// alike, else the one with the largest overlap.
Pairing pair_by_position(const ComparedReport& first, const ComparedReport& second);

/// Loci of one unit that have the same neighbourhood, wherever they lie and on either strand. See
/// pair_by_flanks.cpp.
Pairing pair_by_flanks(const ComparedReport& first, const ComparedReport& second,
                       std::int64_t flank);

}  // namespace vorlan_tools
