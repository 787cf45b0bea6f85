// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The complete search for imperfect repeats: every stretch of the sequence is tried as a unit and
// extended in both directions.
//
// Invariant: a rejected candidate leaves no trace. An accepted one closes the marks of its span, so
// that the search does not start again inside it, and opens those of its edit positions, where an
// overlapping alternative may begin.
//
// Example, unit length 2: ACACAGACACAC is found from its first position, with a mismatch at G. Its
// span is closed except for G; starts at and right behind G may be tried again.
//
// Marks last from unit length 2 to the longest: a repeat of AC closes its span for ACAC. Only the
// pass for unit length 1 is forgotten: runs of one base must not hide longer units.

#include "config/settings.h"
#include "search/csearchcontroller.h"
#include "search/unit_scan.h"

namespace vorlan {

void CSearchController::complete_imperfect_search(std::FILE*) {
  CAnchorSeq anchors(seq_begin(), seq_length());
  unsigned unit_len = global_min_unit_length;
  if (unit_len == 1) {
    unit_len_1_complete_imperfect_search(anchors, imperfect_sats);
    anchors.reset();
    unit_len = 2;
  }
  // A unit length that is not shorter than the sequence has no candidates, nor has any above it.
  for (; unit_len <= global_max_unit_length && unit_len < seq_length(); ++unit_len) {
    one_unit_len_complete_imperfect_search(unit_len, anchors, imperfect_sats);
  }
  imperfect_sats.sort(lessThan_sat);
}

void CSearchController::unit_len_1_complete_imperfect_search(CAnchorSeq& anchors,
                                                             std::list<Csat*>& results) {
  SpareSat spare;
  // The last residue is never a start: nothing could follow it.
  for (const char* start = seq_begin(); seq_end() - start > 1; ++start) {
    if (*start == 'N') continue;
    report_progress(start, 1);
    if (anchors.is_open(start)) try_candidate(start, 1, spare, anchors, results);
  }
}

void CSearchController::one_unit_len_complete_imperfect_search(unsigned unit_len,
                                                               CAnchorSeq& anchors,
                                                               std::list<Csat*>& results) {
  UnitScan scan(seq_begin(), seq_end(), anchors, unit_len);
  SpareSat spare;
  for (const char* start = seq_begin(); scan.has_room(start); ++start) {
    report_progress(start, unit_len);
    if (scan.is_candidate(start)) try_candidate(start, unit_len, spare, anchors, results);
  }
}

void CSearchController::try_candidate(const char* start, unsigned unit_len, SpareSat& spare,
                                      CAnchorSeq& anchors, std::list<Csat*>& results) {
  Csat& sat = spare.candidate(start, start + unit_len);
  extend_imperfect_forward(sat, seq_end());
  extend_imperfect_backward(sat, seq_begin());
  sat.trim_Ns();
  if (!sat.reaches((*minScores)[unit_len], (*minLengths)[unit_len])) return;
  sat.sort_missense();
  anchors.close(sat);
  results.push_back(spare.release());
}

}  // namespace vorlan
