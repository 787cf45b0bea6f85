// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// The report: the legend at its head, and a block for each sequence with an entry for each repeat
/// (`CSearchController::report_SATList`, `Csat::report_sat`). The format is
/// `global_print_sat_mode`. Positions in reports count from 1 and include both ends; lengths are in
/// bases.

#pragma once

#include <cstdio>

namespace vorlan {

/// Writes the legend of the columns, each line behind `prefix`, or, in the one-per-line format, the
/// line of column names, without prefix since it is a row of the table. GFF and FASTA have neither.
void print_output_format(std::FILE* stream, const char* prefix);

}  // namespace vorlan
