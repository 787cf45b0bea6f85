// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The three searches against their slow twins on a fixed series of random cases. The program
// vorlan_differential runs longer and other series of the same generator.

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "random.h"
#include "random_cases.h"
#include "random_residues.h"
#include "search_adapter.h"

namespace differential {
namespace {

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::uint64_t kCasesPerSeed = 1000;
#else
constexpr std::uint64_t kCasesPerSeed = 2000;
#endif

class RandomCases : public testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomCases, give_the_same_repeats_in_all_modes) {
  ProductSearch product;
  for (std::uint64_t number = 0; number < kCasesPerSeed; ++number) {
    const SearchCase random = random_case(GetParam(), number);
    // Engines apart take most of the time; vorlan_differential has them in every case.
    const Engines engines = number % 4 == 0 ? Engines::kApart : Engines::kTogether;
    const std::optional<std::string> found =
        difference(product, random.residues, random.settings, engines);
    ASSERT_FALSE(found) << "vorlan_differential --seed " << GetParam() << " --first " << number
                        << " --cases 1\n"
                        << *found;
  }
}

// A limit of the score reduction about as large as the record: smaller ones can be reached by an
// extension over the whole record, larger ones cannot.
TEST_P(RandomCases, limits_that_can_hardly_be_reached_give_the_same_repeats) {
  ProductSearch product;
  Random random(GetParam());
  for (std::uint64_t number = 0; number < kCasesPerSeed; ++number) {
    const std::size_t length = 4 + random.below(16);
    const std::string unit = random_residues(random, 1 + random.below(3), "ACGT");
    const std::string residues = diverged(random, array_of(unit, length), 100);
    reference::Settings settings;
    settings.mismatch_score = random.between(-4, -2);
    settings.indel_score = random.between(-4, -2);
    settings.min_score = 1;
    settings.min_score_bx = 0;
    settings.maximum_scorereduction = static_cast<int>(residues.size()) - random.between(-1, 6);
    settings.prefer_longer_repeat = random.between(0, 1);
    const std::optional<std::string> found =
        difference(product, residues, settings, Engines::kApart);
    ASSERT_FALSE(found) << *found;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCases, testing::Range<std::uint64_t>(101, 105));

}  // namespace
}  // namespace differential
