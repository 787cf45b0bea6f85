// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "output/bases.h"
#include "search/csat.h"

namespace vorlan {

/// The three lines that show a repeat against its perfect form, of equal length.
struct AlignmentDisplay {
  /// Requires that the events of `sat` are sorted. Flanks, when there are any, are set off with
  /// ':'.
  AlignmentDisplay(const Csat& sat, const FlankedRepeat& bases);

  faststring sequence_line;  ///< The bases; '-' where the sequence lacks a base of the unit.
  faststring match_line;     ///< '|' for a match, '*' for an N that was bridged, else a blank.
  faststring unit_line;      ///< The unit, again and again; '-' at an insertion.

 private:
  void reserve(std::uint32_t columns);
  void add_column(char base, char match, char unit_base);
  void add_flank(std::string_view flank);
  void add_repeat(const Csat& sat);
};

}  // namespace vorlan
