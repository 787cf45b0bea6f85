// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "calibrate/kmer_shuffle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "calibrate/shuffled_copy.h"

namespace vorlan_tools {
namespace {

std::map<std::string, int> words_of(const std::string& text, unsigned k) {
  std::map<std::string, int> words;
  for (std::size_t i = 0; i + k <= text.size(); ++i) ++words[text.substr(i, k)];
  return words;
}

/// All texts with the words and the ends of `text`, found by trying every order of its bases.
std::set<std::string> twins_of(const std::string& text, unsigned k) {
  std::set<std::string> twins;
  std::string order = text;
  std::sort(order.begin(), order.end());
  do {
    const bool has_ends = order.substr(0, k - 1) == text.substr(0, k - 1);
    if (has_ends && words_of(order, k) == words_of(text, k)) twins.insert(order);
  } while (std::next_permutation(order.begin(), order.end()));
  return twins;
}

std::string random_text(std::size_t length, std::uint64_t seed) {
  RandomNumbers random(seed, 0);
  std::string text;
  // A and T more often, and a chain of repeats in the middle, so that some words are common.
  while (text.size() < length) text += "AATATCGATTA"[random.below(11)];
  return text;
}

TEST(KmerShuffle, ReachesTheTextsOfTheExampleAndNoOthers) {
  EXPECT_EQ(twins_of("ATATGA", 2), (std::set<std::string>{"ATATGA", "ATGATA"}));
}

TEST(KmerShuffle, IsUniformOverAllTextsWithTheSameWords) {
  constexpr int kDraws = 3000;
  for (const std::string text :
       {"ATATGA", "AAAT", "ACGTACGA", "ATTATATCA", "AACAACAAG", "CATCATGCAT"}) {
    for (unsigned k = 1; k <= 3; ++k) {
      const std::set<std::string> twins = twins_of(text, k);
      if (twins.size() > 2000) continue;
      KmerShuffle shuffle(k);
      RandomNumbers random(7, k);
      std::map<std::string, int> seen;
      const int draws = kDraws * static_cast<int>(std::min<std::size_t>(twins.size(), 20));
      for (int i = 0; i < draws; ++i) {
        std::string copy = text;
        shuffle.shuffle(copy, random);
        ASSERT_TRUE(twins.contains(copy)) << text << " became " << copy << " at k " << k;
        ++seen[copy];
      }
      const double expected = static_cast<double>(draws) / static_cast<double>(twins.size());
      double deviation = 0;
      for (const std::string& twin : twins) {
        deviation += (seen[twin] - expected) * (seen[twin] - expected) / expected;
      }
      const auto freedom = static_cast<double>(twins.size() - 1);
      EXPECT_LE(deviation, freedom + 5 * std::sqrt(2 * freedom)) << text << " at k " << k;
    }
  }
}

TEST(KmerShuffle, KeepsEveryWordExactlyAndMovesThem) {
  for (unsigned k = 1; k <= KmerShuffle::kLongestWord; ++k) {
    KmerShuffle shuffle(k);
    RandomNumbers random(3, k);
    for (const std::size_t length : {0U, 1U, 2U, 5U, 6U, 7U, 8U, 100U, 5000U, 20000U}) {
      const std::string text = random_text(length, length);
      std::string copy = text;
      shuffle.shuffle(copy, random);
      EXPECT_EQ(copy.size(), text.size());
      for (unsigned shorter = 1; shorter <= k; ++shorter) {
        EXPECT_EQ(words_of(copy, shorter), words_of(text, shorter)) << length << " at k " << k;
      }
      if (length >= 5000) {
        std::size_t same = 0;
        for (std::size_t i = 0; i < length; ++i) same += copy[i] == text[i] ? 1U : 0U;
        EXPECT_LT(same, length * 6 / 10) << "k " << k;
      }
    }
  }
}

TEST(KmerShuffle, DependsOnSeedAndStreamOnly) {
  const auto shuffled = [](std::uint64_t seed, std::uint64_t stream) {
    std::string text = random_text(500, 1);
    KmerShuffle shuffle(2);
    RandomNumbers random(seed, stream);
    shuffle.shuffle(text, random);
    return text;
  };
  EXPECT_EQ(shuffled(1, 1), shuffled(1, 1));
  EXPECT_NE(shuffled(1, 1), shuffled(1, 2));
  EXPECT_NE(shuffled(1, 1), shuffled(2, 1));
}

TEST(ShuffledCopy, LeavesSpansOut) {
  EXPECT_EQ(without_spans("ACGTACGT", {}), "ACGTACGT");
  EXPECT_EQ(without_spans("ACGTACGT", {{0, 1}, {3, 5}, {4, 5}, {7, 8}}), "CGCG");
  EXPECT_EQ(without_spans("ACGT", {{0, 4}}), "");
}

TEST(ShuffledCopy, KeepsWordsOfEachWindowAndEveryN) {
  std::string text = random_text(250, 9);
  for (const std::size_t at : {0U, 57U, 58U, 120U, 249U}) text[at] = 'N';
  std::string copy = text;
  KmerShuffle shuffle(2);
  RandomNumbers random(1, 1);
  shuffle_windows(copy, 100, shuffle, random);
  const auto bases_of = [](std::string part) {
    part.erase(std::remove(part.begin(), part.end(), 'N'), part.end());
    return part;
  };
  // Windows of 100, 100 and 50: the last is no less than half of one.
  EXPECT_NE(copy, text);
  for (const auto& [begin, size] : {std::pair(0, 100), std::pair(100, 100), std::pair(200, 50)}) {
    const auto part = [&, begin = begin, size = size](const std::string& whole) {
      return bases_of(
          whole.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(size)));
    };
    EXPECT_EQ(words_of(part(copy), 2), words_of(part(text), 2)) << begin;
  }
  for (std::size_t i = 0; i < text.size(); ++i) EXPECT_EQ(copy[i] == 'N', text[i] == 'N') << i;
}

}  // namespace
}  // namespace vorlan_tools
