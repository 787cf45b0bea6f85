// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The look-ahead by numbers of edits against the one path by path, and the proof that an extension
// is over against all paths that it could go.

#include "imperfect/look_ahead/bit_look_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "all_strings.h"
#include "description.h"
#include "extension_settings.h"
#include "imperfect/leap_ahead.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

const char* stop_of(Forward, const Dna& dna) { return dna.end(); }
const char* stop_of(Backward, const Dna& dna) { return dna.at(0); }

/// The highest score behind an edit that any path of an extension reaches, by trying all of them. A
/// state that was visited with at least this score leads nowhere new.
template <class Direction>
class AllPaths {
 public:
  AllPaths(const Scoring& settings, UnitSpan unit, const char* stop, std::int64_t threshold)
      : settings_(settings), unit_(unit), stop_(stop), threshold_(threshold) {}

  std::int64_t highest_from(const char* place, const char* cursor, std::int64_t score) {
    highest_ = threshold_;
    edit(place, cursor, score);
    return highest_;
  }

 private:
  void edit(const char* place, const char* cursor, std::int64_t score) {
    const char* next_place = Direction::moved(place, 1);
    const char* next_cursor = Direction::next_unit_base(cursor, unit_);
    visit(next_place, next_cursor, score + settings_.mismatch_score);
    visit(next_place, cursor, score + settings_.indel_score);
    visit(place, next_cursor, score + settings_.indel_score);
  }

  void visit(const char* place, const char* cursor, std::int64_t score) {
    if (score <= threshold_) return;
    const auto [known, is_new] = visited_.try_emplace({place, cursor}, score);
    if (!is_new && known->second >= score) return;
    known->second = score;
    const bool goes_on = walk(place, cursor, score);
    highest_ = std::max(highest_, score);
    if (goes_on) edit(place, cursor, score);
  }

  // As the extension does: a run of N that is too long ends it.
  bool walk(const char*& place, const char*& cursor, std::int64_t& score) const {
    std::ptrdiff_t run = 0;
    for (; place != stop_; place = Direction::moved(place, 1)) {
      const char residue = *Direction::residue(place);
      const bool is_bridged = residue == 'N' && settings_.longest_N_run != 0;
      if (!is_bridged && residue != *cursor) return true;
      run = is_bridged ? run + 1 : 0;
      if (run > settings_.longest_N_run) return false;
      if (!is_bridged) ++score;
      cursor = Direction::next_unit_base(cursor, unit_);
    }
    return false;
  }

  const Scoring& settings_;
  UnitSpan unit_;
  const char* stop_;
  std::int64_t threshold_;
  std::int64_t highest_ = 0;
  std::map<std::pair<const char*, const char*>, std::int64_t> visited_;
};

template <class Direction>
class BitLookAheadTest : public FreshSettings {
 protected:
  /// A text with a unit in it, and its planes.
  struct Case {
    Case(const std::string& text, std::size_t unit_begin, std::size_t unit_length)
        : dna(text),
          planes(dna.at(0), text.size(), DiagonalMasks<Direction>::kMargin),
          unit(unit_at(unit_begin, unit_length)),
          stop(stop_of(Direction{}, dna)) {}

    UnitSpan unit_at(std::size_t begin, std::size_t length) const {
      return {dna.at(static_cast<std::ptrdiff_t>(begin)),
              dna.at(static_cast<std::ptrdiff_t>(begin + length))};
    }

    Dna dna;
    BitPlanes planes;
    UnitSpan unit;
    const char* stop;
    mutable BitLookAheadMemory memory{};
  };

