// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Numbers in entries must be what printf writes: reports have always looked so.

#include "output/entry_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "support/captured_output.h"

namespace vorlan {
namespace {

std::string printed(const char* format, int width, auto... values) {
  char text[400];
  const int length = std::snprintf(text, sizeof text, format, width, values...);
  EXPECT_GE(length, 0);
  EXPECT_LT(static_cast<std::size_t>(length), sizeof text);
  return text;
}

std::string decimal(float value, int places, std::size_t width) {
  return std::string(EntryText().add_decimal(value, places, width).view());
}

TEST(EntryText, TextsAndNumbersFollowEachOther) {
  EntryText text;
  text.add_number(12, 4).add(" bp").add_decimal(97.5F, 2, 7);
  EXPECT_EQ(text.view(), "  12 bp  97.50");
  CapturedStream out;
  text.write(out.stream());
  EXPECT_EQ(out.text(), text.view());
}

TEST(EntryText, NumbersAreWrittenAsPrintfWritesThem) {
  for (const int width : {0, 1, 3, 6, 12}) {
    for (const int value : {0, 7, -7, 999, 1000, -123456, std::numeric_limits<int>::max(),
                            std::numeric_limits<int>::min()}) {
      EXPECT_EQ(EntryText().add_number(value, static_cast<std::size_t>(width)).view(),
                printed("%*d", width, value));
    }
    EXPECT_EQ(EntryText().add_number(4'294'967'295U, static_cast<std::size_t>(width)).view(),
              printed("%*u", width, 4'294'967'295U));
  }
}

// All perfections of repeats of up to 150 bases: many lie in the middle of two decimals.
TEST(EntryText, PerfectionsAreWrittenAsPrintfWritesThem) {
  for (int length = 1; length <= 150; ++length) {
    for (int matches = 0; matches <= length; ++matches) {
      const float perfection = static_cast<float>(matches) / static_cast<float>(length) * 100.0F;
      const auto exact = static_cast<double>(perfection);
      ASSERT_EQ(decimal(perfection, 3, 7), printed("%*.3f", 7, exact)) << exact;
      ASSERT_EQ(decimal(perfection, 2, 0), printed("%*.2f", 0, exact)) << exact;
    }
  }
}

TEST(EntryText, DecimalsInTheMiddleBecomeEven) {
  EXPECT_EQ(decimal(0.0625F, 3, 0), "0.062");
  EXPECT_EQ(decimal(0.1875F, 3, 0), "0.188");
}

// Any 32 bits: also numbers without a value and beyond all bounds, and the largest.
TEST(EntryText, EveryFloatIsWrittenAsPrintfWritesIt) {
  std::mt19937 random(20261122);
  for (int i = 0; i < 20'000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    ASSERT_EQ(decimal(value, 3, 7), printed("%*.3f", 7, static_cast<double>(value))) << value;
  }
  for (const float value :
       {std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(),
        std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN(), 0.0F, -0.0F}) {
    ASSERT_EQ(decimal(value, 6, 7), printed("%*.6f", 7, static_cast<double>(value)));
  }
}

}  // namespace
}  // namespace vorlan
