// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/line_reader.h"
#include "report/settings.h"

namespace vorlan_tools {

/// The head of a report: all lines before its body, found by position and never by a leading '#',
/// since names of sequences and files are any bytes and may look like any line of a report.
///
///     # Results computed with:                          fixed
///     #    Vorlan, version 3.3.10
///     # Parameter settings used in this search:
///     # Input file name: ...                            as typed, may go over several lines
///     # Output file name: ...                           only if a report was named; likewise
///     #    Sequence range to process: ...
///     ... one line for each setting ...
///     # / # Columns in lines ... / # Column  1: ... / #     formats 0 and 1: the legend
///     seq-name ...                                      format 3: the names of the columns
///
/// What follows belongs to the body. A report of formats 0, 1, 2 and 3 ends with closing_line();
/// format 4 has none, so that nothing in it tells whether it is complete.
struct Head {
  /// All lines as they stand, without line feeds.
  std::vector<std::string> lines;
  std::string version;
  std::string input_name;                  ///< may hold line feeds
  std::optional<std::string> output_name;  ///< absent: the report went to standard output
  Settings settings;

  /// Half-open ranges of indices into `lines`: where the names and the range of sequences stand.
  /// The range of the output name is empty, and lies before the sequence range, if no report was
  /// named.
  std::size_t input_line = 0;
  std::size_t output_line = 0;
  std::size_t range_line = 0;

  /// The very last line of a complete report of this format, without its line feed; empty for
  /// format 4.
  std::string_view closing_line() const;

  /// The text of the head, each line with its line feed, but with another input name, report name
  /// (none: without that line) and range of sequences (`last` absent: "last sequence").
  std::string text_for(std::string_view input, const std::optional<std::string>& output,
                       std::uint32_t first, const std::optional<std::uint32_t>& last) const;

  /// Whether both were written by the same version with the same settings, the range of sequences
  /// aside.
  bool has_same_settings(const Head& other) const;
};

/// Reads the head and leaves `lines` at the first line of the body. Throws LineError if a line is
/// not what a head holds in its place, DataError if the input ends before.
Head read_head(LineReader& lines);

}  // namespace vorlan_tools
