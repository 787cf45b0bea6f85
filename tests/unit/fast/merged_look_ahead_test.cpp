// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead level by level against the one path by path: the same move at every decision. The
// latter is held against the slow twin as well.

#include "imperfect/look_ahead/merged_look_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <string_view>

#include "all_strings.h"
#include "description.h"
#include "extension_settings.h"
#include "imperfect/leap_ahead.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {

void PrintTo(Move move, std::ostream* out) {
  *out << std::array{"none", "mismatch", "insertion", "deletion"}.at(
      static_cast<std::size_t>(move));
}

namespace {

using differential::Random;
using reference::Settings;

/// The edges of a text as the two directions see them.
struct Ends {
  const char* begin;
  const char* end;
};
const char* origin(Forward, Ends text) { return text.begin; }
const char* origin(Backward, Ends text) { return text.end; }
const char* stop(Forward, Ends text) { return text.end; }
const char* stop(Backward, Ends text) { return text.begin; }

/// A text, and a unit in the same sequence: behind all that is looked at from the text.
class TextAndUnit {
 public:
  TextAndUnit(const std::string& text, const std::string& unit)
      : residues_(text + std::string(kReach, 'N') + unit),
        planes_(residues_.data(), residues_.size(), kReach),
        text_{residues_.data(), residues_.data() + text.size()},
        unit_{residues_.data() + residues_.size() - unit.size(),
              residues_.data() + residues_.size()} {}

  Ends text() const { return text_; }
  UnitSpan unit() const { return unit_; }
  const BitPlanes& planes() const { return planes_; }

 private:
  static constexpr std::size_t kReach = MismatchMasks<Forward>::kReach;

  std::string residues_;
  BitPlanes planes_;
  Ends text_;
  UnitSpan unit_;
};

/// Which moves were chosen, so that no test passes on decisions that are no choice.
class MoveCounts {
 public:
  void add(Move move) { ++counts_[static_cast<std::size_t>(move)]; }
  void expect_each_at_least(int number) const {
    for (const int count : counts_) EXPECT_GE(count, number);
  }

 private:
  std::array<int, 4> counts_{};
};

template <class Direction>
class MergedLookAheadTest : public FreshSettings {
 protected:
  /// Compares decisions in one text with one unit.
  class Comparison {
   public:
    Comparison(const TextAndUnit& sequence, bool has_planes)
        : stop_(stop(Direction{}, sequence.text())),
          plain_(settings_, sequence.unit(), stop_),
          merged_(settings_, sequence.unit(), stop_, has_planes ? &sequence.planes() : nullptr,
                  sequence.text().begin, memory_) {}

    const Scoring& settings() const { return settings_; }

    void expect_same_move(const char* place, const char* cursor, std::int64_t score,
                          MoveCounts& seen) {
      ASSERT_TRUE(merged_.can_decide(score));
      const Move expected = plain_.best_move({place, cursor}, score, 0, score).move;
      seen.add(expected);
      ASSERT_EQ(merged_.best_move({place, cursor}, score), expected) << "score " << score;
    }

   private:
    Scoring settings_ = Scoring::of_the_run();
    const char* stop_;
    LeapAhead<Direction> plain_;
    MergedLookAheadMemory<Direction> memory_;
    MergedLookAhead<Direction> merged_;
  };

  /// At the edge of the text, from each base of the unit and with all scores from the floor up.
  void compare_unit(const std::string& text, const std::string& unit, bool has_planes,
                    std::int64_t highest_score) {
    const TextAndUnit sequence(text, unit);
    const UnitSpan span = sequence.unit();
    Comparison comparison(sequence, has_planes);
    const std::int64_t floor = comparison.settings().threshold(0, span.length());
    for (const char* cursor = span.begin; cursor != span.end; ++cursor) {
      for (std::int64_t score = floor; score <= floor + highest_score; ++score) {
        ASSERT_NO_FATAL_FAILURE(
            comparison.expect_same_move(origin(Direction{}, sequence.text()), cursor, score, seen_))
            << text << " unit " << unit << " cursor " << cursor - span.begin;
      }
    }
  }

  /// All units of 1 to `longest` bases. Places inside are edges of the shorter texts.
  void compare_all_units(const std::string& text, std::string_view bases, std::size_t longest,
                         bool has_planes, std::int64_t highest_score) {
    for (std::size_t length = 1; length <= longest; ++length) {
      differential::for_each_string(bases, length, [&](const std::string& unit) {
        compare_unit(text, unit, has_planes, highest_score);
        return !testing::Test::HasFailure();
      });
    }
  }

