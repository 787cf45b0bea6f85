// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/edit_counts.h"

#include <algorithm>
#include <cmath>

namespace vorlan_tools {

namespace {

/// Half a unit of the sixth digit, relative to a number whose first digit is 1.
constexpr double kShownPrecision = 5e-6;

}  // namespace

bool bridges_ns(const Settings& settings) {
  return !settings.ns_as_missense && settings.ns_in_a_row > 0;
}

std::int64_t score_of(const EditCounts& counts, std::int64_t bases, std::int64_t unit_length,
                      const Settings& settings) {
  const std::int64_t matches = bases - counts.insertions - counts.mismatches - counts.ns;
  return matches - unit_length + counts.mismatches * settings.mismatch_score.value_or(0) +
         (counts.insertions + counts.deletions) * settings.indel_score.value_or(0);
}

float perfection_of(const EditCounts& counts, std::int64_t length, const Settings& settings) {
  std::int64_t good = length - counts.edits();
  std::int64_t whole = length;
  if (settings.n_perfection_mode != NPerfectionMode::kAsMatch) good -= counts.ns;
  if (settings.n_perfection_mode == NPerfectionMode::kAsNeutral) whole -= counts.ns;
  const float share = static_cast<float>(good) / static_cast<float>(whole);
  return share * 100.0F;
}

std::int64_t least_allowed(const ThresholdRule& rule, std::int64_t unit_length) {
  const auto slope = static_cast<float>(lowest_meant(rule.slope));
  const float product = static_cast<float>(unit_length) * slope;
  const float sum = static_cast<float>(rule.intercept) + product;
  constexpr float kLimit = 2147483648.0F;
  if (!(std::abs(sum) < kLimit)) return sum > 0 ? INT32_MAX : rule.constant;
  return std::max<std::int64_t>(rule.constant, static_cast<std::int64_t>(std::ceil(sum)));
}

double lowest_meant(float shown) {
  return shown - std::abs(static_cast<double>(shown)) * kShownPrecision;
}

double highest_meant(float shown) {
  return shown + std::abs(static_cast<double>(shown)) * kShownPrecision;
}

}  // namespace vorlan_tools
