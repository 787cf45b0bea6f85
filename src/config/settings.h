// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// The settings of a run: one set for the process, written only by config/ before the first record
/// is read, and only read from then on. Each has the default that `init_param` gives it.

#pragma once

#include <limits>
#include <string>

namespace vorlan {

/// Values of `global_search_mode`.
enum SearchMode : int { kExact = 0, kExtendExact = 1, kImperfect = 2 };
/// Values of `global_N_and_perfection_mode`.
enum NPerfectionMode : int { kNsAsMismatch = 0, kNsAsNeutral = 1, kNsAsMatch = 2 };
/// Values of `global_report_unit_mode`.
enum ReportUnitMode : int { kUnitAsIs = 0, kUnitMinimal = 1, kUnitMinimalBothStrands = 2 };
/// Values of `global_print_sat_seq_mode`.
enum PrintSequenceMode : int { kNoSequence = 0, kSequence = 1, kAlignment = 2 };
/// Values of `global_print_sat_mode`. The old format is written by the report, but the command
/// line does not offer it.
enum OutputFormat : int {
  kFormatVorlan = 0,
  kFormatExtended = 1,
  kFormatGff = 2,
  kFormatOnePerLine = 3,
  kFormatFasta = 4,
  kFormatOld = 5
};

/// `global_maximum_scorereduction`: no limit. `global_sequence_to`: no last sequence.
inline constexpr int kNoScoreLimit = std::numeric_limits<int>::max();
inline constexpr int kNoLastSequence = -1;

extern int global_sequence_from;  ///< First record to search, counted from 1; compared as unsigned.
extern int global_sequence_to;    ///< Last record to search; compared as unsigned.
extern int global_search_mode;
extern int global_N_and_perfection_mode;
extern int global_report_unit_mode;
extern int global_print_sat_seq_mode;
extern int global_print_sat_mode;
extern bool global_sequenceInfoAsComment;
extern int global_flanking;                 ///< Bases shown on either side of a repeat.
extern int global_maximum_recursion_depth;  ///< Edits that the look-ahead explores in a row.
extern int global_maximum_scorereduction;   ///< Largest drop below the best score.
extern unsigned global_min_unit_length;     ///< Bases.
extern unsigned global_max_unit_length;     ///< Bases.
extern bool global_treat_Ns_as_missense;    ///< N is a mismatch, not neutral with score 0.
extern int global_Ns_allowed_in_a_row;      ///< Longest N run that a repeat may bridge.
extern int global_min_score;                ///< Score thresholds: see search/thresholds.h.
extern int global_min_score_a;
extern float global_min_score_bx;
extern int global_min_length;  ///< Length thresholds, in bases: see search/thresholds.h.
extern int global_min_length_a;
extern float global_min_length_bx;
extern float global_min_perfection;       ///< Per cent, inclusive.
extern float global_max_perfection;       ///< Per cent, inclusive.
extern int global_prefer_longer_repeat;   ///< 1: of equal scores the longer alignment; 0: shorter.
extern int global_mismatch_score;         ///< A match scores +1.
extern int global_indel_score;            ///< Score of one inserted or deleted base.
extern bool global_mask_repeats;          ///< Write INPUT.masked.
extern bool global_remove_mostly_hidden;  ///< Overlap removal.

extern std::string global_input_filename;
extern std::string global_output_filename;  ///< Empty: the report goes to standard output.

/// Sets every setting but the two file names to its default. The command line shows these values
/// as its defaults, so they stand nowhere else.
void init_param();

}  // namespace vorlan
