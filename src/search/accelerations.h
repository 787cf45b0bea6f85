// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <iterator>

namespace vorlan {

/// Which engines may help the searches. None of them changes a result: with all of them left out
/// the searches do step by step what their definitions say.
///
/// Handed in where a search is made. The program always uses all; tests leave engines out to
/// compare, and the benchmarks to see what each is worth.
struct Accelerations {
  bool run_samples = true;        ///< search/run_samples.h
  bool exact_filter = true;       ///< search/exact_filter.h
  bool candidate_filter = true;   ///< imperfect/filter/candidate_filter.h
  bool self_alignment = true;     ///< imperfect/self_alignment/first_copy_bound.h
  bool wraparound = true;         ///< imperfect/wraparound/wraparound_kernel.h
  bool joint_bound = true;        ///< imperfect/wraparound/joint_bound.h; on the self-alignment
  bool series_filter = true;      ///< imperfect/filter/series_filter.h; with both filters above
  bool early_end = true;          ///< imperfect/look_ahead/comeback.h
  bool bit_look_ahead = true;     ///< imperfect/look_ahead/place_sets_kernel.h
  bool kept_decisions = true;     ///< imperfect/look_ahead/decision_memory.h; of those by bits
  bool merged_look_ahead = true;  ///< imperfect/look_ahead/merged_look_ahead.h
  bool shared_ways = true;        ///< imperfect/ways/way_forest.h
  bool late_marks = true;         ///< imperfect/late_marks/mark_painter.h
  bool events_on_demand = true;   ///< imperfect/record_search.h

  /// All left out.
  static constexpr Accelerations none();
};

/// An engine by name, for tests and benchmarks that go through all.
struct NamedAcceleration {
  const char* name;
  bool Accelerations::*is_on;
};
inline constexpr NamedAcceleration kAccelerations[] = {
    {"run_samples", &Accelerations::run_samples},
    {"exact_filter", &Accelerations::exact_filter},
    {"candidate_filter", &Accelerations::candidate_filter},
    {"self_alignment", &Accelerations::self_alignment},
    {"wraparound", &Accelerations::wraparound},
    {"joint_bound", &Accelerations::joint_bound},
    {"series_filter", &Accelerations::series_filter},
    {"early_end", &Accelerations::early_end},
    {"bit_look_ahead", &Accelerations::bit_look_ahead},
    {"kept_decisions", &Accelerations::kept_decisions},
    {"merged_look_ahead", &Accelerations::merged_look_ahead},
    {"shared_ways", &Accelerations::shared_ways},
    {"late_marks", &Accelerations::late_marks},
    {"events_on_demand", &Accelerations::events_on_demand},
};

static_assert(std::size(kAccelerations) == sizeof(Accelerations), "one name for each switch");

constexpr Accelerations Accelerations::none() {
  Accelerations none;
  for (const NamedAcceleration& engine : kAccelerations) none.*engine.is_on = false;
  return none;
}

}  // namespace vorlan
