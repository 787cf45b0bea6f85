// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

namespace vorlan_tools {

/// What `compare` has been asked for.
struct Comparison {
  std::string first;
  std::string second;
  std::string output = "-";
  std::int64_t flank = 0;  ///< bases by which loci are found again; 0: by position
  bool shows_same = false;
  bool is_vcf = false;
};

/// Writes what differs between the loci of two reports: a table, or changed loci as a VCF. Counts
/// of same, changed, lost and new loci go to standard error. Memory grows with both reports. Throws
/// DataError, UsageError.
void compare_reports(const Comparison& comparison);

}  // namespace vorlan_tools
