// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The members of the controller that extend repeats over edits, for whoever holds a controller.

#include <cassert>

#include "imperfect/record_search.h"
#include "search/csearchcontroller.h"

namespace vorlan {

RecordSearch& CSearchController::record_search(SeedKind seed) {
  if (record_search_ == nullptr) {
    record_search_ =
        std::make_shared<RecordSearch>(residues(), longest_unit(), seed, accelerations_);
  }
  return *record_search_;
}

SimilarStarts CSearchController::similar_starts(unsigned unit_length, const CAnchorSeq& anchors) {
  return record_search(SeedKind::kUnit).similar_starts(unit_length, *minScores, anchors, [&] {
    if (!console_.check_report_status()) return;
    console_.report_status(sequence_number, sequence.name.terminate(), unit_length, 'r');
  });
}

void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  RecordSearch& record = record_search(SeedKind::kPerfectRepeat);
  unsigned unit_length = 0;
  Thresholds thresholds{};
  extend_seeds(record.planes(), [&](Csat& seed) {
    if (record.ways().is_full()) record.ways().forget();
    if (seed.unit_length() != unit_length) {
      unit_length = seed.unit_length();
      thresholds = {(*minScores_user)[unit_length], (*minLengths_user)[unit_length]};
    }
    if (!record.may_reach(seed, thresholds.score)) return false;
    PassedOver passed_over;
    if (!record.extend_and_accept(seed, thresholds, passed_over)) return false;
    seed.release_pending_events();
    return true;
  });
}

void CSearchController::complete_events(CsatContainer& sats) {
  for (Csat* sat : sats) {
    if (sat->events_pending) record_search_->complete_events(*sat);
  }
}

void CSearchController::extend_imperfect_forward(Csat& sat, [[maybe_unused]] const char* stop) {
  assert(stop == seq_end());
  record_search(SeedKind::kUnit).extend_with_events<Forward>(sat, seq_end());
}

void CSearchController::extend_imperfect_backward(Csat& sat, [[maybe_unused]] const char* stop) {
  assert(stop == seq_begin());
  record_search(SeedKind::kUnit).extend_with_events<Backward>(sat, seq_begin());
}

}  // namespace vorlan
