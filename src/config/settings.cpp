// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/settings.h"

namespace vorlan {

int global_sequence_from;
int global_sequence_to;
int global_search_mode;
int global_N_and_perfection_mode;
int global_report_unit_mode;
int global_print_sat_seq_mode;
int global_print_sat_mode;
bool global_sequenceInfoAsComment;
int global_flanking;
int global_maximum_recursion_depth;
int global_maximum_scorereduction;
unsigned global_min_unit_length;
unsigned global_max_unit_length;
bool global_treat_Ns_as_missense;
int global_Ns_allowed_in_a_row;
int global_min_score;
int global_min_score_a;
float global_min_score_bx;
int global_min_length;
int global_min_length_a;
float global_min_length_bx;
float global_min_perfection;
float global_max_perfection;
int global_prefer_longer_repeat;
int global_mismatch_score;
int global_indel_score;
bool global_mask_repeats;
bool global_remove_mostly_hidden;

std::string global_input_filename;
std::string global_output_filename;

void init_param() {
  global_sequence_from = 1;
  global_sequence_to = kNoLastSequence;
  global_search_mode = kImperfect;
  global_N_and_perfection_mode = kNsAsMismatch;
  global_report_unit_mode = kUnitMinimalBothStrands;
  global_print_sat_seq_mode = kAlignment;
  global_print_sat_mode = kFormatExtended;
  global_sequenceInfoAsComment = false;
  global_flanking = 0;
  global_maximum_recursion_depth = 5;
  global_maximum_scorereduction = kNoScoreLimit;
  global_min_unit_length = 1;
  global_max_unit_length = 10;
  global_treat_Ns_as_missense = false;
  global_Ns_allowed_in_a_row = 2;
  global_min_score = 6;
  global_min_score_a = 0;
  global_min_score_bx = 1.0F;
  global_min_length = 0;
  global_min_length_a = 0;
  global_min_length_bx = 0.0F;
  global_min_perfection = 0.0F;
  global_max_perfection = 100.0F;
  global_prefer_longer_repeat = 1;
  global_mismatch_score = -5;
  global_indel_score = -5;
  global_mask_repeats = false;
  global_remove_mostly_hidden = true;
}

}  // namespace vorlan
