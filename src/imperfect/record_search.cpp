// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/record_search.h"

#include <algorithm>

#include "imperfect/extension.h"
#include "imperfect/filter/candidate_filter.h"
#include "search/exact_filter.h"
#include "search/perfect_extension.h"

namespace vorlan {
namespace {

/// Alignments with more edits than this, in stored ways, do not note them. Chosen by the bench,
/// table "Tuning".
constexpr std::uint32_t kMostNotedEdits = 64;

std::size_t margin_of_planes(unsigned longest_unit) {
  return std::max({CandidateFilter::margin(longest_unit), ExactFilter::margin(longest_unit),
                   MismatchMasks<Forward>::kReach, DiagonalMasks<Forward>::kMargin});
}

}  // namespace

RecordSearch::RecordSearch(std::string_view residues, unsigned longest_unit, SeedKind seed,
                           const Accelerations& accelerations)
    : residues_(residues),
      seed_(seed),
      accelerations_(accelerations),
      scoring_(Scoring::for_sequence(residues.size())),
      planes_(residues.data(), residues.size(), margin_of_planes(longest_unit)),
      ways_(residues.data(), scoring_),
      shares_ways_(accelerations.shared_ways && StoredWays::can_share(scoring_)) {}

bool RecordSearch::extend_and_accept(Csat& sat, const Thresholds& thresholds,
                                     PassedOver& passed_over) {
  extend<Forward>(sat, end(), *this, passed_over.forward);
  extend<Backward>(sat, begin(), *this, passed_over.backward, thresholds.score);
  sat.trim_Ns();
  if (!sat.reaches(thresholds.score, thresholds.length)) return false;
  if (notes_events(sat)) {
    ways_.append_events<Forward>(passed_over.forward, sat);
    ways_.append_events<Backward>(passed_over.backward, sat);
    passed_over = {};
  }
  sat.events_pending = !passed_over.forward.empty() || !passed_over.backward.empty();
  sat.sort_missense();
  return true;
}

bool RecordSearch::notes_events(const Csat& sat) const {
  return !accelerations_.events_on_demand ||
         sat.mismatches + sat.insertions + sat.deletions <= kMostNotedEdits;
}

template <class Direction>
void RecordSearch::extend_with_events(Csat& sat, const char* stop) {
  if (ways_.is_full()) ways_.forget();
  std::vector<WaySegment> passed_over;
  extend<Direction>(sat, stop, *this, passed_over);
  ways_.append_events<Direction>(passed_over, sat);
}

void RecordSearch::complete_events(Csat& sat) {
  sat.init(sat.unit_begin, sat.unit_end);
  if (seed_ == SeedKind::kPerfectRepeat) PerfectExtension(residues_).extend(sat);
  extend_with_events<Forward>(sat, end());
  extend_with_events<Backward>(sat, begin());
  sat.trim_Ns();
  sat.sort_missense();
}

template void RecordSearch::extend_with_events<Forward>(Csat&, const char*);
template void RecordSearch::extend_with_events<Backward>(Csat&, const char*);

}  // namespace vorlan
