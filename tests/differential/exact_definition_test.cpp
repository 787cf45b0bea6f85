// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The exact search against the definition of a perfect repeat: maximal stretches in which every
// residue equals the one a unit length further on. Records without N.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "all_strings.h"
#include "exact_by_definition.h"
#include "random.h"
#include "random_residues.h"
#include "search_adapter.h"

namespace differential {
namespace {

using reference::PerfectStretch;
using reference::Repeat;
using reference::Settings;

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::size_t kLess = 3;
constexpr std::uint64_t kRandomRecords = 300;
#else
constexpr std::size_t kLess = 0;
constexpr std::uint64_t kRandomRecords = 2000;
#endif

Settings one_unit_length(unsigned unit_length, int min_score) {
  Settings settings;
  settings.min_unit_length = settings.max_unit_length = unit_length;
  settings.min_score = min_score;
  settings.min_score_bx = 0;
  settings.remove_mostly_hidden = false;
  return settings;
}

bool is_one_residue_repeated(std::string_view stretch) {
  return stretch.find_first_not_of(stretch[0]) == std::string_view::npos;
}

// What the exact search must find at a single unit length, in order.
std::vector<PerfectStretch> stretches_to_find(std::string_view residues, const Settings& settings) {
  const std::size_t unit_length = settings.min_unit_length;
  std::vector<PerfectStretch> wanted;
  for (const PerfectStretch& stretch :
       reference::perfect_stretches(residues, unit_length, unit_length)) {
    const std::size_t length = stretch.end - stretch.begin;
    if (stretch.score() < static_cast<std::size_t>(settings.min_score)) continue;
    if (length < static_cast<std::size_t>(settings.min_length)) continue;
    if (unit_length > 1 && is_one_residue_repeated(residues.substr(stretch.begin, length)))
      continue;
    wanted.push_back(stretch);
  }
  return wanted;
}

std::vector<PerfectStretch> found_stretches(ProductSearch& product, std::string_view residues,
                                            const Settings& settings) {
  std::vector<PerfectStretch> stretches;
  for (const Repeat& repeat : product.find(Mode::kExact, residues, settings, Buffer::kExact)) {
    stretches.push_back({repeat.begin, repeat.end, repeat.unit_end - repeat.unit_begin});
    EXPECT_EQ(repeat.score, static_cast<int>(stretches.back().score()));
    EXPECT_TRUE(repeat.begin <= repeat.unit_begin && repeat.unit_end <= repeat.end);
    EXPECT_TRUE(repeat.events.empty());
  }
  return stretches;
}

// A minimum score of the unit length and more: then no stretch hides another of the same period.
testing::AssertionResult finds_all_stretches_of_one_unit_length(ProductSearch& product,
                                                                std::string_view residues) {
  for (unsigned unit_length = 1; unit_length <= 6; ++unit_length) {
    for (const int more : {0, 1, 3}) {
      Settings settings = one_unit_length(unit_length, static_cast<int>(unit_length) + more);
      settings.min_length = more == 3 ? static_cast<int>(unit_length) * 3 : 0;
      if (found_stretches(product, residues, settings) != stretches_to_find(residues, settings)) {
        return testing::AssertionFailure()
               << residues << ", unit length " << unit_length << ", minimum score "
               << settings.min_score << ", minimum length " << settings.min_length;
      }
    }
  }
  return testing::AssertionSuccess();
}

TEST(ExactSearch, finds_the_perfect_stretches_of_all_short_records) {
  ProductSearch product;
  for (const std::string_view alphabet : {"AC", "ACG"}) {
    for_each_string_up_to(
        alphabet, (alphabet.size() == 2 ? 13 : 8) - kLess, [&](const std::string& residues) {
          const auto result = finds_all_stretches_of_one_unit_length(product, residues);
          EXPECT_TRUE(result);
          return static_cast<bool>(result);
        });
  }
}

TEST(ExactSearch, finds_the_perfect_stretches_of_random_records) {
  ProductSearch product;
  for (std::uint64_t seed = 0; seed < kRandomRecords; ++seed) {
    Random random(seed);
    std::string residues = random_record(random, random.below(400));
    std::replace(residues.begin(), residues.end(), 'N', 'G');
    ASSERT_TRUE(finds_all_stretches_of_one_unit_length(product, residues)) << "seed " << seed;
  }
}

// Over a range of unit lengths the marks of shorter units hide some stretches, but nothing else can
// be found than a stretch.
TEST(ExactSearch, finds_only_perfect_stretches_over_a_range_of_unit_lengths) {
  ProductSearch product;
  std::size_t found = 0;
  for (std::uint64_t seed = 0; seed < kRandomRecords; ++seed) {
    Random random(seed);
    std::string residues = random_record(random, random.below(400));
    std::replace(residues.begin(), residues.end(), 'N', 'G');
    Settings settings = one_unit_length(1, random.between(1, 8));
    settings.max_unit_length = static_cast<unsigned>(random.between(2, 20));
    const std::vector<PerfectStretch> all =
        reference::perfect_stretches(residues, 1, settings.max_unit_length);
    for (const PerfectStretch& stretch : found_stretches(product, residues, settings)) {
      ++found;
      ASSERT_TRUE(std::binary_search(all.begin(), all.end(), stretch))
          << "seed " << seed << " [" << stretch.begin << ", " << stretch.end << ") unit length "
          << stretch.unit_length << " of " << residues;
    }
  }
  EXPECT_GT(found, kRandomRecords);
}

}  // namespace
}  // namespace differential
