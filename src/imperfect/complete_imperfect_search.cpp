// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The complete search for imperfect repeats: every stretch of the sequence is tried as a unit and
// extended in both directions.
//
// Invariant: a rejected candidate leaves no trace. An accepted one closes the marks of its span, so
// that the search does not start again inside it, and opens those of its edit positions, where an
// overlapping alternative may begin.
//
// Which candidates are passed over, and why that is safe: those that the marks, an N or a unit of
// one repeated base exclude by the rules, and those that the filter proves to be rejected
// (candidate_filter_kernel.h). Since the latter leave no trace, the result is the same.
//
// Example, unit length 2: ACACAGACACAC is found from its first position, with a mismatch at G. Its
// span is closed except for G; starts at and right behind G may be tried again.
//
// Marks last from unit length 2 to the longest: a repeat of AC closes its span for ACAC. Only the
// pass for unit length 1 is forgotten: runs of one base must not hide longer units.

#include "config/settings.h"
#include "imperfect/candidate_filter.h"
#include "search/bit_planes.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "search/start_block.h"
#include "search/unit_scan.h"

namespace vorlan {
void CSearchController::complete_imperfect_search(std::FILE*) {
  CAnchorSeq anchors(seq_begin(), seq_length());
  const BitPlanes planes(seq_begin(), seq_length(), CandidateFilter::margin(longest_unit()));
  for (unsigned unit_len = global_min_unit_length; unit_len <= longest_unit(); ++unit_len) {
    one_unit_len_complete_imperfect_search(unit_len, planes, anchors, imperfect_sats);
    if (unit_len == 1) anchors.reset();
  }
  imperfect_sats.sort(lessThan_sat);
}

void CSearchController::one_unit_len_complete_imperfect_search(unsigned unit_len,
                                                               const BitPlanes& planes,
                                                               CAnchorSeq& anchors,
                                                               std::list<Csat*>& results) {
  CandidateFilter filter(planes, unit_len, (*minScores)[unit_len]);
  UnitScan scan(seq_begin(), seq_end(), unit_len);
  SpareSat spare;
  for (std::ptrdiff_t begin = 0; begin < scan.starts(); begin += StartBlock::kStarts) {
    StartBlock block(begin, scan.starts());
    report_progress(block.begin(), block.end(), unit_len);
    block.collect(begin, unit_len, anchors, planes, filter);
    for (std::ptrdiff_t offset = block.take(); offset >= 0; offset = block.take()) {
      const char* start = seq_begin() + offset;
      if (!scan.is_unit(start)) continue;
      // An accepted repeat changes the marks ahead.
      if (try_candidate(start, unit_len, spare, anchors, results)) {
        block.collect(offset + 1, unit_len, anchors, planes, filter);
      }
    }
  }
}

bool CSearchController::try_candidate(const char* start, unsigned unit_len, SpareSat& spare,
                                      CAnchorSeq& anchors, std::list<Csat*>& results) {
  Csat& sat = spare.candidate(start, start + unit_len);
  extend_imperfect_forward(sat, seq_end());
  extend_imperfect_backward(sat, seq_begin());
  sat.trim_Ns();
  if (!sat.reaches((*minScores)[unit_len], (*minLengths)[unit_len])) return false;
  sat.sort_missense();
  anchors.close(sat);
  results.push_back(spare.release());
  return true;
}

}  // namespace vorlan
