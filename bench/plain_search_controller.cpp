// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The three searches of the controller as the plain searches of tests/reference: together with the
// driver, the reader and the report of Vorlan they make the program that Vorlan is measured
// against, and whose reports it must equal byte for byte. There are no progress lines inside a
// search.

#include <cstdio>
#include <vector>

#include "config/settings.h"
#include "imperfect/filter/series_filter.h"
#include "plain_search.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

reference::Settings settings_of_this_run() {
  reference::Settings settings;
  settings.min_unit_length = global_min_unit_length;
  settings.max_unit_length = global_max_unit_length;
  settings.mismatch_score = global_mismatch_score;
  settings.indel_score = global_indel_score;
  settings.maximum_recursion_depth = global_maximum_recursion_depth;
  settings.maximum_scorereduction = global_maximum_scorereduction;
  settings.Ns_allowed_in_a_row = global_Ns_allowed_in_a_row;
  settings.treat_Ns_as_missense = global_treat_Ns_as_missense;
  settings.prefer_longer_repeat = global_prefer_longer_repeat;
  settings.min_score = global_min_score;
  settings.min_score_a = global_min_score_a;
  settings.min_score_bx = global_min_score_bx;
  settings.min_length = global_min_length;
  settings.min_length_a = global_min_length_a;
  settings.min_length_bx = global_min_length_bx;
  settings.N_and_perfection_mode = global_N_and_perfection_mode;
  settings.min_perfection = global_min_perfection;
  settings.max_perfection = global_max_perfection;
  settings.remove_mostly_hidden = global_remove_mostly_hidden;
  return settings;
}

/// A record from the pool with the values of `repeat`, its offsets counted from `residues`.
Csat* record_of(const reference::Repeat& repeat, const char* residues) {
  Csat* sat = new_sat(residues + repeat.unit_begin, residues + repeat.unit_end);
  sat->pos_left = residues + repeat.begin;
  sat->pos_right = residues + repeat.end;
  sat->unit_cursor_fwd = residues + repeat.cursor_forward;
  sat->unit_cursor_bwd = residues + repeat.cursor_backward;
  sat->score = repeat.score;
  sat->mismatches = repeat.mismatches;
  sat->insertions = repeat.insertions;
  sat->deletions = repeat.deletions;
  sat->num_Ns = repeat.num_Ns;
  for (const reference::Event& event : repeat.events) {
    sat->missense.push_back({residues + event.position, event.kind});
  }
  return sat;
}

void take_over(const std::vector<reference::Repeat>& repeats, const char* residues,
               CsatContainer& sats) {
  for (const reference::Repeat& repeat : repeats) sats.push_back(record_of(repeat, residues));
}

}  // namespace

void CSearchController::exact_search_2() {
  const faststring& residues = sequence.residues;
  take_over(reference::exact_search(residues.view(), settings_of_this_run()), residues.buf,
            exact_sats);
}

// Seeds and extensions are one call here, so both announcements come before it.
void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  console_.announce("  Searching for exact repeats.\n");
  console_.announce("  Extend exact to imperfect repeats.\n");
  const faststring& residues = sequence.residues;
  take_over(reference::extend_exact_search(residues.view(), settings_of_this_run()), residues.buf,
            imperfect_sats);
}

void CSearchController::complete_imperfect_search(std::FILE*) {
  const faststring& residues = sequence.residues;
  take_over(reference::imperfect_search(residues.view(), settings_of_this_run()), residues.buf,
            imperfect_sats);
}

// The plain search judges no starts beforehand.
void SeriesFilter::judge(const UnitLengthThresholds&) {}

}  // namespace vorlan
