// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The complete search for imperfect repeats.
//
// Idea: for each unit length, each stretch that the marks leave open is taken as one copy of a unit
// and extended over edits to both sides. What reaches the thresholds is kept, closes its span for
// later starts and longer units, and leaves the places of its edits open, so that another alignment
// can still be found from there.
//
// Why this is right: it is the rule itself, one start at a time; a rejected candidate changes
// nothing. Marks that unit length 1 leaves are forgotten, those of longer units are kept.
//
// Example: ACACACACT, unit length 2, has starts 0 to 6. Start 0, AC, extends to [0,8) with score 6
// and no edit: accepted, [0,8) closed. Starts 1 to 6 begin at a closed position after a closed one.

#include <utility>

#include "plain_scan.h"
#include "plain_search.h"

namespace reference {
namespace {

// Extends one candidate after another with what they have in common.
class ImperfectScan {
 public:
  ImperfectScan(std::string_view residues, const Settings& settings, Counters* counters)
      : residues_(residues), settings_(settings), counters_(counters) {}

  void unit_length_1() {
    Marks marks(residues_.size());
    const Thresholds thresholds = user_thresholds(settings_, 1);
    // The last residue is never a start.
    for (std::size_t start = skip_Ns(residues_, 0); start + 1 < residues_.size();
         start = skip_Ns(residues_, start + 1)) {
      if (marks.may_start(start)) try_unit(start, 1, thresholds, marks);
    }
  }

  void unit_length(std::size_t length, Marks& marks) {
    const Thresholds thresholds = user_thresholds(settings_, length);
    StretchWithN stretch(residues_);
    for (std::size_t start = 0; start + length < residues_.size(); ++start) {
      if (!marks.may_span(start, length) || stretch.holds_N(start, length)) continue;
      if (is_one_repeated_residue(residues_.substr(start, length))) continue;
      try_unit(start, length, thresholds, marks);
    }
  }

  std::vector<Repeat> sorted_results() {
    sort_repeats(found_);
    return std::move(found_);
  }

 private:
  void try_unit(std::size_t start, std::size_t length, const Thresholds& thresholds, Marks& marks) {
    if (counters_ != nullptr) ++counters_->candidates;
    become_one_copy(candidate_, start, start + length);
    extend_forward(residues_, settings_, candidate_, counters_);
    extend_backward(residues_, settings_, candidate_, counters_);
    trim_Ns(residues_, candidate_);
    if (!reaches(candidate_, thresholds)) return;
    if (counters_ != nullptr) ++counters_->accepted;
    sort_events(candidate_);
    marks.close(candidate_);
    found_.push_back(candidate_);
  }

  const std::string_view residues_;
  const Settings& settings_;
  Counters* const counters_;
  Repeat candidate_;
  std::vector<Repeat> found_;
};

}  // namespace

std::vector<Repeat> imperfect_search(std::string_view residues, const Settings& settings,
                                     Counters* counters) {
  ImperfectScan scan(residues, settings, counters);
  std::size_t unit_length = settings.min_unit_length;
  if (unit_length == 1) {
    scan.unit_length_1();
    unit_length = 2;
  }
  Marks marks(residues.size());
  // A unit as long as the residues is never followed by a residue, so longer ones need no scan.
  for (; unit_length <= settings.max_unit_length && unit_length < residues.size(); ++unit_length) {
    scan.unit_length(unit_length, marks);
  }
  return scan.sorted_results();
}

}  // namespace reference
