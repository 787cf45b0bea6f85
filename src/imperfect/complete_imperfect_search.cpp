// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The complete search for imperfect repeats: every stretch of the sequence is tried as a unit and
// extended in both directions.
//
// Invariant: a rejected candidate leaves no trace. An accepted one closes the marks of its span, so
// that the search does not start again inside it, and opens those of its edit positions, where an
// overlapping alternative may begin.
//
// Which candidates are passed over: those without a residue behind them (UnitScan::starts), those
// that the marks (CAnchorSeq::may_anchor), an N or a unit of one repeated base (UnitScan::is_unit)
// exclude by the rules, and those that a filter proves to be rejected (filter/). Since the latter
// leave no trace, the result is the same.
//
// Example, unit length 2, default settings: ACACACAGACACAC is accepted from its first position,
// with a mismatch at G: 5 matches, -5, 6 matches: score 6. Its span is closed except for G:
//
//     residues   A C A C A C A G A C A C A C
//     marks      . . . . . . . a . . . . . .      a: open
//
// The start at G may not be tried: its own mark is open, but those at and behind the end of its
// unit are closed. Of all starts in the span only the first may be tried again, with a unit that
// ends at G, since the mark before the repeat is open, too.
//
// ACACACAGACACA, one base shorter, reaches 5 points, one too few: rejected, all marks stay open.
//
// Marks last from unit length 2 to the longest: a repeat of AC closes its span for ACAC. Only the
// pass for unit length 1 is forgotten: runs of one base must not hide longer units.

#include "config/settings.h"
#include "imperfect/filter/start_queue.h"
#include "imperfect/late_marks/mark_painter.h"
#include "imperfect/record_search.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "search/unit_scan.h"

namespace vorlan {

void CSearchController::complete_imperfect_search(std::FILE*) {
  CAnchorSeq anchors(seq_begin(), seq_length());
  for (unsigned unit_len = global_min_unit_length; unit_len <= longest_unit(); ++unit_len) {
    one_unit_len_complete_imperfect_search(unit_len, anchors, imperfect_sats);
    if (unit_len == 1) anchors.reset();
  }
  imperfect_sats.sort(lessThan_sat);
}

void CSearchController::one_unit_len_complete_imperfect_search(unsigned unit_len,
                                                               CAnchorSeq& anchors,
                                                               std::list<Csat*>& results) {
  UnitScan scan(seq_begin(), seq_end(), unit_len);
  ScanProgress progress{unit_len};
  const bool is_known = series_survivors_ != nullptr && series_survivors_->know(unit_len);
  if (is_known && !series_survivors_->any_survives(unit_len, scan.starts())) {
    report_progress(progress, scan.starts());
    return;
  }
  RecordSearch& record = record_search(SeedKind::kUnit);
  const Thresholds thresholds{(*minScores)[unit_len], (*minLengths)[unit_len]};
  MarkPainter marks(anchors, record);
  StartQueue queue(record, scan.starts(), unit_len, thresholds.score, marks,
                   {.in_series = is_known ? series_survivors_ : nullptr,
                    .similar = is_known ? SimilarStarts{} : similar_starts(unit_len, anchors)});
  SpareSat spare;
  while (queue.next_block()) {
    report_progress(progress, queue.block_end());
    for (std::ptrdiff_t start = queue.take(); start >= 0; start = queue.take()) {
      const char* unit = seq_begin() + start;
      if (!scan.is_unit(unit)) continue;
      Csat& sat = spare.candidate(unit, unit + unit_len);
      PassedOver passed_over;
      marks.make_room();
      if (!record.extend_and_accept(sat, thresholds, passed_over)) continue;
      spare.move_to(results);
      marks.accept({&sat, std::move(passed_over)}, unit);
      queue.marks_have_changed(start);
    }
  }
  marks.finish();
  report_progress(progress, scan.starts());
}

}  // namespace vorlan
