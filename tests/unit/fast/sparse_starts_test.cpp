// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/self_alignment/sparse_starts.h"

#include <gtest/gtest.h>

#include <set>

#include "random.h"

namespace vorlan {
namespace {

std::set<std::ptrdiff_t> contents(const SparseStarts& starts) {
  std::set<std::ptrdiff_t> contents;
  SparseStarts::Reader reader(starts);
  for (std::ptrdiff_t word = reader.next_word(0); word != SparseStarts::kNone;
       word = reader.next_word(word + 64)) {
    EXPECT_EQ(word % 64, 0);
    for (int bit = 0; bit < 64; ++bit) {
      if ((reader.word(word) >> bit & 1) != 0) contents.insert(word + bit);
    }
  }
  return contents;
}

void insert(std::set<std::ptrdiff_t>& contents, std::ptrdiff_t first, std::uint64_t bits) {
  for (int bit = 0; bit < 64; ++bit) {
    if ((bits >> bit & 1) != 0 && first + bit >= 0) contents.insert(first + bit);
  }
}

TEST(SparseStarts, HoldWhatWasAddedInEitherOrder) {
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    SCOPED_TRACE(seed);
    differential::Random random(seed);
    SparseStarts rising;
    SparseStarts falling;
    std::set<std::ptrdiff_t> added_rising;
    std::set<std::ptrdiff_t> added_falling;
    std::ptrdiff_t first = random.between(-200, 0);
    std::ptrdiff_t last = 5'000 + random.between(0, 63);
    for (int i = 0; i < 20; ++i) {
      const std::uint64_t bits = random.next() & random.next() & random.next();
      rising.add_rising(first, bits);
      insert(added_rising, first, bits);
      falling.add_falling(last, bits);
      insert(added_falling, last, bits);
      first += 64 * random.between(1, 3);
      last -= 64 * random.between(1, 5);
    }
    falling.reverse();
    EXPECT_EQ(contents(rising), added_rising);
    EXPECT_EQ(contents(falling), added_falling);
    EXPECT_EQ(rising.count(), added_rising.size());
    rising.unite(falling);
    added_rising.merge(added_falling);
    EXPECT_EQ(contents(rising), added_rising);
  }
}

TEST(SparseStarts, LoseWhatIsSubtracted) {
  std::size_t lost = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    differential::Random random(seed);
    SparseStarts starts;
    SparseStarts other;
    std::set<std::ptrdiff_t> added;
    std::set<std::ptrdiff_t> subtracted;
    for (std::ptrdiff_t word = 0; word < 3'000; word += 64) {
      const std::uint64_t bits = random.per_cent(60) ? random.next() & random.next() : 0;
      const std::uint64_t taken = random.per_cent(40) ? bits : random.next() & random.next();
      starts.add_rising(word, bits);
      insert(added, word, bits);
      if (random.per_cent(50)) continue;
      other.add_rising(word, taken);
      insert(subtracted, word, taken);
    }
    starts.subtract(other);
    lost += std::erase_if(added, [&](std::ptrdiff_t start) { return subtracted.contains(start); });
    EXPECT_EQ(contents(starts), added);
    EXPECT_EQ(starts.count(), added.size());
  }
  EXPECT_GT(lost, 1'000U);
}

TEST(SparseStarts, StoreOnlyWordsThatHoldStarts) {
  SparseStarts starts;
  EXPECT_TRUE(starts.is_empty());
  starts.add_rising(100, 0);
  EXPECT_TRUE(starts.is_empty());
  starts.add_rising(63, 1);
  EXPECT_EQ(starts.words(), 1U);
  starts.add_rising(127, 3);
  EXPECT_EQ(starts.words(), 3U);
  SparseStarts::Reader reader(starts);
  EXPECT_EQ(reader.word(0), std::uint64_t{1} << 63);
  EXPECT_EQ(reader.next_word(1), 64);
  EXPECT_EQ(reader.word(128), 1U);
  EXPECT_EQ(reader.next_word(129), SparseStarts::kNone);
}

}  // namespace
}  // namespace vorlan
