// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/fasta_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <vector>

#include "errors.h"
#include "temporary_file.h"

namespace vorlan_tools {
namespace {

struct Record {
  std::string header;
  std::string name;
  std::string residues;

  bool operator==(const Record&) const = default;
};

std::vector<Record> records_of(std::string_view text) {
  const TemporaryFile file(text);
  FastaReader reader(file.path());
  std::vector<Record> records;
  while (reader.next_header()) {
    reader.read_residues();
    records.push_back({reader.header(), reader.sequence_name(), reader.residues()});
  }
  return records;
}

using Records = std::vector<Record>;

TEST(FastaReader, HeadersNamesAndResidues) {
  EXPECT_EQ(records_of(">seq1 Homo  chr 1\nacgtRYn\nUU-*x\n>b\n\nAC GT\n"),
            (Records{{"seq1 Homo  chr 1", "seq1", "ACGTNNNTTN"}, {"b", "b", "ACGT"}}));
  EXPECT_EQ(records_of(">a\tb c\n"), (Records{{"a\tb c", "a\tb", ""}}));
  EXPECT_EQ(records_of("> x\nA"), (Records{{" x", "", "A"}}));
}

TEST(FastaReader, EveryLineEnd) {
  const Records expected{{"a", "a", "ACGT"}, {"b", "b", "TT"}};
  EXPECT_EQ(records_of(">a\nAC\nGT\n>b\nTT\n"), expected);
  EXPECT_EQ(records_of(">a\r\nAC\r\nGT\r\n>b\r\nTT\r\n"), expected);
  EXPECT_EQ(records_of(">a\rAC\rGT\r>b\rTT\r"), expected);
  EXPECT_EQ(records_of(">a\nAC\nGT\n>b\nTT"), expected);
}

TEST(FastaReader, CommentsBeforeTheFirstRecordOnly) {
  EXPECT_EQ(records_of("\n\n# x\n#y\n  >s\nAC"), (Records{{"s", "s", "AC"}}));
  EXPECT_THROW(records_of(">s\nAC\n# x\n"), LineError);
}

TEST(FastaReader, ALoneSignAtTheEndKeepsTheName) {
  EXPECT_EQ(records_of(">s\nAC\n>"), (Records{{"s", "s", "AC"}, {"", "s", ""}}));
  EXPECT_EQ(records_of(">s\nAC\n>\n"), (Records{{"s", "s", "AC"}, {"", "", ""}}));
}

TEST(FastaReader, MalformedBytesAreToldWithTheirLine) {
  try {
    records_of(">s\nAC\nA1GT\n");
    FAIL() << "nothing was thrown";
  } catch (const LineError& error) {
    EXPECT_NE(std::string(error.what()).find(", line 3: "), std::string::npos) << error.what();
  }
  try {
    records_of(">s\r\nAC\r\nA1GT\r\n");
    FAIL() << "nothing was thrown";
  } catch (const LineError& error) {
    EXPECT_NE(std::string(error.what()).find(", line 3: "), std::string::npos) << error.what();
  }
  EXPECT_THROW(records_of(""), DataError);
  EXPECT_THROW(records_of("ACGT\n"), LineError);
  EXPECT_THROW(records_of(">s\n >t\n"), LineError);
}

TEST(FastaReader, TheVeryLastByteMayBeAnything) {
  EXPECT_EQ(records_of(">s\nAC1"), (Records{{"s", "s", "AC"}}));
}

TEST(FastaReader, SkippedResiduesAreStillChecked) {
  const TemporaryFile file(">s\nAC\n>t\nA.C\n>u\nGG\n");
  FastaReader reader(file.path());
  EXPECT_TRUE(reader.next_header());
  EXPECT_TRUE(reader.next_header());
  EXPECT_EQ(reader.sequence_name(), "t");
  EXPECT_THROW(reader.next_header(), LineError);
}

TEST(FastaReader, LinesLongerThanTheBuffer) {
  const std::string long_line(1'000'003, 'a');
  const Records records = records_of(">s\n" + long_line + "\r\n" + long_line + "\r\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].residues, std::string(2'000'006, 'A'));
}

TEST(FastaReader, AnAsteriskIsNoLineFeed) {
  EXPECT_EQ(records_of(">s\nAC*GT\n*\nA\n"), (Records{{"s", "s", "ACGTA"}}));
}

TEST(FastaReader, ResiduesStayWhenTheNextHeaderIsRead) {
  const TemporaryFile file(">s\nAC\n>t\nGG\n>u\nTT\n");
  FastaReader reader(file.path());
  ASSERT_TRUE(reader.next_header());
  reader.read_residues();
  ASSERT_TRUE(reader.next_header());
  EXPECT_EQ(reader.residues(), "AC");
  ASSERT_TRUE(reader.next_header());
  EXPECT_EQ(reader.residues(), "AC");
  reader.read_residues();
  EXPECT_EQ(reader.residues(), "TT");
}

/// What a text with line feeds only, that begins with a header, reads as, taken byte by byte; the
/// number of the line with a byte that cannot stand there, or 0.
std::uint64_t read_plainly(const std::string& text, Records& records) {
  std::uint64_t line = 1;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    if (text[at] == '>') {
      const std::string header = text.substr(at + 1, end - at - 1);
      const bool is_lone = at + 1 == text.size();
      const std::string name = is_lone ? records.back().name : header.substr(0, header.find(' '));
      records.push_back({header, name, ""});
    } else {
      for (; at < end; ++at) {
        const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(text[at])));
        if (std::string_view("ACGT").find(upper) != std::string_view::npos) {
          records.back().residues += upper;
        } else if (upper == 'R' || upper == 'N') {
          records.back().residues += 'N';
        } else if (upper != '-' && upper != '*' && upper != ' ') {
          return at + 1 == text.size() ? 0 : line;
        }
      }
    }
    at = end + 1;
    ++line;
  }
  return 0;
}

