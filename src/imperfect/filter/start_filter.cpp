// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/filter/start_filter.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>

namespace vorlan {
namespace {

// All numbers here were chosen by the bench: table "Tuning", rows of their names.

/// After so many starts it is known how much glances reject.
constexpr std::size_t kEnoughGlances = 16 * std::size_t{kFilterStarts};

/// With more edits than this to follow, the bound is cheaper than a close look.
constexpr int kFewEdits = 24;

/// With so few edits, as at the default penalties, most of what a close look leaves of short units
/// is accepted, and an extension costs little more than its share of a batch.
constexpr int kVeryFewEdits = 12;
constexpr std::ptrdiff_t kShortUnit = 6;

/// Starts that are no more than this part of a unit apart are judged together. Chosen by the bench,
/// table "Tuning".
constexpr std::ptrdiff_t kGroupsInUnit = 8;

std::size_t count_starts(const std::uint64_t* words) {
  return std::transform_reduce(
      words, words + kFilterWords, std::size_t{0}, std::plus(),
      [](std::uint64_t word) { return static_cast<std::size_t>(std::popcount(word)); });
}

}  // namespace

StartFilter::StartFilter(std::string_view residues, const BitPlanes& planes, unsigned unit_length,
                         int min_score, std::ptrdiff_t starts, const Accelerations& accelerations)
    : has_automaton_(accelerations.candidate_filter),
      filter_(planes, unit_length, min_score, starts) {
  const auto length = static_cast<std::ptrdiff_t>(unit_length);
  if (!accelerations.wraparound || !WraparoundBound::can_judge(length, min_score)) return;
  const bool automaton_is_enough = length <= kShortUnit && filter_.most_edits() <= kVeryFewEdits;
  if (has_automaton_ && automaton_is_enough) return;
  bound_alone_ = !has_automaton_ || filter_.most_edits() > kFewEdits;
  const std::ptrdiff_t group = bound_alone_ ? std::min(length, 1 + length / kGroupsInUnit) : 1;
  bound_.emplace(residues, UnitLengths{length, length}, min_score, group);
  if (!has_automaton_) {
    glances_ = false;
  } else if (bound_alone_) {
    glances_ = filter_.glance_always();
  }
}

void StartFilter::glance(std::ptrdiff_t first_word, std::uint64_t* candidates) {
  if (!has_automaton_ && !bound_) return;
  if (!glances_) return filter_.doubt_all(first_word, candidates);
  if (!bound_alone_) return filter_.glance(first_word, candidates);
  glanced_at_ += count_starts(candidates);
  const std::size_t doubts_before = doubts();
  filter_.glance(first_word, candidates);
  left_in_doubt_ += doubts() - doubts_before;
  glances_ = glanced_at_ < kEnoughGlances || left_in_doubt_ < glanced_at_ / 2;
}

std::span<const std::ptrdiff_t> StartFilter::look_closely() {
  if (!bound_) return filter_.look_closely();
  const std::span<std::ptrdiff_t> starts =
      bound_alone_ ? filter_.take_doubts(kFilterStarts) : filter_.look_closely();
  return starts.first(bound_->keep_survivors(starts));
}

}  // namespace vorlan
