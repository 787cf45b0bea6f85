// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/slice.h"

#include <limits>

namespace vorlan_tools {

RecordRange range_within(const RecordRange& whole, const Slice& slice) {
  const std::uint64_t before = slice.records_before;
  const std::uint64_t records = slice.counts.records;
  RecordRange within;
  if (whole.first > before + records || (whole.last && *whole.last <= before)) {
    // A slice without a record is malformed: it is read whatever the range is.
    within.first = std::numeric_limits<std::uint32_t>::max();
    return within;
  }
  if (whole.first > before) within.first = static_cast<std::uint32_t>(whole.first - before);
  if (whole.last && *whole.last < before + records) {
    within.last = static_cast<std::uint32_t>(*whole.last - before);
  }
  return within;
}

}  // namespace vorlan_tools
