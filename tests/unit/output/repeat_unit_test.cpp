// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/repeat_unit.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <string>

#include "output/cdnastring.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using ::testing::Eq;
using ::testing::Optional;

class ReportedUnit : public FreshSettings {
 protected:
  static std::optional<std::string> in_mode(int mode, std::string_view unit) {
    global_report_unit_mode = mode;
    return reported_unit(unit);
  }
};

TEST_F(ReportedUnit, ConsideringBothStrandsIsTheSmallestRotationOfEither) {
  const auto reported = [](std::string_view unit) {
    return in_mode(kUnitMinimalBothStrands, unit);
  };
  EXPECT_THAT(reported("CA"), Optional(Eq("AC")));
  EXPECT_THAT(reported("TG"), Optional(Eq("AC")));
  EXPECT_THAT(reported("GA"), Optional(Eq("AG")));
  EXPECT_THAT(reported("AAG"), Optional(Eq("AAG")));
  EXPECT_THAT(reported("CTT"), Optional(Eq("AAG")));
}

TEST_F(ReportedUnit, InNormalFormIsTheSmallestRotation) {
  EXPECT_THAT(in_mode(kUnitMinimal, "CA"), Optional(Eq("AC")));
  EXPECT_THAT(in_mode(kUnitMinimal, "TG"), Optional(Eq("GT")));
  EXPECT_THAT(in_mode(kUnitMinimal, "GATA"), Optional(Eq("AGAT")));
}

TEST_F(ReportedUnit, AsIsIsTheUnitAsItWasFound) {
  EXPECT_THAT(in_mode(kUnitAsIs, "CA"), Optional(Eq("CA")));
}

TEST_F(ReportedUnit, ARepetitionOfAShorterUnitIsNotReportedInAnyMode) {
  for (const int mode : {kUnitAsIs, kUnitMinimal, kUnitMinimalBothStrands}) {
    for (const char* unit : {"ACAC", "AAAA", "ATATAT", "AACAAC", "CATCATCAT"}) {
      EXPECT_EQ(in_mode(mode, unit), std::nullopt) << unit << " in mode " << mode;
    }
  }
}

TEST_F(ReportedUnit, AsIsAPrimeNumberOfEqualBasesIsReported) {
  for (const char* unit : {"AA", "CCC", "TTTTT"}) {
    EXPECT_THAT(in_mode(kUnitAsIs, unit), Optional(Eq(unit)));
    EXPECT_EQ(in_mode(kUnitMinimal, unit), std::nullopt);
    EXPECT_EQ(in_mode(kUnitMinimalBothStrands, unit), std::nullopt);
  }
}

TEST_F(ReportedUnit, OfLength1IsAlwaysReported) {
  EXPECT_THAT(in_mode(kUnitAsIs, "T"), Optional(Eq("T")));
  EXPECT_THAT(in_mode(kUnitMinimal, "T"), Optional(Eq("T")));
  EXPECT_THAT(in_mode(kUnitMinimalBothStrands, "T"), Optional(Eq("A")));
  EXPECT_THAT(in_mode(kUnitMinimalBothStrands, "G"), Optional(Eq("C")));
  EXPECT_THAT(in_mode(kUnitMinimalBothStrands, "A"), Optional(Eq("A")));
  EXPECT_THAT(in_mode(kUnitMinimalBothStrands, "C"), Optional(Eq("C")));
}

// The reverse complement of AW is ?T, and '?' sorts before the letters; that of SW is ??.
TEST_F(ReportedUnit, LettersWithoutAComplementBecomeQuestionMarks) {
  EXPECT_THAT(in_mode(kUnitMinimalBothStrands, "AW"), Optional(Eq("?T")));
  EXPECT_EQ(in_mode(kUnitMinimalBothStrands, "SW"), std::nullopt);
  EXPECT_THAT(in_mode(kUnitMinimal, "WS"), Optional(Eq("SW")));
}

TEST_F(ReportedUnit, LongerThanTheTableOfPrimeFactorsIsTestedAllTheSame) {
  // 20014 = 2 * 10007 bases, as two equal halves or with one base changed.
  std::string half(10007, 'A');
  half.back() = 'C';
  std::string unit = half + half;
  EXPECT_EQ(in_mode(kUnitAsIs, unit), std::nullopt);
  unit.front() = 'G';
  EXPECT_THAT(in_mode(kUnitAsIs, unit), Optional(Eq(unit)));
}

// What follows states the definitions as plainly as can be.

std::string smallest_rotation(const std::string& text) {
  std::string smallest = text;
  std::string rotation = text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::rotate(rotation.begin(), rotation.begin() + 1, rotation.end());
    smallest = std::min(smallest, rotation);
  }
  return smallest;
}

