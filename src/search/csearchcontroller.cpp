// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/csearchcontroller.h"

#include <algorithm>

#include "config/settings.h"

namespace vorlan {
namespace {

/// A seed of the extend-exact mode has at least this score, or its unit length when that is more.
constexpr int kSmallestSeedScore = 4;

/// The clock is read once for this many start positions.
constexpr std::ptrdiff_t kPositionsPerProgressCheck = 256;

}  // namespace

const UnitLengthThresholds* CSearchController::minScores = nullptr;
const UnitLengthThresholds* CSearchController::minLengths = nullptr;
std::optional<UnitLengthThresholds> CSearchController::minScores_user;
std::optional<UnitLengthThresholds> CSearchController::minLengths_user;
std::optional<UnitLengthThresholds> CSearchController::minScores_intern;
std::optional<UnitLengthThresholds> CSearchController::minLengths_intern;

CSearchController::CSearchController(unsigned number, CSequence_Mol& molecule,
                                     const SearchConsole& console,
                                     const Accelerations& accelerations)
    : sequence_number(number),
      sequence(molecule),
      exact_sats(sat_alloc),
      imperfect_sats(sat_alloc),
      console_(console),
      accelerations_(accelerations) {
  set_thresholds();
  minScores = &*minScores_user;
  minLengths = &*minLengths_user;
}

void CSearchController::set_thresholds() {
  if (minScores_user) return;
  minScores_user = UnitLengthThresholds::of_scores();
  minLengths_user = UnitLengthThresholds::of_lengths();
  minScores_intern = UnitLengthThresholds::at_least_unit_length(kSmallestSeedScore);
  minLengths_intern.emplace(0, 0, 0.0F);
}

const UnitLengthThresholds& CSearchController::user_min_scores() {
  set_thresholds();
  return *minScores_user;
}

void CSearchController::reset_minimum_arrays() {
  minScores_user.reset();
  minLengths_user.reset();
  minScores_intern.reset();
  minLengths_intern.reset();
  minScores = nullptr;
  minLengths = nullptr;
}

unsigned CSearchController::longest_unit() const {
  const std::size_t shorter_than_sequence = std::max<std::size_t>(seq_length(), 1) - 1;
  return static_cast<unsigned>(
      std::min<std::size_t>(global_max_unit_length, shorter_than_sequence));
}

void CSearchController::report_progress(ScanProgress& progress, std::ptrdiff_t end,
                                        std::ptrdiff_t first_visited) {
  for (; progress.next_check < end; progress.next_check += kPositionsPerProgressCheck) {
    // The scan for unit length 1 does not visit N, nor the inside of an exact repeat.
    const bool is_visited = progress.unit_length > 1 || (progress.next_check >= first_visited &&
                                                         seq_begin()[progress.next_check] != 'N');
    if (!is_visited || !console_.check_report_status()) continue;
    console_.report_status(sequence_number, sequence.name.terminate(), progress.unit_length, 'r');
  }
}

}  // namespace vorlan
