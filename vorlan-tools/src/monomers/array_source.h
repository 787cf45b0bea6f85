// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "convert/repeat_filter.h"
#include "io/line_reader.h"
#include "io/rereadable_input.h"
#include "report/report_reader.h"

namespace vorlan_tools {

/// Where an array lies, and a first guess of its unit.
struct Array {
  std::string sequence;
  std::int64_t start = 0;  ///< from 0
  std::int64_t end = 0;    ///< excluded
  std::string unit;        ///< A C G T; in any phase, on either strand
  std::uint64_t line = 0;  ///< of the input
};

/// The arrays of a report, or of a BED file with the unit in its fourth column, as `convert -t bed`
/// writes it; told apart by the first line. Constant memory.
class ArraySource {
 public:
  /// `name` "-" is standard input. Throws DataError.
  ArraySource(const std::string& name, const RepeatFilter& filter);

  /// The next array that the filter keeps; false behind the last one. Of a BED file the filter
  /// knows length, unit length and copies only. Throws LineError.
  bool next(Array& array);

  const std::string& name() const { return input_.name(); }

 private:
  bool next_of_report(Array& array);
  bool next_of_bed(Array& array);

  RereadableInput input_;
  RepeatFilter filter_;
  std::unique_ptr<ReportReader> report_;
  std::unique_ptr<LineReader> bed_;
};

}  // namespace vorlan_tools
