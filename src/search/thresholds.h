// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// The smallest score, or the smallest repeat length in bases, that a repeat needs to be kept: a
/// number for each unit length. Indexed like an array, but computed, so that a very large largest
/// unit length costs no memory.
class UnitLengthThresholds {
 public:
  /// max(constant, ceil(intercept + slope * unit length)), saturated to 32 bits. Each operation is
  /// rounded to single precision: in double precision 1.1 * 10 would round up to 12.
  UnitLengthThresholds(int constant, int intercept, float slope)
      : constant_(constant), intercept_(intercept), slope_(slope) {}

  /// The smallest scores and lengths of the settings.
  static UnitLengthThresholds of_scores();
  static UnitLengthThresholds of_lengths();

  /// max(constant, unit length), exact for every unit length.
  static UnitLengthThresholds at_least_unit_length(int constant);

  int operator[](unsigned unit_length) const;

 private:
  int constant_;
  int intercept_;
  float slope_;
  bool is_unit_length_ = false;
};

}  // namespace vorlan
