// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/fasta_reader.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vorlan_tools
