// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/command_line.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "config/command_line_options.h"
#include "config/number_text.h"
#include "config/settings.h"

namespace vorlan {
namespace {

constexpr int kGoOn = 0;
constexpr int kRejected = -1;
constexpr int kUnknownChoice = -2;

/// The smallest of the two penalties that the scoring allows: an edit must cost more than the match
/// next to it earns, or extensions would never end.
constexpr int kLargestPenaltyScore = -2;

int reject(const char* message) {
  std::fputs(message, stderr);
  return kRejected;
}

// With three or more names none is taken; the run then fails to open an input without a name.
int take_file_names(CommandLineOptions& options, const char* program_name) {
  const std::vector<std::string>& names = options.iofiles.getValue();
  if (names.empty()) {
    std::fprintf(stderr,
                 "Error: No input file has been specified. Type %s --help for more information.\n",
                 program_name);
    return kRejected;
  }
  if (names.size() <= 2) global_input_filename = names[0];
  if (names.size() == 2) global_output_filename = names[1];
  return kGoOn;
}

int search_mode_of(const std::string& name) {
  if (name == "exact") return kExact;
  if (name == "extendExact") return kExtendExact;
  return kImperfect;
}

void copy_unchecked_values(CommandLineOptions& options) {
  global_sequence_from = options.firstSeq.getValue();
  global_sequence_to = options.lastSeq.getValue();
  global_maximum_recursion_depth = options.recursion.getValue();
  global_maximum_scorereduction = options.maximum_score_reduction.getValue();
  global_Ns_allowed_in_a_row = options.succN.getValue();
  global_treat_Ns_as_missense = options.NsAsMissense.getValue();
  global_remove_mostly_hidden = options.dontRemoveMostlyOverlapping.getValue();
  global_min_unit_length = options.minUnitLen.getValue();
  global_max_unit_length = options.maxUnitLen.getValue();
  global_min_length = options.minLength.getValue();
  global_min_length_a = options.minLength_a.getValue();
  global_min_length_bx = options.minLength_b.getValue();
  global_min_score = options.minScore.getValue();
  global_min_score_a = options.minScore_a.getValue();
  global_min_score_bx = options.minScore_b.getValue();
  global_min_perfection = options.minPerfection.getValue();
  global_max_perfection = options.maxPerfection.getValue();
  global_mismatch_score = options.mismatchScore.getValue();
  global_indel_score = options.indelScore.getValue();
  global_prefer_longer_repeat = options.preferShorterRepeats.getValue() ? 0 : 1;
  global_flanking = options.flanking.getValue();
  global_mask_repeats = options.maskX.getValue();
  global_search_mode = search_mode_of(options.searchMode.getValue());
  global_sequenceInfoAsComment = options.sequenceInfoAsComment.getValue();
}

/// One of the options whose value is a number that stands for a choice.
struct Choice {
  TCLAP::ValueArg<int>& option;
  int largest;
  int& setting;
  const char* before_value;
  const char* after_value;
};

int copy_choices(CommandLineOptions& options) {
  // The last two share one message: it names reportUnit even when NPerfectionMode is at fault.
  // Deliberate: messages are fixed by contract.
  const Choice choices[] = {
      {options.outputFormat, kFormatFasta, global_print_sat_mode,
       "An outputFormat with a value of ", " is unknown.\n\n"},
      {options.printRepeatSeqMode, kAlignment, global_print_sat_seq_mode,
       "A printRepeatSeqMode with a value of ", " is unknown.\n\n"},
      {options.NPerfectionMode, kNsAsMatch, global_N_and_perfection_mode, "An option value of ",
       " for the reportUnit option is unknown.\n\n"},
      {options.reportUnit, kUnitMinimalBothStrands, global_report_unit_mode, "An option value of ",
       " for the reportUnit option is unknown.\n\n"},
  };
  for (const Choice& choice : choices) {
    const int value = choice.option.getValue();
    if (value < 0 || value > choice.largest) {
      std::fprintf(stderr, "Sorry, a problem occured when parsing the command line options. %s%s%s",
                   choice.before_value, number2str(value), choice.after_value);
      return kUnknownChoice;
    }
    choice.setting = value;
  }
  return kGoOn;
}

// The threshold for unit length 1, but without rounding up: 1.5 is too small.
bool threshold_is_too_small(int constant, int intercept, float slope) {
  const float from_line = static_cast<float>(intercept) + slope;
  return std::max(static_cast<float>(constant), from_line) < 2.0F;
}

int check_combination() {
  if (threshold_is_too_small(global_min_score, global_min_score_a, global_min_score_bx) &&
      threshold_is_too_small(global_min_length, global_min_length_a, global_min_length_bx)) {
    return reject("Sorry, either the minimum score or the minimum length must be larger.\n");
  }
  if (global_mismatch_score > kLargestPenaltyScore) {
    return reject("Sorry, the mismatch score must be smaller or equal to -2.\n");
  }
  if (global_indel_score > kLargestPenaltyScore) {
    return reject("Sorry, the indel score must be smaller or equal to -2.\n");
  }
  global_Ns_allowed_in_a_row = std::max(global_Ns_allowed_in_a_row, 0);
  global_flanking = std::max(global_flanking, 0);
  if (global_maximum_recursion_depth <= 0) {
    return reject(
        "Sorry, the recursion depth must be greater than 0.\n"
        "A value of 0 would corresponds to a perfect search.\n");
  }
  if (global_min_unit_length == 0) {
    return reject("Sorry, the minimum unit length must be greater than 0.\n");
  }
  if (global_max_unit_length < global_min_unit_length) {
    return reject(
        "I think you have made a mistake here: The maximum unit length must be greater\n"
        "or equal to the minimum unit length.\n");
  }
  return kGoOn;
}

}  // namespace

int read_and_init_parameters(int argc, const char* const* argv) try {
  init_param();
  CommandLineOptions options;
  options.cmd.parse(argc, argv);
  if (const int result = take_file_names(options, argv[0]); result != kGoOn) return result;
  copy_unchecked_values(options);
  if (const int result = copy_choices(options); result != kGoOn) return result;
  return check_combination();
} catch (const TCLAP::ArgException& e) {
  std::fprintf(stderr, "Error: %s for arg %s\n", e.error().c_str(), e.argId().c_str());
  return kRejected;
}

}  // namespace vorlan
