// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/record_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorlan_tools {
namespace {

struct Scan {
  std::vector<std::size_t> cuts;  ///< offsets of bytes in front of which the text may be cut
  TextCounts counts;

  bool operator==(const Scan& other) const {
    return cuts == other.cuts && counts.records == other.counts.records &&
           counts.bases == other.counts.bases && counts.line_ends == other.counts.line_ends;
  }
};

/// Reads the text in blocks of that size.
Scan scan(std::string_view text, std::size_t block_size) {
  RecordScanner scanner;
  Scan result;
  for (std::size_t begin = 0; begin < text.size(); begin += block_size) {
    std::string_view block = text.substr(begin, block_size);
    while (!block.empty()) {
      block.remove_prefix(scanner.read(block));
      const auto offset = static_cast<std::size_t>(block.data() - text.data());
      if (!block.empty()) result.cuts.push_back(offset);
    }
  }
  result.counts = scanner.take_counts();
  return result;
}

/// The same from the rules, byte by byte with all that came before in view. The first visible byte
/// is a '>' or malformed, and no base.
Scan scan_by_the_rules(std::string_view text) {
  Scan result;
  std::size_t first = 0;
  for (bool in_comment = false; first < text.size(); ++first) {
    const char byte = text[first];
    const bool is_line_end = byte == '\n' || byte == '\r';
    if (is_line_end) in_comment = false;
    if (in_comment || is_line_end || byte == ' ') continue;
    in_comment = byte == '#';
    if (!in_comment) break;
  }
  if (first < text.size() && text[first] == '>') ++result.counts.records;
  bool in_header = result.counts.records == 1;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool is_line_end = text[at] == '\n' || text[at] == '\r';
    if (text[at] == '\r' || (text[at] == '\n' && (at == 0 || text[at - 1] != '\r'))) {
      ++result.counts.line_ends;
    }
    if (at < first) continue;
    if (is_line_end) {
      in_header = false;
    } else if (at > first && text[at] == '>' && (text[at - 1] == '\n' || text[at - 1] == '\r')) {
      result.cuts.push_back(at);
      ++result.counts.records;
      in_header = true;
    } else if (!in_header && at != first) {
      ++result.counts.bases;
    }
  }
  return result;
}

TEST(RecordScanner, finds_every_place_in_every_short_text_in_blocks_of_any_size) {
  constexpr std::string_view kBytes = ">#\n\rA ";
  constexpr std::size_t kLength = 6;
  std::size_t texts = 1;
  for (std::size_t i = 0; i < kLength; ++i) texts *= kBytes.size();
  std::size_t cuts = 0;
  for (std::size_t number = 0; number < texts; ++number) {
    std::string text;
    for (std::size_t i = 0, rest = number; i < kLength; ++i, rest /= kBytes.size()) {
      text += kBytes[rest % kBytes.size()];
    }
    const Scan expected = scan_by_the_rules(text);
    cuts += expected.cuts.size();
    for (const std::size_t block_size : {std::size_t{1}, std::size_t{2}, kLength}) {
      ASSERT_EQ(scan(text, block_size), expected)
          << ::testing::PrintToString(text) << " in blocks of " << block_size;
    }
  }
  EXPECT_GT(cuts, texts / 10);
}

TEST(RecordScanner, counts_begin_anew_when_they_are_taken) {
  RecordScanner scanner;
  const std::string_view text = ">a b\nACGT\nAC\n>c\n\nA\n";
  const std::size_t cut = scanner.read(text);
  EXPECT_EQ(cut, 13U);
  const TextCounts first = scanner.take_counts();
  EXPECT_EQ(first.records, 1U);
  EXPECT_EQ(first.bases, 6U);
  EXPECT_EQ(first.line_ends, 3U);
  EXPECT_EQ(scanner.read(text.substr(cut)), text.size() - cut);
  const TextCounts second = scanner.take_counts();
  EXPECT_EQ(second.records, 1U);
  EXPECT_EQ(second.bases, 1U);
  EXPECT_EQ(second.line_ends, 3U);
}

}  // namespace
}  // namespace vorlan_tools
