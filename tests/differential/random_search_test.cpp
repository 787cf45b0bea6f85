// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The three searches against their slow twins on a fixed series of random cases. The program
// vorlan_differential runs longer and other series of the same generator.

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "random_cases.h"
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
    const std::optional<std::string> found = difference(product, random.residues, random.settings);
    ASSERT_FALSE(found) << "vorlan_differential --seed " << GetParam() << " --first " << number
                        << " --cases 1\n"
                        << *found;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCases, testing::Range<std::uint64_t>(101, 105));

}  // namespace
}  // namespace differential
