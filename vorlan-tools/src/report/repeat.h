// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vorlan_tools {

/// A sequence of the input, as far as its report tells about it.
struct Sequence {
  std::uint64_t line = 0;    ///< where the report first mentions the sequence
  std::uint64_t number = 0;  ///< from 1, in the order of the report
  std::string name;          ///< any bytes but blanks and line feeds; may be empty
  std::optional<std::string>
      header;  ///< the whole header line; formats 0, 1, and 2 and 3 with comments
  std::optional<std::int64_t> length;  ///< in bases; stated where the header is
};

/// A percentage or a number of copies as printed with three decimals.
using Thousandths = std::int64_t;

/// One repeat as its report states it. Coordinates are 1-based and inclusive, as printed. What the
/// format or the settings leave out is absent, or empty for texts. Nothing here is computed, but
/// for `copies` and `length`: each follows from what is printed in every format that lacks one of
/// them.
struct Repeat {
  std::uint64_t line = 0;       ///< of the entry
  std::uint64_t last_line = 0;  ///< of the alignment or bases that belong to the entry
  std::string entry;            ///< the entry as it stands

  std::int64_t unit_length = 0;
  std::int64_t start = 0;
  std::int64_t end = 0;
  std::int64_t bases = 0;  ///< bp; format 2: computed from start and end
  std::optional<std::int64_t>
      length;              ///< BP; formats 3 and 4: bp - insertions + deletions; absent in 2
  Thousandths copies = 0;  ///< formats 0 and 1: length / unit length in single precision
  std::optional<std::int64_t> score;  ///< absent in format 2
  Thousandths perfection = 0;
  std::optional<std::int64_t> mismatches;  ///< these three: absent in formats 0 and 2
  std::optional<std::int64_t> insertions;
  std::optional<std::int64_t> deletions;
  std::optional<std::int64_t> ns;  ///< formats 1 and 3, unless an N is a residue like any other
  std::string unit;                ///< empty in format 4 and for "." in format 2

  std::optional<std::int64_t> offset;  ///< format 4: of the repeat in its fragment, from 1
  std::optional<Thousandths>
      perfection_of_score;  ///< format 2: the score column, two decimals, as thousandths
  std::string events;       ///< format 1: what follows "Missense: "
  std::string left_flank;
  std::string right_flank;
  std::string residues;  ///< the bases of the repeat, where they are printed without alignment

  /// The alignment, without flanks: three lines of equal length, or all empty.
  std::string sequence_line;
  std::string match_line;
  std::string unit_line;

  bool has_alignment() const { return !sequence_line.empty(); }
};

}  // namespace vorlan_tools
