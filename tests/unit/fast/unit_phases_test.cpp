// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Numbers of units against the letters that a reader sees when it goes round them.

#include "imperfect/ways/unit_phases.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "all_strings.h"
#include "extension_settings.h"
#include "random.h"
#include "random_residues.h"

namespace vorlan {
namespace {

using differential::Random;

/// The first bases that are read from `offset` on. Two units of at most half as many bases read
/// alike for ever when they do so here.
std::string read_from(const std::string& unit, std::size_t offset, std::size_t bases) {
  std::string text;
  for (std::size_t i = 0; i < bases; ++i) text += unit[(offset + i) % unit.size()];
  return text;
}

/// Checks that readings and numbers belong to each other one to one.
class Numbering {
 public:
  explicit Numbering(std::size_t longest_unit) : bases_(2 * longest_unit) {}

  void expect_consistent(const std::string& unit) {
    const UnitPhases::Unit phases = numbers_.of(unit);
    for (std::size_t offset = 0; offset < unit.size(); ++offset) {
      const std::string text = read_from(unit, offset, bases_);
      const std::uint32_t number = phases.phase(static_cast<std::uint32_t>(offset));
      ASSERT_EQ(number_of_.emplace(text, number).first->second, number)
          << unit << " from " << offset << " reads like a unit with another number";
      ASSERT_EQ(text_of_.emplace(number, text).first->second, text)
          << unit << " from " << offset << " has the number of another reading";
    }
  }

  std::size_t size() const { return number_of_.size(); }

 private:
  std::size_t bases_;
  UnitPhases numbers_;
  std::map<std::string, std::uint32_t> number_of_;
  std::map<std::uint32_t, std::string> text_of_;
};

std::vector<std::string> all_units(std::string_view alphabet, std::size_t longest) {
  std::vector<std::string> units;
  for (std::size_t length = 1; length <= longest; ++length) {
    differential::for_each_string(alphabet, length, [&](const std::string& unit) {
      units.push_back(unit);
      return true;
    });
  }
  return units;
}

TEST(UnitPhases, AreEqualExactlyForUnitsThatReadAlike) {
  Numbering numbering(6);
  std::vector<std::string> units = all_units("AC", 6);
  for (const std::string& unit : units) ASSERT_NO_FATAL_FAILURE(numbering.expect_consistent(unit));
  // Over two letters there are 2, 2, 6, 12, 30 and 54 words of 1 to 6 letters that are no power of
  // a shorter one; each is a reading of its own.
  EXPECT_EQ(numbering.size(), 106U);
}

TEST(UnitPhases, DoNotDependOnTheOrderInWhichUnitsCome) {
  for (std::uint64_t seed = 0; seed < 10; ++seed) {
    Random random(seed);
    Numbering numbering(6);
    std::vector<std::string> units = all_units("AC", 6);
    for (std::size_t left = units.size(); left > 0; --left) {
      std::swap(units[random.below(left)], units[left - 1]);
    }
    for (const std::string& unit : units) {
      ASSERT_NO_FATAL_FAILURE(numbering.expect_consistent(unit)) << "seed " << seed;
    }
  }
}

TEST(UnitPhases, AreEqualForLongUnitsOnlyWhenTheyReadAlike) {
  constexpr std::size_t kLongest = 60;
  Numbering numbering(kLongest);
  Random random(3);
  for (int i = 0; i < 200; ++i) {
    const std::string part = differential::random_residues(random, 1 + random.below(15), "ACGT");
    const std::string unit = differential::array_of(part, part.size() * (1 + random.below(4)));
    const std::string rotated = read_from(unit, random.below(unit.size()), unit.size());
    ASSERT_NO_FATAL_FAILURE(numbering.expect_consistent(unit));
    ASSERT_NO_FATAL_FAILURE(numbering.expect_consistent(rotated));
    ASSERT_NO_FATAL_FAILURE(numbering.expect_consistent(part));
  }
}

}  // namespace
}  // namespace vorlan
