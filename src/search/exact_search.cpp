// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The search for perfect repeats.
//
// Idea: take each stretch of u bases as a unit and extend it in both directions as long as the
// sequence goes on with it. Short N runs are bridged: they take the place of unit bases and score
// 0.
//
// Invariant: once a repeat has been reported, its span is closed in the mask, so that starts inside
// it are passed over for this and for longer units. ATAT is therefore never tried inside a repeat
// of AT. Repeats that are kept but would not be printed leave the mask open and are found again
// from each start inside them, every time with another phase of the unit.
//
// Example, u = 2, minimum score 4: in GACACACT the start at the first A gives the unit AC, extended
// to ACACAC: 6 bases, of which the first copy earns nothing: score 4. The repeat is kept, and the
// starts inside it are closed. If it were not to be printed, each of its five starts would find it.
// In GACACATT the same start gives ACACA, score 3: nothing is kept, and nothing closed.

#include "config/settings.h"
#include "search/bit_planes.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "search/exact_filter.h"
#include "search/perfect_extension.h"
#include "search/run_samples.h"
#include "search/start_block.h"
#include "search/unit_scan.h"

namespace vorlan {
namespace {

bool has_shown_perfection(const Csat& sat) {
  const float perfection = sat.perfection();
  return global_min_perfection <= perfection && perfection <= global_max_perfection;
}

}  // namespace

// The scan of unit length 1 goes on behind each repeat it finds, and leaves no marks. Longer units
// are kept out of repeats by the marks alone.
void CSearchController::find_perfect_repeats(unsigned unit_length, const BitPlanes& planes,
                                             CAnchorSeq& mask, const TakeRepeat& take) {
  const PerfectExtension extension(residues());
  const int min_score = (*minScores)[unit_length];
  const int min_length = (*minLengths)[unit_length];
  // For seeds of the extend-exact mode the thresholds of the user differ from the active ones.
  const int shown_score = (*minScores_user)[unit_length];
  const int shown_length = (*minLengths_user)[unit_length];
  const ExactFilter filter(planes, unit_length, min_score);
  UnitScan scan(seq_begin(), seq_end(), unit_length);
  RunSamples samples(planes, unit_length, min_score, scan.starts());
  SpareSat spare;
  ScanProgress progress{unit_length};
  std::ptrdiff_t next_start = 0;
  for (std::ptrdiff_t begin = 0; begin < scan.starts(); begin += StartBlock::kStarts) {
    if (accelerations_.run_samples) begin = samples.next_block(begin);
    report_progress(progress, begin, next_start);
    if (begin == scan.starts()) break;
    StartBlock block(begin, scan.starts(), unit_length, mask, planes);
    if (accelerations_.exact_filter && block.has_survivors()) {
      filter.keep_survivors(block.first_word(), block.survivors());
    }
    block.collect(begin, mask);
    for (std::ptrdiff_t offset = block.take(); offset >= 0; offset = block.take()) {
      report_progress(progress, offset + 1, next_start);
      const char* start = seq_begin() + offset;
      if (offset < next_start || !scan.is_unit(start)) continue;
      Csat& sat = spare.candidate(start, start + unit_length);
      extension.extend(sat);
      if (!sat.reaches(min_score, min_length)) continue;
      if (unit_length == 1) {
        next_start = sat.pos_right - seq_begin();
      } else if (sat.reaches(shown_score, shown_length) && has_shown_perfection(sat)) {
        // Only a repeat that the user will see closes its span.
        mask.close(sat);
        block.collect(offset + 1, mask);
      }
      take(spare, sat);
    }
    report_progress(progress, block.end(), next_start);
  }
}

void CSearchController::find_perfect_repeats(const BitPlanes& planes, const TakeRepeat& take) {
  CAnchorSeq mask(seq_begin(), seq_length());
  for (unsigned unit_length = global_min_unit_length; unit_length <= longest_unit();
       ++unit_length) {
    find_perfect_repeats(unit_length, planes, mask, take);
  }
}

void CSearchController::exact_search_2() {
  const BitPlanes planes(seq_begin(), seq_length(), ExactFilter::margin(longest_unit()));
  find_perfect_repeats(planes, [this](SpareSat& spare, const Csat&) { spare.move_to(exact_sats); });
  exact_sats.sort(lessThan_sat);
}

}  // namespace vorlan