bool is_repetition_of_shorter(const std::string& text, std::size_t shortest) {
  for (std::size_t length = shortest; length < text.size(); ++length) {
    if (text.size() % length != 0) continue;
    if (repeated(text.substr(0, length), static_cast<int>(text.size() / length)) == text) {
      return true;
    }
  }
  return false;
}

char complement(char letter) {
  switch (letter) {
    case 'A':
      return 'T';
    case 'C':
      return 'G';
    case 'G':
      return 'C';
    case 'T':
      return 'A';
    case 'N':
      return 'N';
    default:
      return '?';
  }
}

std::string reverse_complement(const std::string& text) {
  std::string result(text.rbegin(), text.rend());
  std::transform(result.begin(), result.end(), result.begin(), complement);
  return result;
}

std::optional<std::string> expected_unit(int mode, const std::string& unit) {
  const std::string reverse = reverse_complement(unit);
  const std::string& tested = mode == kUnitMinimalBothStrands ? reverse : unit;
  // As it is, a prime number of equal bases passes: only proper prime factors are tried.
  if (is_repetition_of_shorter(tested, mode == kUnitAsIs ? 2 : 1)) return std::nullopt;
  if (mode == kUnitAsIs) return unit;
  if (mode == kUnitMinimal) return smallest_rotation(unit);
  return std::min(smallest_rotation(unit), smallest_rotation(reverse));
}

/// Calls `action` with every text over `alphabet` of 1 to `longest` letters.
void for_each_text(const std::string& alphabet, std::size_t longest,
                   const std::function<void(const std::string&)>& action,
                   const std::string& prefix = "") {
  for (const char letter : alphabet) {
    const std::string text = prefix + letter;
    action(text);
    if (text.size() < longest) for_each_text(alphabet, longest, action, text);
  }
}

class ReportedUnitOverAlphabet : public FreshSettings,
                                 public ::testing::WithParamInterface<std::string> {};

TEST_P(ReportedUnitOverAlphabet, IsWhatTheDefinitionSaysForEveryUnitOfUpTo8Bases) {
  for (const int mode : {kUnitAsIs, kUnitMinimal, kUnitMinimalBothStrands}) {
    global_report_unit_mode = mode;
    for_each_text(GetParam(), 8, [mode](const std::string& unit) {
      ASSERT_EQ(reported_unit(unit), expected_unit(mode, unit)) << unit << " in mode " << mode;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(TwoOrThreeLetters, ReportedUnitOverAlphabet,
                         ::testing::Values("AC", "AT", "CG", "AG", "SW", "AN", "ACG", "ACT", "AWT",
                                           "CGN"));

TEST(DnaString, ComplementsAreThoseOfTheAmbiguityCodes) {
  CDnaString result;
  // Read backward, each letter for its complement.
  result.setToRevCompOf(CDnaString("ACGTBVDHKMRYN"));
  EXPECT_EQ(result.view(), "NRYKMDHBVACGT");
  result.setToRevCompOf(CDnaString("WSUZacgt-?"));
  EXPECT_EQ(result.view(), "??????????");
}

TEST(DnaString, TellsWhetherTheReverseComplementIsARepetition) {
  CDnaString result;
  EXPECT_FALSE(result.setToMinAlphaRepModRevCompAndCyclicPermOf(CDnaString("TG")));
  EXPECT_EQ(result.view(), "AC");
  EXPECT_TRUE(result.setToMinAlphaRepModRevCompAndCyclicPermOf(CDnaString("TGTG")));
  EXPECT_EQ(result.view(), "ACAC");
  EXPECT_TRUE(result.setToMinAlphaRepModRevCompAndCyclicPermOf(CDnaString("SW")));
  EXPECT_EQ(result.view(), "??");
}

// Upper case sorts before lower case and a byte from 128 up behind both.
TEST(DnaString, BytesAreComparedAsUnsignedValues) {
  CDnaString result;
  EXPECT_FALSE(
      result.setToMinAlphaCyclicPermOf(CDnaString("\xC3"
                                                  "aT")));
  EXPECT_EQ(result.view(),
            "T\xC3"
            "a");
}

TEST(DnaString, TheSourceIsNotChanged) {
  const CDnaString source("TG");
  CDnaString result("longer than the source");
  result.setToMinAlphaRepModRevCompAndCyclicPermOf(source);
  EXPECT_EQ(source.view(), "TG");
  EXPECT_EQ(result.view(), "AC");
}

}  // namespace
}  // namespace vorlan
