// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "run/record_scanner.h"

namespace vorlan_tools {

/// A piece of the input that holds whole records, in a file of its own.
struct Slice {
  std::size_t index = 0;  ///< from 0, in the order of the input
  std::string stem;       ///< the files of this slice are named STEM.fa, STEM.report and so on
  std::uint64_t records_before = 0;
  std::uint64_t line_ends_before = 0;
  TextCounts counts;
  std::string digest;                 ///< of its bytes
  std::optional<double> input_share;  ///< how much of the input this is, from 0 to 1
};

/// The records to be searched, as --firstSeq and --lastSeq name them: from 1, inclusive; without
/// `last` up to the last one.
struct RecordRange {
  std::uint32_t first = 1;
  std::optional<std::uint32_t> last;

  bool operator==(const RecordRange&) const = default;
};

/// The part of `whole` that lies in `slice`, counted from its first record. If nothing lies in it:
/// from the largest number on, which no record has.
RecordRange range_within(const RecordRange& whole, const Slice& slice);

}  // namespace vorlan_tools
