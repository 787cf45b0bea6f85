// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Quantities of one repeat, its trimming and ordering, and the thresholds it must reach.
//
// Example: ACACGACAC with unit AC and the G inserted covers 9 residues; its repeat length is
// 9 - 1 + 0 = 8, its perfection (8 - 0 - 1 - 0 - 0) / 8 = 87.5 %.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "plain_search.h"

namespace reference {
namespace {

// Saturating conversion; a value that is no number imposes nothing.
int to_int32(float value) {
  constexpr float kTwoTo31 = 2147483648.0F;
  if (value >= kTwoTo31) return std::numeric_limits<int>::max();
  if (!(value >= -kTwoTo31)) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

int threshold(int constant, int intercept, float slope, std::size_t unit_length) {
  // volatile: product and sum must each be rounded to single precision, never fused into one step.
  const volatile float product = static_cast<float>(unit_length) * slope;
  const volatile float sum = static_cast<float>(intercept) + product;
  return std::max(constant, to_int32(std::ceil(sum)));
}

}  // namespace

void become_one_copy(Repeat& repeat, std::size_t begin, std::size_t end) {
  repeat.begin = repeat.unit_begin = repeat.cursor_forward = begin;
  repeat.end = repeat.unit_end = end;
  repeat.cursor_backward = end - 1;
  repeat.score = 0;
  repeat.mismatches = repeat.insertions = repeat.deletions = repeat.num_Ns = 0;
  repeat.events.clear();
}

int repeat_length(const Repeat& repeat) {
  const auto covered = static_cast<std::uint32_t>(repeat.end - repeat.begin);
  return static_cast<int>(covered - repeat.insertions + repeat.deletions);
}

float perfection(const Repeat& repeat, const Settings& settings) {
  const int length = repeat_length(repeat);
  const int Ns = static_cast<int>(repeat.num_Ns);
  const int without_edits = length - static_cast<int>(repeat.mismatches) -
                            static_cast<int>(repeat.insertions) -
                            static_cast<int>(repeat.deletions);
  const bool Ns_match = settings.N_and_perfection_mode == 2;
  const bool Ns_are_left_out = settings.N_and_perfection_mode == 1;
  const int good = Ns_match ? without_edits : without_edits - Ns;
  const int judged = Ns_are_left_out ? length - Ns : length;
  return static_cast<float>(good) / static_cast<float>(judged) * 100.0F;
}

void trim_Ns(std::string_view residues, Repeat& repeat) {
  const std::size_t last_of_unit = repeat.unit_end - 1;
  while (residues[repeat.end - 1] == 'N') {
    --repeat.end;
    --repeat.num_Ns;
    std::size_t& cursor = repeat.cursor_forward;
    cursor = cursor == repeat.unit_begin ? last_of_unit : cursor - 1;
  }
  while (residues[repeat.begin] == 'N') {
    ++repeat.begin;
    --repeat.num_Ns;
    std::size_t& cursor = repeat.cursor_backward;
    cursor = cursor == last_of_unit ? repeat.unit_begin : cursor + 1;
  }
}

void sort_events(Repeat& repeat) {
  std::sort(repeat.events.begin(), repeat.events.end(), [](const Event& a, const Event& b) {
    return a.position != b.position ? a.position < b.position : a.kind < b.kind;
  });
}

void sort_repeats(std::vector<Repeat>& repeats) {
  std::stable_sort(repeats.begin(), repeats.end(), [](const Repeat& a, const Repeat& b) {
    return a.begin != b.begin ? a.begin < b.begin : a.end < b.end;
  });
}

Thresholds user_thresholds(const Settings& settings, std::size_t unit_length) {
  return {
      threshold(settings.min_score, settings.min_score_a, settings.min_score_bx, unit_length),
      threshold(settings.min_length, settings.min_length_a, settings.min_length_bx, unit_length)};
}

Thresholds seed_thresholds(std::size_t unit_length) {
  return {std::max(4, static_cast<int>(unit_length)), 0};
}

bool reaches(const Repeat& repeat, const Thresholds& thresholds) {
  return repeat.score >= thresholds.score && repeat_length(repeat) >= thresholds.length;
}

}  // namespace reference
