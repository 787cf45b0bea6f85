// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

namespace vorlan_tools {

/// What one run reads and writes, as named on the command line.
struct RunFiles {
  std::string input;   ///< "-": standard input
  std::string report;  ///< "-": standard output
  std::string masked;  ///< empty: none is asked for
};

/// Throws UsageError if one of the runs would overwrite something that nobody wants to lose: an
/// input, by whatever name or link, as report or as masked file; one output by another; an existing
/// FASTA file, which is no report of vorlan, by a report.
void refuse_destructive_calls(const std::vector<RunFiles>& runs);

}  // namespace vorlan_tools
