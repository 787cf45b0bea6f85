// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>

#include "imperfect/look_ahead/bit_look_ahead.h"
#include "imperfect/look_ahead/merged_look_ahead.h"
#include "imperfect/scoring.h"
#include "imperfect/self_alignment/self_alignment.h"
#include "imperfect/ways/stored_ways.h"
#include "imperfect/wraparound/joint_bound.h"
#include "search/accelerations.h"
#include "search/bit_planes.h"
#include "search/canchorseq.h"
#include "search/csat.h"
#include "search/thresholds.h"

namespace vorlan {

/// The smallest score and repeat length, in bases, that a repeat needs to be accepted.
struct Thresholds {
  int score;
  int length;
};

/// What the self-alignment of a record lets pass of one unit length.
struct SimilarStarts {
  const SparseStarts* starts = nullptr;  ///< Null where nothing can be told.
  bool are_bounded = false;              ///< Whether the wraparound bound has judged them.
};

/// What the imperfect searches of one record share, and the extension of its candidates. Lives from
/// the first candidate until the events of the reported repeats are complete.
///
/// Events on demand: of the thousands of long alignments that an array yields nearly all are
/// removed again. An alignment is a function of its start, so those with many edits keep their
/// events only until marks have been painted with them; `complete_events` makes the alignments of
/// the repeats that stay once more.
///
/// Example: an array of AC, 41 perfect bases and then 65 mismatches, each with 19 perfect bases
/// behind it. The first extension walks up to the first mismatch and passes over the way from
/// there: accepted, but its 65 events are pending. With 64 mismatches all events are noted at once.
class RecordSearch {
 public:
  /// For the record with these residues, which must outlive this, and units of up to
  /// `longest_unit` bases. Throws std::bad_alloc. Cost: linear.
  RecordSearch(std::string_view residues, unsigned longest_unit, SeedKind seed,
               const Accelerations& accelerations);

  std::string_view residues() const { return residues_; }
  const char* begin() const { return residues_.data(); }
  const char* end() const { return residues_.data() + residues_.size(); }

  const Accelerations& accelerations() const { return accelerations_; }
  const Scoring& scoring() const { return scoring_; }

  /// The residues as bits, with a margin for every filter.
  const BitPlanes& planes() const { return planes_; }

  /// The memories of the look-aheads.
  template <class Direction>
  MergedLookAheadMemory<Direction>& memory() {
    return std::get<MergedLookAheadMemory<Direction>>(memories_);
  }

  BitLookAheadMemory& bit_memory() { return bit_memory_; }

  /// The decisions that are kept, or null where none are for this unit.
  template <class Direction>
  DecisionMemory<Direction>* decisions(const UnitSpan& unit) {
    const bool are_kept = accelerations_.kept_decisions && unit.length() >= kShortestKeptUnit;
    return are_kept ? &std::get<DecisionMemory<Direction>>(decisions_) : nullptr;
  }

  /// The ways of all extensions so far; empty where ways are not shared.
  StoredWays& ways() { return ways_; }

  /// The ways, or null where decisions cannot be shared.
  StoredWays* shared_ways() { return shares_ways_ ? &ways_ : nullptr; }

  /// The starts of a unit length that resemble the sequence one unit length on, outside of which
  /// none is accepted; none where that cannot be told (self_alignment/first_copy_bound.h). Of those
  /// that `anchors` allow, the hopeless ones are left out (wraparound/joint_bound.h). Judges a band
  /// of unit lengths when the first of them is asked for, up to the longest if they find room: ask
  /// in rising order. The starts stay until the next band is judged. `is_working` is called several
  /// times a second.
  SimilarStarts similar_starts(unsigned unit_length, const UnitLengthThresholds& min_scores,
                               const CAnchorSeq& anchors, const std::function<void()>& is_working);

  /// Whether a perfect repeat may reach `min_score` when it is extended over edits, as far as can
  /// be told from what lies right behind its ends. False is a proof.
  ///
  /// Example, penalties 5: a seed of score 4 cannot reach 6 when neither side gains a point behind
  /// an edit. With a short match on one side it may.
  bool may_reach(const Csat& seed, int min_score);

  /// Extends `sat` in both directions and trims it. Returns whether it reaches the thresholds; only
  /// then its events are sorted and complete, unless there are many, as `sat.events_pending` says:
  /// some of those are left in `passed_over`, and the others may be released once they are painted.
  bool extend_and_accept(Csat& sat, const Thresholds& thresholds, PassedOver& passed_over);

  /// Extends `sat` in one direction with all events.
  template <class Direction>
  void extend_with_events(Csat& sat, const char* stop);

  /// Finds the events of a repeat that was accepted without noting them all.
  void complete_events(Csat& sat);

 private:
  /// A shorter unit ends before most decisions have read what they need. Chosen by the bench, table
  /// "Tuning".
  static constexpr std::ptrdiff_t kShortestKeptUnit = 30;

  bool notes_events(const Csat& sat) const;
  template <class Direction>
  bool stays_below(std::int64_t goal, const Csat& seed, const char* stop);

  std::string_view residues_;
  unsigned longest_unit_;
  SeedKind seed_;
  Accelerations accelerations_;
  Scoring scoring_;
  BitPlanes planes_;
  std::tuple<MergedLookAheadMemory<Forward>, MergedLookAheadMemory<Backward>> memories_;
  BitLookAheadMemory bit_memory_;
  std::tuple<DecisionMemory<Forward>, DecisionMemory<Backward>> decisions_;
  StoredWays ways_;
  bool shares_ways_;
  std::optional<SelfAlignment> self_alignment_;  ///< Made when it is first needed.
  JointBound joint_bound_;
};

}  // namespace vorlan
