// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/row_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>

#include "convert/text_append.h"

namespace vorlan_tools {
namespace {

// The same pieces to a string; lengths go far beyond the room that a text begins with.
TEST(RowText, HoldsWhatAStringWould) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<std::size_t> sizes(0, 200);
  for (int round = 0; round < 20; ++round) {
    RowText text;
    std::string expected;
    for (int piece = 0; piece < 100; ++piece) {
      const std::string bases(sizes(random), static_cast<char>('a' + piece % 26));
      const auto number = static_cast<std::int64_t>(random()) - 2'000'000'000;
      append_number((text += bases) += '\t', number);
      expected += bases + '\t' + std::to_string(number);
      ASSERT_EQ(text.view(), expected);
      ASSERT_EQ(text.back(), expected.back());
    }
    text.drop(5);
    expected.resize(expected.size() - 5);
    EXPECT_EQ(text.view(), expected);
    text.clear();
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.view(), "");
  }
}

TEST(RowText, HoldsTheLongestNumbers) {
  RowText text;
  append_number(text, INT64_MIN);
  append_number(text += ' ', INT64_MAX);
  EXPECT_EQ(text.view(), "-9223372036854775808 9223372036854775807");
}

/// The C library is the judge.
TEST(RowText, PadsAsPrintfDoes) {
  constexpr std::array<std::int64_t, 13> kNumbers = {
      0,         7,         9,  10,      99, 100, 999'999, 1'000'000, 123'456'789'012'345'678,
      INT64_MAX, INT64_MIN, -1, -123'456};
  for (const std::int64_t number : kNumbers) {
    for (std::size_t width = 1; width <= RowText::kWidest; ++width) {
      RowText text;
      (text += "before").append_padded(number, width) += "behind";
      char expected[64];
      std::snprintf(expected, sizeof expected, "before%*lldbehind", static_cast<int>(width),
                    static_cast<long long>(number));
      EXPECT_EQ(text.view(), expected) << width;
    }
  }
}

std::string shown_short(Thousandths value) {
  RowText text;
  append_short(text, value);
  return std::string(text.view());
}

/// The C library is the judge: what a float of that value is with %g.
std::string printed(Thousandths value) {
  char text[64];
  const auto number = static_cast<float>(static_cast<double>(value) / 1000.0);
  std::snprintf(text, sizeof text, "%g", static_cast<double>(number));
  return text;
}

TEST(ShortNumbers, AreWhatPrintfShowsOfAFloat) {
  for (Thousandths value = -1200; value < 1'200'000; ++value) {
    ASSERT_EQ(shown_short(value), printed(value)) << value;
  }
  for (Thousandths value = 1'200'000; value < 4'000'000'000'000; value += value / 1000 + 7) {
    ASSERT_EQ(shown_short(value), printed(value)) << value;
    ASSERT_EQ(shown_short(-value), printed(-value)) << -value;
  }
}

TEST(ShortNumbers, HaveNoZerosAtTheEnd) {
  EXPECT_EQ(shown_short(0), "0");
  EXPECT_EQ(shown_short(100'000), "100");
  EXPECT_EQ(shown_short(98'500), "98.5");
  EXPECT_EQ(shown_short(7), "0.007");
  EXPECT_EQ(shown_short(999'999), "999.999");
  EXPECT_EQ(shown_short(1'234'567), "1234.57");
}

}  // namespace
}  // namespace vorlan_tools
