// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorlan_tools {

/// A place at which copies are counted: a bracket on a reference, and what is counted in it.
struct Locus {
  std::string sequence;    ///< of the reference
  std::int64_t start = 0;  ///< of the bracket, from 0
  std::int64_t end = 0;    ///< excluded
  std::string name;
  std::vector<std::string> motifs;  ///< A C G T; on the strand of the reference; not empty
  std::int64_t uncounted =
      0;  ///< bases of every allele that the convention of the locus leaves out
  std::uint64_t line = 0;

  /// Bases of one copy.
  std::int64_t period() const { return static_cast<std::int64_t>(motifs.front().size()); }
};

/// Reads a BED file, "-" for standard input. Columns, separated by tabs: sequence, start, end,
/// name, motifs (separated by commas; the first one has the length of a copy), and, if there, the
/// number of bases that do not count. Or four columns as TRGT takes them: sequence, start, end and
/// "ID=name;MOTIFS=motifs;STRUC=...". Empty lines and those that begin with '#', "track" or
/// "browser" are passed over. Throws LineError, and DataError if no locus is there.
std::vector<Locus> read_loci(const std::string& file);

}  // namespace vorlan_tools
