// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The kernels of the look-ahead by sets of places against a walk along every single path, on masks
// that no sequence needs to have.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "imperfect/look_ahead/bit_look_ahead.h"
#include "imperfect/look_ahead/place_sets_kernel.h"
#include "random.h"

namespace vorlan {
namespace {

using differential::Random;

constexpr std::int32_t kBits = 64;
constexpr std::int32_t kNoScore = -1'000'000;

/// Words for all diagonals that a decision may look at.
class Masks {
 public:
  Masks(Random& random, int per_cent_matches) {
    for (auto& words : words_) {
      for (std::uint64_t& word : words) {
        for (std::int32_t bit = 0; bit < kBits; ++bit) {
          if (!random.per_cent(per_cent_matches)) word |= std::uint64_t{1} << bit;
        }
      }
    }
  }

  /// With the words of so many times 64 places.
  DiagonalWords words(std::int32_t count) const {
    return {middle(0), std::ssize(words_[0]), count};
  }

  bool differs(std::int32_t diagonal, std::int32_t place) const {
    return (middle(place / kBits)[diagonal] >> place % kBits & 1) != 0;
  }

 private:
  const std::uint64_t* middle(std::int32_t word) const {
    return &words_[static_cast<std::size_t>(word)][kMostEditsOfSets];
  }

  std::array<std::array<std::uint64_t, 2 * kMostEditsOfSets + 1>, kMostWordsOfSets> words_{};
};

/// Path by path: the highest score behind each first move.
class PathByPath {
 public:
  PathByPath(const PlaceSetsPlan& plan, const Masks& masks, std::int32_t words,
             std::int32_t threshold)
      : plan_(plan), masks_(masks), last_place_(words * kBits - 1), threshold_(threshold) {}

  FirstEditChoice choice() {
    values_.fill(kNoScore);
    for (first_ = 0; first_ < values_.size(); ++first_) edit(first_, {});
    if (furthest_ >= last_place_ - plan_.most_edits) return {FirstEdit::kUnknown, 0, 0};
    const auto best = std::max_element(values_.begin(), values_.end());
    if (*best == kNoScore) return {FirstEdit::kNone, 0, 0};
    return {static_cast<FirstEdit>(best - values_.begin()), *best, furthest_};
  }

 private:
  struct State {
    std::int32_t place = 0;
    std::int32_t diagonal = 0;
    std::int32_t score = 0;
    std::int32_t edits = 0;
  };

  void edit(std::size_t move, State state) {
    state.score += move == 0 ? plan_.mismatch_score : plan_.indel_score;
    if (state.score <= threshold_) return;
    if (move != 2) ++state.place;
    if (move == 1) ++state.diagonal;
    if (move == 2) --state.diagonal;
    while (state.place < last_place_ && !masks_.differs(state.diagonal, state.place)) {
      ++state.place;
      ++state.score;
    }
    furthest_ = std::max(furthest_, state.place);
    values_[first_] = std::max(values_[first_], state.score);
    if (++state.edits == plan_.most_edits) return;
    for (const std::size_t next : {0U, 1U, 2U}) edit(next, state);
  }

  PlaceSetsPlan plan_;
  const Masks& masks_;
  std::int32_t last_place_;
  std::int32_t threshold_;
  std::size_t first_ = 0;
  std::int32_t furthest_ = 0;
  std::array<std::int32_t, 3> values_{};
};

TEST(PlaceSets, AllKernelsChooseWhatIsBestPathByPath) {
  std::array<std::array<int, 5>, kMostWordsOfSets> choices{};
  for (int seed = 0; seed < 2000; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    PlaceSetsPlan plan{random.between(-9, -1), random.between(-9, -1),
                       random.between(1, kMostEditsOfSets)};
    if (random.per_cent(50)) plan.indel_score = plan.mismatch_score;
    const Masks masks(random, random.between(10, 99));
    const std::int32_t threshold = random.between(-60, 0);
    for (const std::int32_t words : kWordsOfSets) {
      const FirstEditChoice expected = PathByPath(plan, masks, words, threshold).choice();
      ++choices[static_cast<std::size_t>(words - 1)][static_cast<std::size_t>(expected.edit)];
      for (const PlaceSetsKernel& kernel : runnable_place_sets_kernels()) {
        const FirstEditChoice choice = kernel.choose(plan, masks.words(words), threshold);
        ASSERT_EQ(choice.edit, expected.edit) << kernel.name << ", seed " << seed << ", words "
                                              << words << ", depth " << plan.most_edits;
        if (expected.edit < FirstEdit::kNone) {
          ASSERT_EQ(choice.value, expected.value);
          ASSERT_EQ(choice.furthest, expected.furthest);
        }
      }
    }
  }
  for (const std::int32_t words : kWordsOfSets) {
    for (const int times : choices[static_cast<std::size_t>(words - 1)]) EXPECT_GT(times, 50);
  }
}

TEST(PlaceSets, EveryProcessorRunsThePortableKernel) {
  EXPECT_EQ(runnable_place_sets_kernels().front().choose, portable::choose_first_edit);
}

TEST(PlaceSets, APathThatWalksFromOneWordIntoTheNextArrivesWhereItWould) {
  // All matches on diagonal 0 from place 1 to the last but 58; none elsewhere.
  for (const std::size_t last_word : {1U, 3U}) {
    std::array<std::array<std::uint64_t, 3>, kMostWordsOfSets> words{};
    for (auto& of_words : words) of_words.fill(~std::uint64_t{0});
    for (std::size_t word = 0; word < last_word; ++word) words[word][1] = 0;
    words[0][1] = 1;
    words[last_word][1] = ~std::uint64_t{0} << 6;
    const auto count = static_cast<std::int32_t>(last_word + 1);
    const PlaceSetsPlan plan{-5, -5, 1};
    for (const PlaceSetsKernel& kernel : runnable_place_sets_kernels()) {
      const auto choice = [&](std::int32_t of_words) {
        return kernel.choose(plan, {&words[0][1], std::ssize(words[0]), of_words}, -10);
      };
      EXPECT_EQ(choice(count / 2).edit, FirstEdit::kUnknown);
      EXPECT_EQ(choice(count).edit, FirstEdit::kMismatch);
      EXPECT_EQ(choice(count).furthest, 64 * (count - 1) + 6);
    }
  }
}

}  // namespace
}  // namespace vorlan
