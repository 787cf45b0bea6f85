// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// Puts reports of parts of one input together to the report of the whole, byte by byte what one
/// run would have written.
///
///     part 1   # Results .. 1 - 6            merged   # Results .. 1 - last sequence
///              >a ...                                 >a ...
///              ## Finished successfully. ##           >b ...
///     part 2   # Results .. 7 - last sequence         ## Finished successfully. ##
///              >b ...
///              ## Finished successfully. ##
///
/// Parts are either ranges of records of one input (--firstSeq, --lastSeq), which must follow each
/// other without a gap, or slices: whole runs over pieces of the input, cut between records. The
/// head of the first part is that of the whole but for the names and the range. A FASTA report
/// has no closing line: that such a part is complete cannot be seen.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorlan_tools {

struct MergeOptions {
  std::vector<std::string> parts;         ///< in the order of the records; "-" is standard input
  std::string output = "-";               ///< compressed with bgzip if its name says so
  std::optional<std::string> input_name;  ///< what the head shall show; absent: what all parts show
  bool are_slices = false;
};

/// Throws DataError if a part does not fit the others or is not complete, UsageError if the output
/// is a part. Streams: the size of the parts does not matter.
void merge_reports(const MergeOptions& options);

/// The same for the files that --maskX makes: checks that each is one, and puts them together.
void merge_masked(const MergeOptions& options);

}  // namespace vorlan_tools
