// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/settings.h"

#include "support/default_settings.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using Settings = FreshSettings;

TEST_F(Settings, HaveTheirDefaultsAfterInitialisation) { expect_default_settings(); }

TEST_F(Settings, InitialisationUndoesEveryChange) {
  for (int* number :
       {&global_sequence_from, &global_sequence_to, &global_search_mode,
        &global_N_and_perfection_mode, &global_report_unit_mode, &global_print_sat_seq_mode,
        &global_print_sat_mode, &global_flanking, &global_maximum_recursion_depth,
        &global_maximum_scorereduction, &global_Ns_allowed_in_a_row, &global_min_score,
        &global_min_score_a, &global_min_length, &global_min_length_a, &global_prefer_longer_repeat,
        &global_mismatch_score, &global_indel_score}) {
    *number = 77;
  }
  for (float* number : {&global_min_score_bx, &global_min_length_bx, &global_min_perfection,
                        &global_max_perfection}) {
    *number = 77.0F;
  }
  for (bool* flag : {&global_sequenceInfoAsComment, &global_treat_Ns_as_missense,
                     &global_mask_repeats, &global_remove_mostly_hidden}) {
    *flag = !*flag;
  }
  global_min_unit_length = global_max_unit_length = 77;
  init_param();
  expect_default_settings();
}

TEST_F(Settings, InitialisationLeavesTheFileNamesAlone) {
  global_input_filename = "in.fa";
  global_output_filename = "out.txt";
  init_param();
  EXPECT_EQ(global_input_filename, "in.fa");
  EXPECT_EQ(global_output_filename, "out.txt");
}

}  // namespace
}  // namespace vorlan
