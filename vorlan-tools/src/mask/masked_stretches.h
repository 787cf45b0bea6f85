// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <unordered_set>

#include "report/report_reader.h"

namespace vorlan_tools {

/// Bases that one or more overlapping repeats cover; 1-based, inclusive.
struct Stretch {
  std::int64_t begin = std::numeric_limits<std::int64_t>::max();
  std::int64_t end = std::numeric_limits<std::int64_t>::max();
};

/// The stretches of a report, for the records of the FASTA file that it was made from, in the order
/// of both. Streams: one repeat is held at a time.
///
/// Reports of formats 0 and 1, and of 2 and 3 with comments, tell each sequence, also those without
/// repeats: the n-th is the n-th record of the range that was searched, and its header and length
/// must fit. Others tell names only; then names must differ.
class MaskedStretches {
 public:
  /// Opens a report; "-" is standard input. Throws DataError.
  explicit MaskedStretches(const std::string& report);

  /// Goes to the record with this number in the FASTA file, from 1, and this header. Throws
  /// DataError if the report does not fit.
  void begin_record(std::uint64_t number, const std::string& header);

  /// The next stretch of the record; behind the last one a stretch that lies behind all bases.
  /// Throws LineError if the repeats are not in the order of a report.
  Stretch next();

  /// The record ends and has that many bases. Throws DataError if the report has others.
  void end_record(std::int64_t bases);

  /// The FASTA file has no more records. Throws DataError if the report has.
  void finish();

 private:
  [[noreturn]] void fail(const std::string& what) const;
  bool is_next_sequence(std::uint64_t number, const std::string& header);
  void take_repeat(Stretch& stretch);

  ReportReader report_;
  ReportReader::Item item_;  ///< where the report stands
  bool tells_headers_;
  std::uint64_t first_number_;
  std::unordered_set<std::string> used_names_;
  bool is_in_record_ = false;
  std::string header_;                  ///< of the record
  std::optional<std::int64_t> length_;  ///< that the report states for it
  std::int64_t last_begin_ = 0;         ///< of a repeat in the record
  std::int64_t last_end_ = 0;           ///< the largest
};

}  // namespace vorlan_tools
