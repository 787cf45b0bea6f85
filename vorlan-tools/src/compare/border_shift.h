// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "compare/compared_locus.h"

namespace vorlan_tools {

/// A locus as it is read on one strand, seen from its borders: each text begins at a border.
struct BorderView {
  std::string left_outside;  ///< the left flank from the repeat outwards
  std::string left_inside;   ///< the first bases of the repeat
  std::string right_outside;
  std::string right_inside;  ///< the last bases of the repeat, from the border inwards
};

/// `reach`: how many bases of the repeat are kept on each side.
BorderView view_borders(const ComparedLocus& locus, bool is_reverse, std::size_t reach);

/// Where the border of one locus lies at another.
struct BorderShift {
  std::int64_t bases = 0;   ///< outwards from the border of the other locus; negative: within it
  bool is_certain = false;  ///< few bases differ, so that a change of the length can rest on it
};

/// How far outwards from the border of the second locus the border of the first one lies, by the
/// flank of the first one. Absent if fewer than three of four bases fit, over at least three fifths
/// of the flank, wherever it is laid.
std::optional<BorderShift> border_shift(const std::string& flank, const std::string& outside,
                                        const std::string& inside);

/// Whether the flank fits at distance `instead` no worse than at `shift`, where it does not fit
/// everywhere.
bool fits_elsewhere(const std::string& flank, const std::string& outside, const std::string& inside,
                    std::int64_t shift, std::int64_t instead);

}  // namespace vorlan_tools
