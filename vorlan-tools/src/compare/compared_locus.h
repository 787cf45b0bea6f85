// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/report_reader.h"

namespace vorlan_tools {

/// A repeat of a report, as far as comparisons need it.
struct ComparedLocus {
  std::size_t sequence = 0;  ///< its number in the report, from 0
  std::int64_t start = 0;    ///< from 0
  std::int64_t end = 0;      ///< excluded
  Thousandths copies = 0;
  std::string unit;  ///< the smallest of its rotations on both strands
  std::string left;  ///< flanks next to the repeat, shorter at the ends of a sequence
  std::string right;
  std::string bases;  ///< empty if the report does not show them

  std::int64_t length() const { return end - start; }
};

/// A sequence of a report.
struct ComparedSequence {
  std::string name;
  std::optional<std::int64_t> length;
};

/// All repeats of a report in memory, by sequence, then start, then end, then unit.
struct ComparedReport {
  std::vector<ComparedSequence> sequences;
  std::vector<ComparedLocus> loci;
};

/// Reads a report ("-": standard input). `flank`: how many bases of each flank are kept; 0 for
/// none. Throws DataError if the report shows no units, or flanks shorter than that.
ComparedReport read_compared_report(const std::string& name, std::int64_t flank);

}  // namespace vorlan_tools