  /// All texts of 1 to `longest_text` residues, with planes and without.
  void compare_all_texts(std::string_view alphabet, std::size_t longest_text,
                         std::size_t longest_unit, std::int64_t highest_score) {
    const std::string_view bases = alphabet.substr(0, alphabet.find('N'));
    differential::for_each_string_up_to(alphabet, longest_text, [&](const std::string& text) {
      if (text.empty()) return true;
      compare_all_units(text, bases, longest_unit, false, highest_score);
      compare_all_units(text, bases, longest_unit, true, highest_score);
      return !testing::Test::HasFailure();
    });
  }

  /// The same for several depths, penalties and both preferences.
  void compare_with_all_settings(std::string_view alphabet, std::size_t longest_text,
                                 std::size_t longest_unit, std::int64_t highest_score) {
    constexpr std::array<std::array<int, 3>, 4> kScores = {
        {{-2, -2, 1}, {-2, -3, 0}, {-3, -2, 1}, {-5, -4, 0}}};
    for (const auto& [mismatch, indel, prefer_longer] : kScores) {
      for (int depth = 1; depth <= 6; ++depth) {
        Settings settings;
        settings.mismatch_score = mismatch;
        settings.indel_score = indel;
        settings.prefer_longer_repeat = prefer_longer;
        settings.maximum_recursion_depth = depth;
        reference::set_settings_of_the_product(settings);
        compare_all_texts(alphabet, longest_text, longest_unit, highest_score);
        ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
      }
    }
    seen_.expect_each_at_least(100);
  }

  MoveCounts seen_;
};

using Directions = testing::Types<Forward, Backward>;
TYPED_TEST_SUITE(MergedLookAheadTest, Directions);

#ifdef VORLAN_FAST_PATH_REDUCED
constexpr std::size_t kShorter = 2;
#else
constexpr std::size_t kShorter = 0;
#endif

TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesInAllShortTextsOverTwoBases) {
  this->compare_with_all_settings("AC", 6 - kShorter, 4, 9);
}

TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesInAllShortTextsOverTwoBasesAndN) {
  this->compare_with_all_settings("ACN", 5 - kShorter, 3, 9);
}

TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesInAllShortTextsOverThreeBases) {
  this->compare_with_all_settings("ACG", 4 - kShorter, 3, 9);
}

// Texts of few bases, and arrays with many edits, resemble their unit on many diagonals, so that
// states of unequal places and scores compete.
TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesInTextsOfFewBases) {
  for (int seed = 0; seed < 500 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.mismatch_score = random.between(-5, -2);
    settings.indel_score = random.between(-5, -2);
    reference::set_settings_of_the_product(settings);
    const auto alphabet = random.one_of<std::string_view>({"AC", "AAC", "ACG", "ACGT"});
    const std::string unit = differential::random_residues(random, 1 + random.below(7), alphabet);
    const std::string few = differential::random_residues(random, 6 + random.below(30), alphabet);
    const std::string array = differential::array_of(unit, 10 + random.below(40));
    std::string text =
        random.per_cent(30) ? few : differential::diverged(random, array, random.between(50, 300));
    if (random.per_cent(20)) differential::overwrite_with_Ns(random, text, 1, 3);
    if (text.empty()) continue;
    this->compare_unit(text, unit, random.per_cent(50), 30);
    ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
  }
  this->seen_.expect_each_at_least(100);
}

/// A diverged array of `unit` with something else around it, or cut at its ends.
std::string array_with_flanks(Random& random, const std::string& unit) {
  const std::string array = differential::array_of(unit, 20 + random.below(900));
  std::string residues = differential::diverged(random, array, random.between(0, 60));
  if (random.per_cent(50)) residues += differential::random_residues(random, 20, "ACGT");
  if (random.per_cent(50)) residues = differential::random_residues(random, 20, "ACGT") + residues;
  if (random.per_cent(30)) differential::overwrite_with_Ns(random, residues, 3, 4);
  return residues;
}

/// A place with a residue on either side, often near an end.
std::ptrdiff_t random_place(Random& random, std::size_t length) {
  const int last = static_cast<int>(length) - 1;
  const int place = random.per_cent(60) ? random.between(1, last) : random.between(1, 30);
  if (place > last) return last;
  return random.per_cent(50) ? place : last + 1 - place;
}

TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesInLongArrays) {
  for (int seed = 0; seed < 400 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const Settings settings = random_unlimited_settings(random);
    reference::set_settings_of_the_product(settings);
    const std::string unit = differential::random_residues(
        random, random.per_cent(70) ? 1 + random.below(8) : 1 + random.below(40), "ACGT");
    const TextAndUnit sequence(array_with_flanks(random, unit), unit);
    const Ends text = sequence.text();
    const UnitSpan span = sequence.unit();
    const std::string_view residues(text.begin, static_cast<std::size_t>(text.end - text.begin));
    if (residues.size() < 2) continue;
    typename TestFixture::Comparison comparison(sequence, random.per_cent(75));
    const std::int64_t floor = comparison.settings().threshold(0, span.length());
    for (int i = 0; i < 8; ++i) {
      const std::ptrdiff_t place = random_place(random, residues.size());
      const std::int64_t score =
          floor + (random.per_cent(90) ? random.between(0, 40) : random.between(0, 1'000'000));
      for (const char* cursor = span.begin; cursor != span.end; ++cursor) {
        ASSERT_NO_FATAL_FAILURE(
            comparison.expect_same_move(text.begin + place, cursor, score, this->seen_))
            << differential::describe(settings) << " unit " << unit << " place " << place
            << " cursor " << cursor - span.begin << "\n"
            << residues;
      }
    }
  }
  this->seen_.expect_each_at_least(20);
}

// The level is counted in 8 bits: a depth that does not fit is never met.
TYPED_TEST(MergedLookAheadTest, MakesTheSameMovesAtDepthsThatOnlyTheScoreEnds) {
  for (int seed = 0; seed < 40 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.maximum_recursion_depth = random.one_of({20, 255, 256, 257, 2147483647});
    reference::set_settings_of_the_product(settings);
    const std::string text = differential::random_residues(random, 2 + random.below(12), "AACCN");
    this->compare_all_units(text, "AC", 4, true, 7);
    ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
  }
  this->seen_.expect_each_at_least(100);
}

std::int64_t plain_value(Forward, std::string_view residues, const Settings& settings,
                         const reference::LookAheadStart& start) {
  return reference::look_ahead_forward(residues, settings, start);
}
std::int64_t plain_value(Backward, std::string_view residues, const Settings& settings,
                         const reference::LookAheadStart& start) {
  return reference::look_ahead_backward(residues, settings, start);
}

TYPED_TEST(MergedLookAheadTest, IsComparedWithAPlainRecursionThatValuesLikeTheSlowTwin) {
  std::size_t raised = 0;
  for (int seed = 0; seed < 500 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    if (random.per_cent(70)) settings.maximum_scorereduction = random.between(0, 20);
    reference::set_settings_of_the_product(settings);
    const Scoring alignment = Scoring::of_the_run();
    const std::string residues = differential::random_record(random, 30 + random.below(200));
    reference::LookAheadStart start;
    const std::size_t unit_length = 1 + random.below(12);
    start.unit_begin = random.below(residues.size() - unit_length);
    start.unit_end = start.unit_begin + unit_length;
    // No unit holds an N.
    if (residues.substr(start.unit_begin, unit_length).find('N') != std::string::npos) continue;
    start.cursor = start.unit_begin + random.below(unit_length);
    start.position = random.below(residues.size() + 1);
    // No move that leads further below zero is ever tried.
    start.score = random.between(-std::min(3, static_cast<int>(unit_length)), 12);
    start.best = start.score + random.between(0, 6);
    start.level = static_cast<std::uint8_t>(random.between(1, 3));
    // A level above the depth is never called: the depth is met before.
    if (start.level > settings.maximum_recursion_depth) start.level = 1;

    const Dna dna(residues);
    const LeapAhead<TypeParam> look_ahead(
        alignment, {dna.at(0) + start.unit_begin, dna.at(0) + start.unit_end},
        stop(TypeParam{}, {dna.at(0), dna.end()}));
    const std::int64_t expected = plain_value(TypeParam{}, residues, settings, start);
    ASSERT_EQ(look_ahead.explore({dna.at(0) + start.position, dna.at(0) + start.cursor},
                                 start.score, start.level, start.best),
              expected)
        << differential::describe(settings) << "\n"
        << residues;
    raised += expected > start.score ? 1 : 0;
  }
  EXPECT_GT(raised, 100U);
}

}  // namespace
}  // namespace vorlan
