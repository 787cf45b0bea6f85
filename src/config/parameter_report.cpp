// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/parameter_report.h"

#include "config/number_text.h"
#include "config/settings.h"

namespace vorlan {
namespace {

std::string yes_or_no(bool value) { return value ? "yes\n" : "no\n"; }

std::string number_line(int value) { return std::string(number2str(value)) + "\n"; }

std::string unit_length_line(unsigned value) { return std::string(number2str(value)) + "\n"; }

bool is_tab_separated() {
  return global_print_sat_mode == kFormatGff || global_print_sat_mode == kFormatOnePerLine;
}

std::string sequence_range() {
  std::string range = number2str(static_cast<unsigned>(global_sequence_from));
  range += " - ";
  range += global_sequence_to == kNoLastSequence
               ? "last sequence"
               : number2str(static_cast<unsigned>(global_sequence_to));
  return range + "\n";
}

std::string searched_for() {
  switch (global_search_mode) {
    case kExact:
      return "exact repeats\n";
    case kExtendExact:
      return "exact repeats which are extended to imperfect repeats\n";
    default:
      return "imperfect repeats\n";
  }
}

std::string maximum_score_reduction() {
  return global_maximum_scorereduction == kNoScoreLimit
             ? "-\n"
             : number_line(global_maximum_scorereduction);
}

std::string threshold_rule(int constant, int intercept, float slope) {
  std::string rule = "maximum (";
  rule += number2str(constant);
  rule += ", ";
  rule += number2str(intercept);
  rule += "+";
  rule += number2str(slope);
  return rule + "*unitlength )\n";
}

std::string perfection_range() {
  std::string range = number2str(global_min_perfection);
  range += " % - ";
  range += number2str(global_max_perfection);
  return range + " %\n";
}

std::string n_perfection_mode() {
  switch (global_N_and_perfection_mode) {
    case kNsAsMismatch:
      return "asMismatch\n";
    case kNsAsNeutral:
      return "asNeutral\n";
    default:
      return "asMatch\n";
  }
}

std::string report_unit_mode() {
  switch (global_report_unit_mode) {
    case kUnitAsIs:
      return "as they are\n";
    case kUnitMinimal:
      return "alphabetical normal form\n";
    default:
      return "alphabetical normal form using reverse complement\n";
  }
}

// A format without a name leaves the line unfinished.
std::string output_format() {
  switch (global_print_sat_mode) {
    case kFormatVorlan:
      return "vorlan format\n";
    case kFormatExtended:
      return "extended vorlan format\n";
    case kFormatGff:
      return "gff\n";
    case kFormatOnePerLine:
      return "one-per-line format\n";
    case kFormatFasta:
      return "fasta format\n";
    case kFormatOld:
      return "old format\n";
    default:
      return "";
  }
}

std::string print_sequence_mode() {
  switch (global_print_sat_seq_mode) {
    case kNoSequence:
      return "don't print sequence\n";
    case kSequence:
      return "print sequence\n";
    default:
      return "print alignment\n";
  }
}

void append_files_and_mode(std::vector<ParameterLine>& lines) {
  lines.push_back({"Parameter settings used in this search:", "\n"});
  lines.push_back({"Input file name:                        ", global_input_filename + "\n"});
  if (!global_output_filename.empty()) {
    lines.push_back({"Output file name:                       ", global_output_filename + "\n"});
  }
  lines.push_back({"   Sequence range to process:           ", sequence_range()});
  lines.push_back({"   Satellites searched for:             ", searched_for()});
}

void append_search(std::vector<ParameterLine>& lines) {
  const bool aligns = global_search_mode != kExact;
  if (aligns) {
    lines.push_back(
        {"   Recursion depth:                     ", number_line(global_maximum_recursion_depth)});
    lines.push_back({"   Maximum score reduction:             ", maximum_score_reduction()});
  }
  lines.push_back(
      {"   Minimum unit length:                 ", unit_length_line(global_min_unit_length)});
  lines.push_back(
      {"   Maximum unit length:                 ", unit_length_line(global_max_unit_length)});
  lines.push_back({"   Minimum score:                       ",
                   threshold_rule(global_min_score, global_min_score_a, global_min_score_bx)});
  lines.push_back({"   Minimum length:                      ",
                   threshold_rule(global_min_length, global_min_length_a, global_min_length_bx)});
  lines.push_back({"   Min. to max. perfection range:       ", perfection_range()});
  lines.push_back({"   Treat N's as:                        ",
                   global_treat_Ns_as_missense ? "missense\n" : "neutral\n"});
  lines.push_back(
      {"   Max. succesive N's allowed:          ", number_line(global_Ns_allowed_in_a_row)});
  if (aligns) {
    lines.push_back(
        {"   Mismatch score:                      ", number_line(global_mismatch_score)});
    lines.push_back({"   Indel score:                         ", number_line(global_indel_score)});
  }
}

void append_report(std::vector<ParameterLine>& lines) {
  lines.push_back({"   Show shorter (not longer) of two repeat variants with equal score: ",
                   yes_or_no(global_prefer_longer_repeat == 0)});
  lines.push_back({"   Number of flanking nucletides:       ", number_line(global_flanking)});
  lines.push_back(
      {"   Remove mostly overlapping satellites:", yes_or_no(global_remove_mostly_hidden)});
  lines.push_back({"   Write file with masked seq.:         ", yes_or_no(global_mask_repeats)});
  lines.push_back({"   Computing perfections treat N's:     ", n_perfection_mode()});
  lines.push_back({"   Report units as:                     ", report_unit_mode()});
  lines.push_back({"   Output format:                       ", output_format()});
  lines.push_back({"   Print sequence mode:                 ", print_sequence_mode()});
  if (is_tab_separated()) {
    lines.push_back(
        {"   Print seq. info as comment:          ", yes_or_no(global_sequenceInfoAsComment)});
  }
}

}  // namespace

std::vector<ParameterLine> search_parameters() {
  std::vector<ParameterLine> lines;
  append_files_and_mode(lines);
  append_search(lines);
  append_report(lines);
  return lines;
}

const char* parameter_separator() { return is_tab_separated() ? "\t" : " "; }

}  // namespace vorlan
