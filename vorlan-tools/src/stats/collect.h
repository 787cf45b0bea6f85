// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "io/rereadable_input.h"
#include "report/head.h"
#include "stats/genome_stats.h"

namespace vorlan_tools {

/// A genome whose numbers are wanted.
struct GenomeRequest {
  std::string fasta;  ///< the input of the run or its index; empty: not at hand
  std::string name;   ///< how the genome is called; empty: after the input that the report names
};

/// Reads a report, of any format, once and counts. Memory: the sequences, the units, and a bounded
/// number of windows. Throws DataError, also if the FASTA file is not the one of the report.
///
/// Without FASTA file, the length of a sequence is known where the report states it. Reports that
/// name a sequence only in the rows of its repeats do not show those without repeats; a repeat
/// that begins before the one above it begins another sequence of the same name there.
GenomeStats collect_stats(const RereadableInput& report, const GenomeRequest& request);

/// The name for a genome: that of `input` without folder and without the endings of compressed
/// FASTA files; from `report` if the input was no file with a name.
std::string genome_name(const std::string& input, const std::string& report);

/// The settings of the search that a head states, as pairs of a label and a value.
std::vector<std::pair<std::string, std::string>> settings_of(const Head& head);

/// The text with bytes that are no UTF-8 replaced by U+FFFD.
std::string as_utf8(const std::string& text);

}  // namespace vorlan_tools
