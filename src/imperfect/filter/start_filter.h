// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "imperfect/filter/candidate_filter.h"
#include "imperfect/wraparound/wraparound_bound.h"
#include "search/accelerations.h"

namespace vorlan {

/// What stands before the extension: the candidate filter, then the wraparound bound on those that
/// it lets pass. It never rejects a candidate that the extension would accept, since neither does.
///
/// The automaton of the candidate filter costs more the more edits a path can afford, the bound
/// does not. Where edits are cheap or units long, the bound does without the close look, and
/// without the glance where that rejects little.
class StartFilter {
 public:
  /// For units of `unit_length` bases that need `min_score`, in the residues of which `planes` are.
  /// `starts` is how many starts there are. Without both engines every start survives. Requires
  /// the margin of CandidateFilter; residues and planes must outlive this.
  StartFilter(std::string_view residues, const BitPlanes& planes, unsigned unit_length,
              int min_score, std::ptrdiff_t starts, const Accelerations& accelerations);

  /// As CandidateFilter::glance.
  void glance(std::ptrdiff_t first_word, std::uint64_t* candidates);

  /// Whether any start can be rejected; if not, none may be given to `doubt`.
  bool can_judge() const { return bound_ || (has_automaton_ && filter_.can_judge()); }

  /// As CandidateFilter::doubt.
  void doubt(std::ptrdiff_t start) { filter_.doubt(start); }

  std::size_t doubts() const { return filter_.doubts(); }
  std::ptrdiff_t first_doubt() const { return filter_.first_doubt(); }

  /// With so many starts in doubt a close look is worth its time, and a glance is not allowed.
  static constexpr std::size_t enough_doubts() { return kFilterStarts; }

  /// Looks closely at the first starts in doubt. Returns those that survive, in order; valid until
  /// the next call. Requires that some are in doubt.
  std::span<const std::ptrdiff_t> look_closely();

 private:
  bool has_automaton_;
  CandidateFilter filter_;
  std::optional<WraparoundBound> bound_;
  bool bound_alone_ = false;  ///< Without the close look of the filter.
  bool glances_ = true;
  std::size_t glanced_at_ = 0;
  std::size_t left_in_doubt_ = 0;
};

}  // namespace vorlan
