// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/number_text.h"

#include <gtest/gtest.h>

namespace vorlan {
namespace {

TEST(NumberText, IntegersAreDecimalWithTheirSign) {
  EXPECT_STREQ(number2str(-101), "-101");
  EXPECT_STREQ(number2str(2147483647), "2147483647");
  EXPECT_STREQ(number2str(4294967294U), "4294967294");
}

TEST(NumberText, FloatingNumbersHaveTheShortestGeneralForm) {
  EXPECT_STREQ(number2str(1.0F), "1");
  EXPECT_STREQ(number2str(100.0F), "100");
  EXPECT_STREQ(number2str(0.1F), "0.1");
  EXPECT_STREQ(number2str(1234567.0F), "1.23457e+06");  // six significant digits
  EXPECT_STREQ(number2str(0.25), "0.25");
}

TEST(NumberText, TheNextNumberOverwritesTheTextOfTheOneBefore) {
  const char* text = number2str(1);
  number2str(2.5F);
  EXPECT_STREQ(text, "2.5");
}

}  // namespace
}  // namespace vorlan
