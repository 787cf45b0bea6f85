// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/bed_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "temporary_file.h"

namespace vorlan_tools {
namespace {

using Parts = std::vector<std::string_view>;

TEST(BedLines, AreThoseOfIntervals) {
  const TemporaryFile file("track name=x\n#a\nc\t1\t2\r\n\n\r\nbrowser position\nd\t3\t4");
  LineReader lines(file.path());
  std::string_view line;
  ASSERT_TRUE(next_interval_line(lines, line));
  EXPECT_EQ(line, "c\t1\t2");
  EXPECT_EQ(lines.line_number(), 3U);
  ASSERT_TRUE(next_interval_line(lines, line));
  EXPECT_EQ(line, "d\t3\t4");
  EXPECT_FALSE(next_interval_line(lines, line));
}

TEST(BedLines, SplitKeepsEmptyParts) {
  EXPECT_EQ(split("", '\t'), Parts({""}));
  EXPECT_EQ(split("a\t\tb\t", '\t'), Parts({"a", "", "b", ""}));
  EXPECT_EQ(split("a\tb\tc", '\t', 2), Parts({"a", "b"}));
  EXPECT_EQ(split("a\tb", '\t', 3), Parts({"a", "b"}));
}

TEST(BedLines, NumbersAreWholeAndNotNegative) {
  std::int64_t number = 7;
  EXPECT_TRUE(is_number("0", number));
  EXPECT_EQ(number, 0);
  EXPECT_TRUE(is_number("9223372036854775807", number));
  for (const std::string_view text : {"", "-1", "+1", " 1", "1 ", "1e3", "9223372036854775808"}) {
    EXPECT_FALSE(is_number(text, number)) << text;
  }
}

}  // namespace
}  // namespace vorlan_tools
