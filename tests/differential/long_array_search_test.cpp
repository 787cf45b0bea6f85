// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Long diverged arrays: one repeat with hundreds of edits, each of which is a place where further
// candidates start and run through the same array again. Background and runs of N stand around it.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "random.h"
#include "random_residues.h"
#include "search_adapter.h"

namespace differential {
namespace {

using reference::Settings;

struct ArrayCase {
  std::string_view name;
  std::string unit;
  std::size_t length;  // of the array before it diverges
  int diverged_per_mille;
  Settings settings;
};

void PrintTo(const ArrayCase& array, std::ostream* out) { *out << array.name; }

Settings unit_lengths(unsigned shortest, unsigned longest, int depth) {
  Settings settings;
  settings.min_unit_length = shortest;
  settings.max_unit_length = longest;
  settings.maximum_recursion_depth = depth;
  return settings;
}

Settings limited(Settings settings, int maximum_scorereduction) {
  settings.maximum_scorereduction = maximum_scorereduction;
  return settings;
}

Settings cheap_edits(Settings settings) {
  settings.mismatch_score = -3;
  settings.indel_score = -4;
  return settings;
}

Settings shorter(Settings settings) {
  settings.prefer_longer_repeat = 0;
  return settings;
}

std::string satellite(std::size_t unit_length) {
  Random random(unit_length);
  return random_residues(random, unit_length, "AACGT");
}

const ArrayCase kArrays[] = {
    {"AT_1_percent", "AT", 6000, 10, unit_lengths(1, 10, 5)},
    {"AT_5_percent", "AT", 3000, 50, unit_lengths(1, 10, 5)},
    {"AT_20_percent", "AT", 2000, 200, unit_lengths(1, 10, 5)},
    {"AT_20_percent_limited", "AT", 3000, 200, limited(unit_lengths(1, 30, 5), 10)},
    {"CATTC_2_percent", "CATTC", 5000, 20, unit_lengths(1, 10, 5)},
    {"CATTC_10_percent", "CATTC", 2000, 100, unit_lengths(1, 10, 5)},
    {"CATTC_10_percent_wide", "CATTC", 700, 100, limited(unit_lengths(1, 40, 5), 20)},
    {"CATTC_10_percent_cheap_edits", "CATTC", 2000, 100, cheap_edits(unit_lengths(1, 10, 3))},
    {"AAACCCT_1_percent", "AAACCCT", 6000, 10, shorter(unit_lengths(1, 10, 5))},
    {"AAACCCT_5_percent", "AAACCCT", 1500, 50, unit_lengths(6, 8, 5)},
    {"AAACCCT_5_percent_limited", "AAACCCT", 6000, 50, limited(unit_lengths(1, 14, 5), 5)},
    {"AAACCCT_15_percent", "AAACCCT", 2500, 150, unit_lengths(1, 14, 4)},
    {"satellite_30_3_percent", satellite(30), 3000, 30, unit_lengths(28, 32, 3)},
    {"satellite_30_10_percent", satellite(30), 3000, 100, unit_lengths(25, 30, 2)},
    {"satellite_30_wide", satellite(30), 900, 100, limited(unit_lengths(1, 60, 5), 15)},
    {"satellite_178_1_percent", satellite(178), 6000, 10, unit_lengths(176, 180, 2)},
    {"satellite_178_8_percent", satellite(178), 3000, 80, unit_lengths(177, 178, 2)},
    {"satellite_178_wide", satellite(178), 2000, 50, limited(unit_lengths(1, 200, 5), 10)},
};

// Background, array, N runs too long to bridge, array, short N runs inside.
std::string record_around(Random& random, const ArrayCase& array) {
  const auto half = [&] {
    return diverged(random, array_of(array.unit, array.length / 2), array.diverged_per_mille);
  };
  std::string inside = half();
  overwrite_with_Ns(random, inside, random.between(0, 5), 2);
  return random_residues(random, 100, "ACGT") + inside + std::string(random.below(2) * 7, 'N') +
         half() + std::string(5, 'N') + random_residues(random, 80, "AAATTTCG");
}

class LongArrays : public testing::TestWithParam<ArrayCase> {};

TEST_P(LongArrays, give_the_same_repeats_in_all_modes) {
  const ArrayCase& array = GetParam();
  ProductSearch product;
#ifdef VORLAN_DIFFERENTIAL_REDUCED
  constexpr std::uint64_t kRounds = 1;
#else
  constexpr std::uint64_t kRounds = 3;
#endif
  for (std::uint64_t seed = 1; seed <= kRounds; ++seed) {
    Random random(seed);
    const std::string residues = record_around(random, array);
    const std::optional<std::string> found = difference(product, residues, array.settings);
    ASSERT_FALSE(found) << "seed " << seed << ", " << *found;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, LongArrays, testing::ValuesIn(kArrays),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace differential
