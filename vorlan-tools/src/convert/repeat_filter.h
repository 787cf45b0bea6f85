// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

#include "report/repeat.h"

namespace vorlan_tools {

/// Which repeats are written. All bounds are inclusive.
struct RepeatFilter {
  std::int64_t min_unit_length = 1;
  std::int64_t max_unit_length = INT64_MAX;
  Thousandths min_perfection = INT64_MIN;
  std::int64_t min_length = 0;  ///< in bases of the sequence
  Thousandths min_copies = 0;

  bool keeps(const Repeat& repeat) const {
    return repeat.unit_length >= min_unit_length && repeat.unit_length <= max_unit_length &&
           repeat.perfection >= min_perfection && repeat.bases >= min_length &&
           repeat.copies >= min_copies;
  }
};

/// "3" is one unit length, "2-6" all from 2 to 6, "7-" all from 7. Throws UsageError for other
/// texts.
void set_unit_lengths(RepeatFilter& filter, const std::string& text);

/// A number such as 95 or 99.5 as thousandths, rounded; the comparison is with what the report
/// prints. Throws UsageError, naming `option`, if the number is negative, not finite or above a
/// million million.
Thousandths to_thousandths(double number, const std::string& option);

}  // namespace vorlan_tools
