// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// One search on all cores: the report is byte by byte that of one vorlan process.
///
/// The input is cut between records into slices, each a file of its own (run/record_scanner.h says
/// where, and why nothing is lost). A process searches each slice, several at a time; the reports
/// are put together in order as they finish (merge/).
///
///     input   [ s1 s2 | s3 | s4 s5 s6 ]        '|': a cut, behind at least so many bytes
///               |       |    |
///     vorlan  000001  000002  000003           two at a time, say
///               |       |    |
///     report  head, bodies 1, 2, 3, closing line
///
/// The head comes from a run with the same settings on a record without a residue, with the names
/// put back. What a slice cannot know is put right: the range of records, and the line of a
/// malformed record.
///
/// The report gets its name only when it is whole. What was finished before a run was ended, by
/// whatever, stays in a folder beside it and is taken up by --resume.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "run/destructive_calls.h"
#include "run/signals.h"

namespace vorlan_tools {

struct RunOptions {
  std::string vorlan;                 ///< absolute path of the program
  std::vector<std::string> settings;  ///< options of vorlan but those that choose records
  std::vector<std::string> range;     ///< options that choose records
  std::size_t jobs = 1;               ///< processes at a time
  std::uint64_t slice_size = 1;       ///< bytes at least, but for the last slice
  bool resumes = false;
  bool is_quiet = false;
};

/// Runs vorlan on one input and returns 0, or the status with which vorlan ended: 231 at a
/// malformed record, when the report holds what comes before it. Throws DataError, and UsageError
/// for a
/// --resume that fits nothing. Ends the process if a signal asks for that. Memory: a few blocks of
/// the input, whatever its size.
int run_vorlan(const RunFiles& files, const RunOptions& options, Signals& signals);

}  // namespace vorlan_tools
