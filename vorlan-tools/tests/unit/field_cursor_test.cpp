// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/field_cursor.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "convert/text_append.h"

namespace vorlan_tools {
namespace {

TEST(FieldCursor, TakesFieldsUntilOneDoesNotFit) {
  FieldCursor fields("  -12 : 3.050 % tail");
  std::int64_t number = 0;
  Thousandths decimal = 0;
  std::string_view tail;
  EXPECT_TRUE(fields.number(number)
                  .literal(" : ")
                  .decimal(decimal)
                  .literal(" % ")
                  .text_until_end(tail)
                  .at_end());
  EXPECT_EQ(number, -12);
  EXPECT_EQ(decimal, 3050);
  EXPECT_EQ(tail, "tail");
  EXPECT_FALSE(fields.literal("x").number(number).ok());
  EXPECT_EQ(number, -12);
}

TEST(FieldCursor, RefusesWhatIsNoNumber) {
  std::int64_t number = 7;
  for (const char* text : {"", "-", "x", " ", "--1", "+1"})
    EXPECT_FALSE(FieldCursor(text).number(number).ok());
  for (const char* text : {"1", "1.", "1.23", "1.2x4", ".123"})
    EXPECT_FALSE(FieldCursor(text).decimal(number).ok());
  EXPECT_FALSE(FieldCursor("123456789012345").number(number).at_end());
}

TEST(FieldCursor, NegativeDecimals) {
  Thousandths value = 0;
  EXPECT_TRUE(FieldCursor("-0.125").decimal(value).at_end());
  EXPECT_EQ(value, -125);
  EXPECT_TRUE(FieldCursor("-3.500").decimal(value).at_end());
  EXPECT_EQ(value, -3500);
  EXPECT_TRUE(FieldCursor("87.25").decimal(value, 2).at_end());
  EXPECT_EQ(value, 87250);
}

/// The C library is the judge, halves included.
TEST(Thousandths, AreWhatPrintfShows) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<int> numerators(0, 5000);
  std::uniform_int_distribution<int> denominators(1, 5000);
  for (int i = 0; i < 200000; ++i) {
    const float share =
        static_cast<float>(numerators(random)) / static_cast<float>(denominators(random)) * 100.0F;
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.3f", static_cast<double>(share));
    std::string text;
    append_thousandths(text, thousandths_of(share));
    ASSERT_EQ(text, expected);
    Thousandths back = 0;
    ASSERT_TRUE(FieldCursor(text).decimal(back).at_end());
    ASSERT_EQ(back, thousandths_of(share));
  }
}

}  // namespace
}  // namespace vorlan_tools
