// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The generator of cases; see the header.

#include "random_cases.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "random_residues.h"

namespace differential {
namespace {

using reference::Settings;

constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();

// Deeper look-aheads are practically not bounded by their depth, and get short records.
constexpr int kLargestBoundingDepth = 7;
constexpr std::size_t kLongestForDeepLookAhead = 200;

// About a millisecond of a slow twin; one case in 64 may cost thirty times that.
constexpr double kUsualBudget = 500'000;
constexpr double kRareBudget = 10'000'000;

int random_penalty(Random& random) {
  if (random.per_cent(40)) return Settings().mismatch_score;
  if (random.per_cent(3)) return random.one_of({kSmallest, kSmallest + 1, -1000000});
  return random.between(-9, -2);
}

// Where the best score on a path matters at all, the reduction is finite.
int random_scorereduction(Random& random) {
  if (random.per_cent(40)) return kLargest;
  if (random.per_cent(5)) return random.between(-10, -1);
  if (random.per_cent(4)) return random.one_of({kSmallest, kSmallest + 1, kLargest - 1});
  return random.per_cent(70) ? random.between(0, 20) : random.between(0, 60);
}

// Room for one to four edits in a row, and cheap ones, so that a path often climbs above the best
// score before it and then runs into the limit that it has thereby raised.
void set_tight_reduction(Random& random, Settings& settings) {
  settings.mismatch_score = random.between(-4, -2);
  settings.indel_score = random.between(-4, -2);
  settings.maximum_scorereduction = random.between(2, 12);
  settings.maximum_recursion_depth = random.between(2, 7);
}

int random_depth(Random& random) {
  if (random.per_cent(30)) return Settings().maximum_recursion_depth;
  // The level is an 8-bit number: from 256 on it never equals the depth.
  if (random.per_cent(2)) return random.one_of({8, 255, 256, 257, kLargest});
  return random.between(1, 7);
}

// A look-ahead that no depth bounds must be bounded by the score: a path can hardly take a second
// edit before matches have made up for the first.
void bound_deep_look_ahead(Random& random, Settings& settings) {
  if (settings.maximum_recursion_depth <= kLargestBoundingDepth) return;
  settings.mismatch_score = random.between(-9, -5);
  settings.indel_score = random.between(-9, -5);
  const int smaller_penalty = -std::max(settings.mismatch_score, settings.indel_score);
  settings.maximum_scorereduction = smaller_penalty + random.between(-1, 2);
}

void set_random_unit_lengths(Random& random, Settings& settings) {
  const int shortest = random.per_cent(60) ? 1 : random.between(2, random.per_cent(80) ? 8 : 60);
  const int more = random.per_cent(50) ? 9 : random.between(0, random.per_cent(90) ? 14 : 60);
  settings.min_unit_length = static_cast<unsigned>(shortest);
  settings.max_unit_length = static_cast<unsigned>(std::min(shortest + more, 60));
  if (random.per_mille(4)) settings.max_unit_length = std::numeric_limits<unsigned>::max();
}

void set_score_thresholds(Random& random, Settings& settings) {
  settings.min_score = random.one_of({2, 3, 4, 5, 6, 8, 12, 20, 40});
  settings.min_score_bx = random.one_of({0.0F, 1.0F, 1.0F, 1.0F, 1.5F, 0.3F, 1.1F, -1.0F, 3.0F});
  if (random.per_cent(20)) settings.min_score_a = random.between(-10, 10);
}

// Nearly every candidate reaches these.
void set_low_thresholds(Random& random, Settings& settings) {
  settings.min_score = random.one_of({0, -1, -2, -10, kSmallest});
  settings.min_score_a = random.between(-12, 1);
  settings.min_score_bx = random.one_of({0.0F, 0.0F, 1.0F, -1.0F});
}

void set_length_thresholds(Random& random, Settings& settings) {
  settings.min_length = random.between(2, 40);
  if (random.per_cent(30)) settings.min_length_a = random.between(-10, 20);
  if (random.per_cent(50)) settings.min_length_bx = random.one_of({1.0F, 2.0F, 2.5F, 3.3F});
}

void set_random_thresholds(Random& random, Settings& settings) {
  const int kind = random.between(0, 99);
  if (kind < 35) return;  // the defaults
  if (kind < 70) {
    set_score_thresholds(random, settings);
    if (random.per_cent(25)) set_length_thresholds(random, settings);
  } else {
    set_low_thresholds(random, settings);
    if (random.per_cent(75)) set_length_thresholds(random, settings);
  }
}

void set_random_N_rules(Random& random, Settings& settings) {
  settings.treat_Ns_as_missense = random.per_cent(15);
  if (random.per_cent(50)) {
    settings.Ns_allowed_in_a_row = random.one_of({0, 1, 1, 2, 3, 5, 12, kLargest});
  }
}

// A range that leaves some repeats out keeps the marks of the exact search open.
void set_random_perfection(Random& random, Settings& settings) {
  settings.N_and_perfection_mode = random.between(0, 2);
  if (random.per_cent(75)) return;
  settings.min_perfection = static_cast<float>(random.one_of({0, 60, 80, 90, 100}));
  settings.max_perfection = static_cast<float>(random.one_of({100, 100, 99, 95, 80}));
}

// How many edits in a row a path of the look-ahead can hold when it starts at this score: each
// costs at least the smaller penalty, and the score may fall to the threshold.
double edits_in_a_row(const Settings& settings, double score, double unit_length) {
  const double penalty = -std::max<double>(settings.mismatch_score, settings.indel_score);
  const double fall = std::min<double>(settings.maximum_scorereduction, score + unit_length) +
                      settings.prefer_longer_repeat;
  const double affordable = std::max(std::floor(fall / penalty), 0.0);
  return std::min(affordable, static_cast<double>(settings.maximum_recursion_depth) + 1);
}

double calls_for(double edits) { return (edits + 1) * std::pow(3.0, edits); }

// Reduces one of the causes of the cost.
void reduce_cost(Random& random, Settings& settings, std::size_t& length) {
  constexpr std::size_t kShortest = 20;
  switch (random.between(0, 3)) {
    case 0:
      if (settings.maximum_recursion_depth > 1) --settings.maximum_recursion_depth;
      break;
    case 1: {
      const unsigned range = settings.max_unit_length - settings.min_unit_length;
      (random.per_cent(50) ? settings.max_unit_length -= range / 2
                           : settings.min_unit_length += range / 2);
      break;
    }
    case 2:
      if (settings.maximum_scorereduction > 60) {
        if (random.per_cent(20)) settings.maximum_scorereduction = random.between(0, 60);
      } else if (settings.maximum_scorereduction > 4) {
        settings.maximum_scorereduction -= 3;
      }
      break;
    default:
      length = std::max(length * 3 / 4, kShortest);
      break;
  }
}

std::size_t random_length(Random& random) {
  if (random.per_cent(10)) return random.below(50);
  if (random.per_cent(5)) return 600 + random.below(2400);
  return 50 + random.below(550);
}

std::uint64_t seed_of_case(std::uint64_t seed, std::uint64_t number) {
  return Random(Random(seed).next() + number).next();
}

}  // namespace

Settings random_settings(Random& random) {
  Settings settings;
  set_random_unit_lengths(random, settings);
  settings.mismatch_score = random_penalty(random);
  settings.indel_score = random_penalty(random);
  settings.maximum_recursion_depth = random_depth(random);
  settings.maximum_scorereduction = random_scorereduction(random);
  if (random.per_cent(30)) set_tight_reduction(random, settings);
  bound_deep_look_ahead(random, settings);
  settings.prefer_longer_repeat = random.per_cent(65) ? 1 : 0;
  set_random_N_rules(random, settings);
  set_random_thresholds(random, settings);
  set_random_perfection(random, settings);
  return settings;
}

double estimated_cost(const Settings& settings, std::size_t length) {
  const auto n = static_cast<double>(length);
  const auto longest = static_cast<double>(
      std::min<std::size_t>(settings.max_unit_length, std::max<std::size_t>(length, 1)));
  const auto shortest = static_cast<double>(settings.min_unit_length);
  // In background each start is extended once, from a score of about 2. Inside an array the score
  // is high, and each of the candidates that start at edits asks again at each edit.
  const double background =
      n * calls_for(edits_in_a_row(settings, 2, longest)) * std::max(longest - shortest + 1, 0.0);
  const double arrays = n * n / 100 * calls_for(edits_in_a_row(settings, n, longest));
  return background + arrays;
}

SearchCase random_case(std::uint64_t seed, std::uint64_t number) {
  Random random(seed_of_case(seed, number));
  Settings settings = random_settings(random);
  std::size_t length = random_length(random);
  if (settings.maximum_recursion_depth > kLargestBoundingDepth) {
    length = std::min(length, kLongestForDeepLookAhead);
  }
  const double budget = random.below(64) == 0 ? kRareBudget : kUsualBudget;
  while (length > 20 && estimated_cost(settings, length) > budget) {
    reduce_cost(random, settings, length);
  }
  return {settings, random_record(random, length)};
}

}  // namespace differential
