// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

#include "compare/locus_pairs.h"

namespace vorlan_tools {

enum class PairStatus : std::uint8_t {
  kSame,     ///< as many bases between the same two points
  kChanged,  ///< more or fewer
  kUnclear,  ///< of different lengths, and a flank does not tell where the same point is
};

/// Two loci that are one, and what differs.
struct ComparedPair {
  PairStatus status = PairStatus::kSame;
  std::int64_t difference = 0;  ///< bases more in the second one
};

/// Lengths are compared between the same two points, as the flanks tell. If a changed base in a
/// flank explains a difference as well as a change of the length does, it is the former.
ComparedPair compare_pair(const ComparedLocus& first, const ComparedLocus& second,
                          const LocusPair& pair);

/// The bases of the second locus between the borders of the first one, on the strand of the first
/// one; both shifts must be known, and the bases of the second locus. Empty if its flanks do not
/// reach so far.
std::string second_allele(const ComparedLocus& second, const LocusPair& pair);

}  // namespace vorlan_tools