  /// The decision at each place with each cursor, if it is one, with scores from the floor up.
  template <class Check>
  void for_each_decision(const Case& given, int highest_score, const Check& check) {
    const Scoring settings = Scoring::of_the_run();
    const std::int64_t floor = settings.threshold(0, given.unit.length());
    for (const char* place = given.dna.at(0); place <= given.dna.end(); ++place) {
      if (place == given.stop) continue;
      const char residue = *Direction::residue(place);
      if (residue == 'N' && settings.longest_N_run != 0) continue;
      for (const char* cursor = given.unit.begin; cursor != given.unit.end; ++cursor) {
        if (residue == *cursor) continue;
        for (std::int64_t score = floor; score <= floor + highest_score; ++score) {
          check(place, cursor, score);
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }

  /// Both look-aheads of one case.
  struct LookAheads {
    explicit LookAheads(const Case& given, DecisionMemory<Direction>* decisions = nullptr)
        : settings(Scoring::of_the_run()),
          plain(settings, given.unit, given.stop),
          bits(settings, given.unit, given.stop, &given.planes, given.dna.at(0), given.memory,
               decisions) {}

    Scoring settings;
    LeapAhead<Direction> plain;
    BitLookAhead<Direction> bits;
  };

  /// If the bits tell a move, the plain recursion makes it.
  void compare_move(LookAheads& look_aheads, const Front& front, std::int64_t score,
                    std::int64_t best) {
    const auto move = look_aheads.bits.best_move(front, score, best);
    if (!move) return;
    const Move expected = look_aheads.plain.best_move(front, score, 0, best).move;
    ++chosen_[static_cast<std::size_t>(expected)];
    ASSERT_EQ(static_cast<int>(*move), static_cast<int>(expected))
        << "score " << score << ", best " << best;
  }

  void compare_moves(const Case& given, int highest_score,
                     DecisionMemory<Direction>* decisions = nullptr) {
    LookAheads look_aheads(given, decisions);
    for_each_decision(given, highest_score, [&](auto place, auto cursor, auto score) {
      if (decisions != nullptr && decisions->find({place, cursor}, given.unit)) ++found_;
      compare_move(look_aheads, {place, cursor}, score, score);
      if (!testing::Test::HasFatalFailure()) return;
      ADD_FAILURE() << "place " << place - given.dna.at(0) << " cursor "
                    << cursor - given.unit.begin;
    });
  }

  /// With each unit of a text by turns, while decisions are kept.
  void compare_moves_of_all_units(const std::string& text, int highest_score) {
    Case given(text, 0, 1);
    DecisionMemory<Direction> decisions(given.dna.at(0), text.size());
    for (std::size_t length = text.size(); length >= 1; --length) {
      for (std::size_t begin = 0; begin + length <= text.size(); ++begin) {
        if (text.substr(begin, length).find('N') != std::string::npos) continue;
        given.unit = given.unit_at(begin, length);
        compare_moves(given, highest_score, &decisions);
      }
    }
  }

  /// With units that begin and end near each other, where their extensions often come.
  void compare_moves_of_neighbours(Random& random) {
    const std::size_t period = 20 + random.below(60);
    const std::string copies =
        differential::array_of(differential::random_residues(random, period, "ACGT"), 4 * period);
    Case given(differential::diverged(random, copies, random.between(0, 150)), 0, 1);
    DecisionMemory<Direction> decisions(given.dna.at(0), given.dna.residues.size);
    const std::size_t first = given.dna.residues.size / 2;
    for (int i = 0; i < 10; ++i) {
      given.unit = given.unit_at(first - random.below(8), period - 10 + random.below(20));
      LookAheads look_aheads(given, &decisions);
      const std::int64_t score = look_aheads.settings.floor(given.unit.length()) + 50;
      for (const char* cursor = given.unit.begin; cursor != given.unit.end; ++cursor) {
        for (const std::ptrdiff_t shift : {-1, 0, 1}) {
          compare_kept_move(look_aheads, given, cursor, shift, score, decisions);
        }
      }
    }
  }

  /// One copy further on from `cursor`, or nearly.
  void compare_kept_move(LookAheads& look_aheads, const Case& given, const char* cursor,
                         std::ptrdiff_t shift, std::int64_t score,
                         const DecisionMemory<Direction>& decisions) {
    const char* place = Direction::moved(cursor, given.unit.length() + shift);
    if (place <= given.dna.at(0) || place >= given.dna.end()) return;
    if (*Direction::residue(place) == *cursor) return;
    const Front front{place, cursor};
    if (decisions.find(front, given.unit)) ++found_;
    compare_move(look_aheads, front, score, score);
  }

  /// In a random text, where up to `most_lost` points are lost since the best score.
  void compare_random_moves(Random& random, const Settings& settings, int most_lost) {
    reference::set_settings_of_the_product(settings);
    const Case given = random_case(random);
    LookAheads look_aheads(given);
    for_random_decisions(random, given, [&](auto place, auto cursor, auto score) {
      compare_move(look_aheads, {place, cursor}, score, score + random.between(0, most_lost));
    });
    ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
  }

  /// Whatever is said to stay below a goal does, for goals at and around the score.
  void check_proofs(const Case& given, int highest_score) {
    const Scoring settings = Scoring::of_the_run();
    BitLookAhead<Direction> bits(settings, given.unit, given.stop, &given.planes, given.dna.at(0),
                                 given.memory, nullptr);
    for_each_decision(given, highest_score, [&](auto place, auto cursor, auto score) {
      const std::int64_t threshold = settings.threshold(score, given.unit.length());
      AllPaths<Direction> all(settings, given.unit, given.stop, threshold);
      const std::int64_t highest = all.highest_from(place, cursor, score);
      for (std::int64_t goal = score - 2; goal <= score + 3; ++goal) {
        const bool stays_below = bits.stays_below(goal, {place, cursor}, score, threshold);
        if (stays_below) {
          ++proofs_;
          ASSERT_LT(highest, goal) << "place " << place - given.dna.at(0) << " cursor "
                                   << cursor - given.unit.begin << " score " << score;
        } else if (highest > threshold && highest < goal) {
          ++missed_proofs_;
        }
      }
    });
  }

  template <class Check>
  void for_each_text(std::string_view alphabet, std::size_t longest_text, const Check& check) {
    differential::for_each_string_up_to(alphabet, longest_text, [&](const std::string& text) {
      if (text.empty()) return true;
      check(text);
      if (!testing::Test::HasFailure()) return true;
      ADD_FAILURE() << text;
      return false;
    });
  }

  /// All texts up to a length, with all units of up to three bases in them.
  template <class Check>
  void for_each_short_case(std::string_view alphabet, std::size_t longest_text,
                           const Check& check) {
    differential::for_each_string_up_to(alphabet, longest_text, [&](const std::string& text) {
      for (std::size_t length = 1; length <= std::min<std::size_t>(3, text.size()); ++length) {
        for (std::size_t begin = 0; begin + length <= text.size(); ++begin) {
          if (text.substr(begin, length).find('N') != std::string::npos) continue;
          check(Case(text, begin, length));
          if (testing::Test::HasFailure()) {
            ADD_FAILURE() << text << " unit at " << begin << ", length " << length;
            return false;
          }
        }
      }
      return true;
    });
  }

  template <class Check>
  void for_each_setting(const Check& check) {
    constexpr std::array<std::array<int, 3>, 5> kScores = {
        {{-2, -2, 1}, {-2, -7, 0}, {-6, -2, 1}, {-5, -5, 1}, {-3, -4, 0}}};
    for (const auto& [mismatch, indel, prefer_longer] : kScores) {
      Settings settings;
      settings.mismatch_score = mismatch;
      settings.indel_score = indel;
      settings.prefer_longer_repeat = prefer_longer;
      check(settings);
      ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
    }
  }

  /// A text that resembles its unit on several diagonals: diverged copies, few bases around them.
  Case random_case(Random& random) {
    const auto alphabet = random.one_of<std::string_view>({"AT", "AAT", "ACGT", "ACGT"});
    const std::size_t length = random.per_cent(80) ? 1 + random.below(9) : 1 + random.below(130);
    const std::string unit = differential::random_residues(random, length, alphabet);
    const std::string array = differential::array_of(unit, random.below(200));
    std::string text = unit + differential::diverged(random, array, random.between(0, 250));
    const std::size_t begin = random.below(40);
    text = differential::random_residues(random, begin, alphabet) + text +
           differential::random_residues(random, random.below(60), alphabet);
    if (random.per_cent(20)) {
      std::string rest = text.substr(begin + length);
      if (!rest.empty()) differential::overwrite_with_Ns(random, rest, 1, 4);
      text.replace(begin + length, std::string::npos, rest);
    }
    return Case(text, begin, length);
  }

  /// A decision anywhere in a random text.
  template <class Check>
  void for_random_decisions(Random& random, const Case& given, const Check& check) {
    const Scoring settings = Scoring::of_the_run();
    const std::int64_t floor = settings.threshold(0, given.unit.length());
    const auto residues = static_cast<std::size_t>(given.dna.end() - given.dna.at(0));
    for (int i = 0; i < 20; ++i) {
      const char* place = given.dna.at(static_cast<std::ptrdiff_t>(random.below(residues + 1)));
      if (place == given.stop) continue;
      const char* cursor =
          given.unit.begin + random.below(static_cast<std::size_t>(given.unit.length()));
      const char residue = *Direction::residue(place);
      if (residue == *cursor || (residue == 'N' && settings.longest_N_run != 0)) continue;
      check(place, cursor, floor + random.between(0, 40));
      ASSERT_FALSE(testing::Test::HasFailure())
          << std::string_view(given.dna.at(0), residues) << " unit at "
          << given.unit.begin - given.dna.at(0) << ", length " << given.unit.length();
    }
  }

  std::array<long, 4> chosen_{};
  long found_ = 0;
  long proofs_ = 0;
  long missed_proofs_ = 0;
};

using Directions = testing::Types<Forward, Backward>;
TYPED_TEST_SUITE(BitLookAheadTest, Directions);

#ifdef VORLAN_FAST_PATH_REDUCED
constexpr std::size_t kShorter = 2;
#else
constexpr std::size_t kShorter = 0;
#endif

TYPED_TEST(BitLookAheadTest, MakesTheMovesOfThePlainRecursionInAllShortTexts) {
  this->for_each_setting([&](Settings settings) {
    for (const int depth : {1, 2, 3, 5, 7, 8}) {
      settings.maximum_recursion_depth = depth;
      reference::set_settings_of_the_product(settings);
      const auto compare = [&](const auto& given) { this->compare_moves(given, 11); };
      this->for_each_short_case("AC", (depth > 3 ? 6 : 7) - kShorter, compare);
      this->for_each_short_case("ACN", 4 - kShorter / 2, compare);
    }
  });
  for (const long times : this->chosen_) EXPECT_GT(times, 1000);
}

TYPED_TEST(BitLookAheadTest, MakesTheMovesOfThePlainRecursionInDivergedArrays) {
  for (int seed = 0; seed < 250 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.mismatch_score = random.between(-6, -2);
    settings.indel_score = random.between(-6, -2);
    if (random.per_cent(10)) settings.maximum_recursion_depth = random.between(6, 8);
    ASSERT_NO_FATAL_FAILURE(this->compare_random_moves(random, settings, 0));
  }
  for (const long times : this->chosen_) EXPECT_GT(times, 20);
}

// The units of a text share what is kept, the long ones first: they keep the most.
TYPED_TEST(BitLookAheadTest, WhatIsKeptForAllUnitsOfShortTextsIsWhatThePlainRecursionDecides) {
  this->for_each_setting([&](Settings settings) {
    for (const int depth : {1, 2}) {
      settings.maximum_recursion_depth = depth;
      reference::set_settings_of_the_product(settings);
      for (const auto& [alphabet, longest_text] :
           {std::pair("AC", std::size_t{8}), std::pair("ACN", std::size_t{6})}) {
        this->for_each_text(alphabet, longest_text - kShorter, [&](const std::string& text) {
          this->compare_moves_of_all_units(
              text, -depth * std::min(settings.mismatch_score, settings.indel_score) + 1);
        });
      }
    }
  });
  EXPECT_GT(this->found_, 10000);
}

TYPED_TEST(BitLookAheadTest, WhatIsKeptForNeighbouringLongUnitsIsWhatThePlainRecursionDecides) {
  for (int seed = 0; seed < 40 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    if (random.per_cent(20)) settings.maximum_scorereduction = random.between(5, 40);
    reference::set_settings_of_the_product(settings);
    this->compare_moves_of_neighbours(random);
    ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
  }
  EXPECT_GT(this->found_, 1000);
}

TYPED_TEST(BitLookAheadTest, MakesTheMovesOfThePlainRecursionWhenTheScoreReductionIsLimited) {
  for (int seed = 0; seed < 250 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.maximum_scorereduction = random.between(1, random.per_cent(50) ? 6 : 40);
    settings.mismatch_score = random.between(-4, -2);
    settings.indel_score = random.between(-4, -2);
    ASSERT_NO_FATAL_FAILURE(this->compare_random_moves(random, settings, 8));
  }
  for (const long times : this->chosen_) EXPECT_GT(times, 20);
}

TYPED_TEST(BitLookAheadTest, ProvesOnlyWhatHoldsForAllPathsInAllShortTexts) {
  this->for_each_setting([&](Settings settings) {
    for (const int reduction : {kNoScoreLimit, 6}) {
      settings.maximum_scorereduction = reduction;
      reference::set_settings_of_the_product(settings);
      const auto check = [&](const auto& given) { this->check_proofs(given, 9); };
      this->for_each_short_case("AC", 6 - kShorter, check);
      this->for_each_short_case("ACN", 4 - kShorter / 2, check);
    }
  });
  EXPECT_GT(this->proofs_, 10 * this->missed_proofs_);
}

TYPED_TEST(BitLookAheadTest, ProvesOnlyWhatHoldsForAllPathsInDivergedArrays) {
  for (int seed = 0; seed < 150 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    if (random.per_cent(30)) settings.maximum_scorereduction = random.between(5, 40);
    reference::set_settings_of_the_product(settings);
    const auto given = this->random_case(random);
    const Scoring alignment = Scoring::of_the_run();
    BitLookAhead<TypeParam> bits(alignment, given.unit, given.stop, &given.planes, given.dna.at(0),
                                 given.memory, nullptr);
    this->for_random_decisions(random, given, [&](auto place, auto cursor, auto score) {
      const std::int64_t threshold = alignment.threshold(score, given.unit.length());
      const std::int64_t goal = score + random.between(-1, 10);
      const bool stays_below = bits.stays_below(goal, {place, cursor}, score, threshold);
      AllPaths<TypeParam> all(alignment, given.unit, given.stop, threshold);
      const std::int64_t highest = all.highest_from(place, cursor, score);
      if (stays_below) {
        ++this->proofs_;
        ASSERT_LT(highest, goal) << "score " << score;
      } else if (highest > threshold && highest < goal) {
        ++this->missed_proofs_;
      }
    });
    ASSERT_FALSE(testing::Test::HasFailure()) << differential::describe(settings);
  }
  EXPECT_GT(this->proofs_, this->missed_proofs_);
}

}  // namespace
}  // namespace vorlan
