// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/line_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "errors.h"
#include "io/output_file.h"
#include "temporary_file.h"

namespace vorlan_tools {
namespace {

TEST(LineReader, LinesAreAnyBytesUpToALineFeed) {
  const TemporaryFile file(std::string("a\r\n\n\0b\nlast", 10));
  LineReader lines(file.path());
  std::string_view line;
  ASSERT_TRUE(lines.next(line));
  EXPECT_EQ(line, "a\r");
  ASSERT_TRUE(lines.peek(line));
  EXPECT_EQ(line, "");
  EXPECT_EQ(lines.line_number(), 1U);
  ASSERT_TRUE(lines.next(line));
  EXPECT_EQ(line, "");
  ASSERT_TRUE(lines.next(line));
  EXPECT_EQ(line, std::string_view("\0b", 2));
  EXPECT_TRUE(lines.line_was_ended());
  ASSERT_TRUE(lines.next(line));
  EXPECT_EQ(line, "las");
  EXPECT_FALSE(lines.line_was_ended());
  EXPECT_EQ(lines.line_number(), 4U);
  EXPECT_EQ(lines.bytes_delivered(), 10U);
  EXPECT_FALSE(lines.next(line));
  EXPECT_FALSE(lines.peek(line));
}

/// Lines of all lengths around the size of the buffer, plain and compressed.
TEST(LineReader, LinesLongerThanTheBuffer) {
  std::mt19937 random(7);
  std::vector<std::string> written;
  std::string text;
  for (const std::size_t length : {0U, 5U, 262143U, 262144U, 262145U, 1U, 1000000U, 70000U, 0U}) {
    written.emplace_back(length, static_cast<char>('a' + random() % 26));
    text += written.back() + "\n";
  }
  const TemporaryFile plain(text);
  const TemporaryFile packed("");
  OutputFile output(packed.path(), Compression::kBgzip);
  output.write(text);
  output.finish();
  for (const std::string& path : {plain.path(), packed.path()}) {
    LineReader lines(path);
    std::string_view line;
    for (const std::string& expected : written) {
      ASSERT_TRUE(lines.next(line));
      ASSERT_EQ(line, expected);
    }
    EXPECT_FALSE(lines.next(line));
  }
}

/// Against next() alone; lines of all lengths around the size of the buffer.
TEST(LineReader, SkipsToLinesThatBeginWithASign) {
  std::mt19937 random(20261122);
  for (int round = 0; round < 40; ++round) {
    std::string text;
    for (std::size_t lines = random() % 3000; lines > 0; --lines) {
      const bool is_long = random() % 1000 == 0;
      std::string line(random() % (is_long ? 400'000 : 300), '|');
      for (std::size_t signs = random() % 3; signs > 0 && !line.empty(); --signs) {
        line[random() % std::min<std::size_t>(line.size(), 20)] = '>';
      }
      text += line + "\n";
    }
    if (random() % 2 == 0 && !text.empty()) text.pop_back();
    const TemporaryFile file(text);
    LineReader all(file.path());
    LineReader skipping(file.path());
    std::string_view line;
    while (all.next(line)) {
      if (line.empty() || line[0] != '>') continue;
      ASSERT_TRUE(skipping.skip_to('>'));
      std::string_view found;
      ASSERT_TRUE(skipping.next(found));
      ASSERT_EQ(found, line);
      ASSERT_EQ(skipping.line_number(), all.line_number());
      ASSERT_EQ(skipping.bytes_delivered(), all.bytes_delivered());
    }
    EXPECT_FALSE(skipping.skip_to('>'));
    EXPECT_FALSE(skipping.next(line));
    EXPECT_EQ(skipping.line_number(), all.line_number());
    EXPECT_EQ(skipping.bytes_delivered(), text.size());
  }
}

TEST(LineReader, AFolderIsNoInput) { EXPECT_THROW(LineReader("/"), DataError); }

}  // namespace
}  // namespace vorlan_tools
