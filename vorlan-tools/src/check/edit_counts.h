// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string_view>

#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// What the numbers of an entry follow from.
struct EditCounts {
  std::int64_t mismatches = 0;
  std::int64_t insertions = 0;
  std::int64_t deletions = 0;
  std::int64_t ns = 0;  ///< bridged ones

  std::int64_t edits() const { return mismatches + insertions + deletions; }
};

/// Whether an N is crossed without cost, up to a number of them in a row; else it is a residue like
/// any other, which no unit holds.
bool bridges_ns(const Settings& settings);

/// Matches beyond the first copy of the unit earn 1, edits cost their penalty, bridged Ns nothing.
std::int64_t score_of(const EditCounts& counts, std::int64_t bases, std::int64_t unit_length,
                      const Settings& settings);

/// A percentage, computed in single precision; `length` is the normalised length (BP). Ns count as
/// the settings say.
float perfection_of(const EditCounts& counts, std::int64_t length, const Settings& settings);

/// The least value that a threshold allows for a unit length. The head shows six digits of the
/// slope; the smallest slope that is shown so is taken.
std::int64_t least_allowed(const ThresholdRule& rule, std::int64_t unit_length);

/// Bounds of a percentage that the head shows with six digits.
double lowest_meant(float shown);
double highest_meant(float shown);

}  // namespace vorlan_tools
