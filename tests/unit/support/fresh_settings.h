// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <gtest/gtest.h>

#include "config/settings.h"
#include "search/csearchcontroller.h"

namespace vorlan {

/// Settings at their defaults and thresholds not yet computed, before each test.
class FreshSettings : public ::testing::Test {
 protected:
  FreshSettings() {
    init_param();
    global_input_filename.clear();
    global_output_filename.clear();
    CSearchController::reset_minimum_arrays();
  }

  /// Searches for this unit length only.
  static void search_only(unsigned unit_length) {
    global_min_unit_length = global_max_unit_length = unit_length;
  }

  /// Accepts repeats of every unit length from this score on.
  static void accept_from_score(int score) {
    global_min_score = score;
    global_min_score_bx = 0.0F;
  }
};

}  // namespace vorlan