/// Lines and records around the sizes of what is looked at together, with few or many bytes that
/// are no plain residues, and each kind of line end.
TEST(FastaReader, ReadsAsTakenByteByByte) {
  std::mt19937 random(20261122);
  const auto number = [&random](std::size_t below) { return random() % below; };
  for (int round = 0; round < 600; ++round) {
    std::string text = ">first\n";
    const std::size_t rare = number(3) == 0 ? 0 : std::size_t{1} << number(16);
    const std::size_t width = 1 + number(round % 5 == 0 ? 20000 : 90);
    for (std::size_t lines = number(600); lines > 0 && text.size() < 100'000; --lines) {
      if (number(40) == 0) text += ">r" + std::to_string(lines) + " x>y\n";
      for (std::size_t i = 0; i < width; ++i) {
        text += "ACGTacgtnN"[number(10)];
        if (rare > 0 && number(rare) == 0) text += "R-* r"[number(5)];
      }
      text += '\n';
    }
    if (number(4) == 0 && text.size() > 7)
      text[7 + number(text.size() - 7)] = ".>E\x01\xff"[number(5)];
    if (number(3) == 0) text.pop_back();
    Records expected;
    const std::uint64_t malformed = read_plainly(text, expected);
    for (const char* const line_end : {"\n", "\r\n", "\r"}) {
      std::string other;
      for (const char c : text) c == '\n' ? other += line_end : other += c;
      if (malformed == 0) {
        ASSERT_EQ(records_of(other), expected) << round;
        continue;
      }
      try {
        records_of(other);
        FAIL() << "nothing was thrown " << round;
      } catch (const LineError& error) {
        const std::string line = ", line " + std::to_string(malformed) + ": ";
        ASSERT_NE(std::string(error.what()).find(line), std::string::npos) << error.what();
      }
    }
  }
}

}  // namespace
}  // namespace vorlan_tools
