// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/record_search.h"

#include <algorithm>

#include "imperfect/extension.h"
#include "imperfect/filter/candidate_filter.h"
#include "imperfect/look_ahead/look_ahead.h"
#include "search/exact_filter.h"
#include "search/perfect_extension.h"

namespace vorlan {
namespace {

/// Alignments with more edits than this do not keep their events. Chosen by the bench, table
/// "Tuning".
constexpr std::uint32_t kMostNotedEdits = 64;

std::size_t margin_of_planes(unsigned longest_unit) {
  return std::max({CandidateFilter::margin(longest_unit), ExactFilter::margin(longest_unit),
                   MismatchMasks<Forward>::kReach, DiagonalMasks<Forward>::kMargin});
}

}  // namespace

RecordSearch::RecordSearch(std::string_view residues, unsigned longest_unit, SeedKind seed,
                           const Accelerations& accelerations)
    : residues_(residues),
      longest_unit_(longest_unit),
      seed_(seed),
      accelerations_(accelerations),
      scoring_(Scoring::for_sequence(residues.size())),
      planes_(residues.data(), residues.size(), margin_of_planes(longest_unit)),
      decisions_({residues.data(), residues.size()}, {residues.data(), residues.size()}),
      ways_(residues.data(), scoring_),
      shares_ways_(accelerations.shared_ways && StoredWays::can_share(scoring_)),
      joint_bound_(residues) {}

SimilarStarts RecordSearch::similar_starts(unsigned unit_length,
                                           const UnitLengthThresholds& min_scores,
                                           const CAnchorSeq& anchors,
                                           const std::function<void()>& is_working) {
  const FirstCopyBound bound(scoring_, unit_length);
  const auto can_judge = [&](unsigned length) {
    return length <= longest_unit_ && bound.can_judge(length, min_scores[length]);
  };
  if (!accelerations_.self_alignment || !can_judge(unit_length)) return {};
  if (!self_alignment_) self_alignment_.emplace(residues_);
  if (!self_alignment_->has_judged(unit_length)) {
    unsigned last = unit_length;
    while (can_judge(last + 1)) ++last;
    if (!FirstCopyBound::is_worth_it(unit_length, last)) return {};
    self_alignment_->judge(
        bound, unit_length, last, [&](unsigned length) { return min_scores[length]; }, is_working);
  }
  const bool are_bounded =
      accelerations_.joint_bound &&
      joint_bound_.narrow_down(unit_length, self_alignment_->survivors_from(unit_length),
                               min_scores, anchors, is_working);
  return {&self_alignment_->survivors(unit_length), are_bounded};
}

// Forward nothing above the seed's own score is found, so the backward extension begins with that
// at most, and ends below what is asked for. With a limited score reduction the thresholds of the
// two differ from those that are compared with here.
bool RecordSearch::may_reach(const Csat& seed, int min_score) {
  if (seed.score >= min_score || !scoring_.has_constant_threshold()) return true;
  return !stays_below<Forward>(seed.score + 1, seed, end()) ||
         !stays_below<Backward>(min_score, seed, begin());
}

// An N at the end of the seed would be walked over before the first edit.
template <class Direction>
bool RecordSearch::stays_below(std::int64_t goal, const Csat& seed, const char* stop) {
  const Front front = Direction::front(seed);
  if (front.place != stop && *Direction::residue(front.place) == 'N') return false;
  LookAhead<Direction> look_ahead(*this, {seed.unit_begin, seed.unit_end}, stop);
  return look_ahead.stays_below(goal, front, seed.score, seed.score);
}

bool RecordSearch::extend_and_accept(Csat& sat, const Thresholds& thresholds,
                                     PassedOver& passed_over) {
  extend<Forward>(sat, end(), *this, passed_over.forward);
  extend<Backward>(sat, begin(), *this, passed_over.backward, thresholds.score);
  sat.trim_Ns();
  if (!sat.reaches(thresholds.score, thresholds.length)) return false;
  sat.events_pending = !notes_events(sat);
  if (sat.events_pending) return true;
  ways_.append_events<Forward>(passed_over.forward, sat);
  ways_.append_events<Backward>(passed_over.backward, sat);
  passed_over = {};
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
