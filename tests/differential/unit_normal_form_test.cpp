// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The reported form of repeat units against the one found by writing out all rotations.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "all_strings.h"
#include "config/settings.h"
#include "normal_form.h"
#include "output/repeat_unit.h"
#include "random.h"
#include "random_residues.h"

namespace differential {
namespace {

using reference::UnitMode;

constexpr std::array kModes = {UnitMode::kAsIs, UnitMode::kAlphabetical,
                               UnitMode::kAlphabeticalStrand};

// The text that is reported for the unit, or nothing when it is not reported.
std::optional<std::string> expected_unit(std::string_view unit, UnitMode mode) {
  const reference::UnitForm form = reference::unit_normal_form(unit, mode);
  return form.primitive ? std::optional<std::string>(form.text) : std::nullopt;
}

testing::AssertionResult is_reported_as_expected(std::string_view unit) {
  for (const UnitMode mode : kModes) {
    vorlan::global_report_unit_mode = static_cast<int>(mode);
    const std::optional<std::string> expected = expected_unit(unit, mode);
    const std::optional<std::string> found = vorlan::reported_unit(unit);
    if (found != expected) {
      return testing::AssertionFailure()
             << "unit " << unit << " in mode " << static_cast<int>(mode) << ": "
             << expected.value_or("(not reported)") << " expected, "
             << found.value_or("(not reported)") << " found";
    }
  }
  return testing::AssertionSuccess();
}

void expect_all_up_to(std::string_view alphabet, std::size_t max_length) {
  for (std::size_t length = 1; length <= max_length; ++length) {
    for_each_string(alphabet, length, [](const std::string& unit) {
      const auto result = is_reported_as_expected(unit);
      EXPECT_TRUE(result);
      return static_cast<bool>(result);
    });
  }
}

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::size_t kLess = 2;
#else
constexpr std::size_t kLess = 0;
#endif

TEST(UnitNormalForm, is_the_same_for_all_units_of_two_letters) {
  expect_all_up_to("AC", 14 - kLess);
  expect_all_up_to("AT", 14 - kLess);
}

TEST(UnitNormalForm, is_the_same_for_all_units_of_three_and_four_letters) {
  expect_all_up_to("ACG", 9 - kLess);
  expect_all_up_to("ACGT", 7 - kLess);
  expect_all_up_to("ANT", 8 - kLess);
}

// W and S have no complement, lower case and other bytes neither.
TEST(UnitNormalForm, is_the_same_for_units_with_letters_that_are_no_bases) {
  expect_all_up_to("AWS", 7);
  expect_all_up_to("Ca?\xC4", 6);
}

TEST(UnitNormalForm, is_the_same_for_random_long_units) {
  for (std::uint64_t seed = 0; seed < 1500; ++seed) {
    Random random(seed);
    const std::string_view alphabet =
        random.one_of<std::string_view>({"ACGT", "AT", "AAAAAAC", "ACGTN", "ACGTNRYKMBVDHWSUZ-x"});
    const std::string block = random_residues(random, 1 + random.below(100), alphabet);
    // Whole blocks give repetitions, others nearly.
    const std::size_t length =
        random.per_cent(50) ? block.size() * (1 + random.below(6)) : 1 + random.below(300);
    std::string unit = array_of(block, length);
    if (random.per_cent(20)) unit[random.below(length)] = 'G';
    ASSERT_TRUE(is_reported_as_expected(unit)) << "seed " << seed;
  }
}

}  // namespace
}  // namespace differential
