// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <gtest/gtest.h>

#include "config/settings.h"

namespace vorlan {

/// Expects that every setting but the file names has the default that users know.
inline void expect_default_settings() {
  EXPECT_EQ(global_sequence_from, 1);
  EXPECT_EQ(global_sequence_to, -1);
  EXPECT_EQ(global_search_mode, 2);
  EXPECT_EQ(global_N_and_perfection_mode, 0);
  EXPECT_EQ(global_report_unit_mode, 2);
  EXPECT_EQ(global_print_sat_seq_mode, 2);
  EXPECT_EQ(global_print_sat_mode, 1);
  EXPECT_FALSE(global_sequenceInfoAsComment);
  EXPECT_EQ(global_flanking, 0);
  EXPECT_EQ(global_maximum_recursion_depth, 5);
  EXPECT_EQ(global_maximum_scorereduction, 2147483647);
  EXPECT_EQ(global_min_unit_length, 1U);
  EXPECT_EQ(global_max_unit_length, 10U);
  EXPECT_FALSE(global_treat_Ns_as_missense);
  EXPECT_EQ(global_Ns_allowed_in_a_row, 2);
  EXPECT_EQ(global_min_score, 6);
  EXPECT_EQ(global_min_score_a, 0);
  EXPECT_EQ(global_min_score_bx, 1.0F);
  EXPECT_EQ(global_min_length, 0);
  EXPECT_EQ(global_min_length_a, 0);
  EXPECT_EQ(global_min_length_bx, 0.0F);
  EXPECT_EQ(global_min_perfection, 0.0F);
  EXPECT_EQ(global_max_perfection, 100.0F);
  EXPECT_EQ(global_prefer_longer_repeat, 1);
  EXPECT_EQ(global_mismatch_score, -5);
  EXPECT_EQ(global_indel_score, -5);
  EXPECT_FALSE(global_mask_repeats);
  EXPECT_TRUE(global_remove_mostly_hidden);
}

}  // namespace vorlan
