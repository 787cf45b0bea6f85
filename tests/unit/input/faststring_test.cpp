// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/faststring.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <string>

namespace vorlan {
namespace {

TEST(FastString, AllocatesNothingUntilItIsUsed) {
  const faststring text;
  EXPECT_EQ(text.buf, nullptr);
  EXPECT_EQ(text.size, 0U);
  EXPECT_EQ(text.capacity, 0U);
}

TEST(FastString, GrowsByDoublingFrom4) {
  faststring text;
  std::string expected;
  for (std::uint32_t size = 1; size <= 17; ++size) {
    const auto letter = static_cast<char>('a' + size);
    text.push_back(letter);
    expected += letter;
    const std::uint32_t capacity = size <= 4 ? 4 : size <= 8 ? 8 : size <= 16 ? 16 : 32;
    EXPECT_EQ(text.capacity, capacity) << size;
  }
  EXPECT_EQ(text.view(), expected);
}

TEST(FastString, AppendingGrowsLikePushingEachLetter) {
  faststring text;
  text.append("");
  EXPECT_EQ(text.capacity, 0U);
  text.append("ACGTA");
  EXPECT_EQ(text.capacity, 8U);
  text.append("CGT");
  EXPECT_EQ(text.capacity, 8U);
  text.append("ACGTACGTA");
  EXPECT_EQ(text.capacity, 32U);
  EXPECT_EQ(text.view(), "ACGTACGTACGTACGTA");
}

TEST(FastString, TerminatingAFullStringOfSize7LeavesCapacity8AndSize7) {
  faststring text;
  text.reserve(7);
  for (const char letter : std::string_view("ACGTACG")) text.push_back(letter);
  ASSERT_EQ(text.capacity, 7U);
  EXPECT_STREQ(text.terminate(), "ACGTACG");
  EXPECT_EQ(text.capacity, 8U);
  EXPECT_EQ(text.size, 7U);
}

TEST(FastString, TerminatingAStringWithRoomKeepsItsCapacity) {
  faststring text;
  for (const char letter : std::string_view("ACGTA")) text.push_back(letter);
  EXPECT_STREQ(text.terminate(), "ACGTA");
  EXPECT_EQ(text.capacity, 8U);
  EXPECT_EQ(text.size, 5U);
}

TEST(FastString, TerminatingAnEmptyStringGivesAnEmptyText) {
  faststring text;
  EXPECT_STREQ(text.terminate(), "");
  EXPECT_EQ(text.size, 0U);
  EXPECT_EQ(text.capacity, 1U);
}

TEST(FastString, AssigningGrowsToExactlyOneMoreThanTheText) {
  faststring text;
  text.assign("ACGTA");
  EXPECT_EQ(text.view(), "ACGTA");
  EXPECT_EQ(text.capacity, 6U);
  text.assign("AC");
  EXPECT_EQ(text.view(), "AC");
  EXPECT_EQ(text.capacity, 6U);
  text.assign("");
  EXPECT_EQ(text.view(), "");
}

TEST(FastString, ReservingMakesExactlyTheRoomAskedForAndNeverShrinks) {
  faststring text;
  text.reserve(10);
  EXPECT_EQ(text.capacity, 10U);
  text.reserve(3);
  EXPECT_EQ(text.capacity, 10U);
}

// A string that claims to be full at the largest size there is: no memory is needed to show it.
TEST(FastString, ThrowsWhereA32BitSizeEnds) {
  faststring text;
  text.size = text.capacity = std::numeric_limits<std::uint32_t>::max();
  EXPECT_THROW(text.push_back('A'), std::bad_alloc);
  EXPECT_THROW(text.append("AC"), std::bad_alloc);
  EXPECT_THROW(text.terminate(), std::bad_alloc);
  EXPECT_EQ(text.size, std::numeric_limits<std::uint32_t>::max());
}

}  // namespace
}  // namespace vorlan
