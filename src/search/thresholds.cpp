// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/thresholds.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "config/settings.h"

namespace vorlan {
namespace {

constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();

int saturated(float value) {
  // -2^31 and 2^31 are exact in single precision; kLargest is not.
  if (value >= -static_cast<float>(kSmallest)) return kLargest;
  if (value <= static_cast<float>(kSmallest)) return kSmallest;
  return static_cast<int>(value);
}

}  // namespace

UnitLengthThresholds UnitLengthThresholds::of_scores() {
  return {global_min_score, global_min_score_a, global_min_score_bx};
}

UnitLengthThresholds UnitLengthThresholds::of_lengths() {
  return {global_min_length, global_min_length_a, global_min_length_bx};
}

UnitLengthThresholds UnitLengthThresholds::at_least_unit_length(int constant) {
  UnitLengthThresholds thresholds(constant, 0, 1.0F);
  thresholds.is_unit_length_ = true;
  return thresholds;
}

int UnitLengthThresholds::operator[](unsigned unit_length) const {
  if (is_unit_length_) {
    return static_cast<int>(
        std::clamp(unit_length, static_cast<unsigned>(constant_), static_cast<unsigned>(kLargest)));
  }
  const float product = static_cast<float>(unit_length) * slope_;
  const float sum = static_cast<float>(intercept_) + product;
  return std::max(constant_, saturated(std::ceil(sum)));
}

}  // namespace vorlan
