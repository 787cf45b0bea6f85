// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/csequence_mol.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "support/captured_output.h"
#include "support/temporary_file.h"

namespace vorlan {
namespace {

/// A reader at the start of a file.
class FastaReader {
 public:
  explicit FastaReader(std::string_view bytes, std::uint32_t type = CSequence_Mol::kDna)
      : content(bytes), sequence(type, 16) {
    file.open(content.name());
  }

  void read() { sequence.readFastaSequence(file); }
  bool is_malformed() const { return file.fail() && !file.eof(); }

  TemporaryFile content;
  CFile file;
  CSequence_Mol sequence;
};

/// A reader that has read the first record.
class FirstRecord : public FastaReader {
 public:
  explicit FirstRecord(std::string_view bytes) : FastaReader(bytes) { read(); }
};

TEST(FastaReader, SplitsTheHeaderAndNormalisesResidues) {
  const FirstRecord record(">seq1 Homo sapiens  chr 1\nacgtRYn\nUU-*x\n");
  EXPECT_EQ(record.sequence.header.view(), "seq1 Homo sapiens  chr 1");
  EXPECT_EQ(record.sequence.name.view(), "seq1");
  EXPECT_EQ(record.sequence.description.view(), "Homo sapiens  chr 1");
  EXPECT_EQ(record.sequence.residues.view(), "ACGTNNNTTN");
  EXPECT_TRUE(record.file.eof());
}

const std::string kBases = "ACGTacgtTGCAtgcaGG";
const std::string kBasesInUpperCase = "ACGTACGTTGCATGCAGG";

// Every byte, between bases in both cases and at some distance from the beginning of its line: what
// is not listed here is malformed.
TEST(FastaReader, EveryByteIsABaseAnAmbiguityCodeSkippedOrMalformed) {
  const auto expected = [](char byte) -> std::string {
    const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
    if (std::string_view("ACGT").find(upper) != std::string_view::npos) return {upper};
    if (upper == 'U') return "T";
    if (std::string_view("NXRYKMSWBDHV?").find(upper) != std::string_view::npos) return "N";
    if (std::string_view(" \t\n\v\f\r-*").find(byte) != std::string_view::npos) return "";
    return "malformed";
  };
  for (int value = 0; value < 256; ++value) {
    const auto byte = static_cast<char>(value);
    const auto distance = static_cast<std::size_t>(value) % kBases.size() + 1;
    const FirstRecord record(">s\n" + kBases.substr(0, distance) + byte + "cACGTACG\n");
    const std::string meaning = expected(byte);
    EXPECT_EQ(record.is_malformed(), meaning == "malformed") << "byte " << value;
    if (record.is_malformed()) continue;
    EXPECT_EQ(record.sequence.residues.view(),
              kBasesInUpperCase.substr(0, distance) + meaning + "CACGTACG")
        << "byte " << value;
  }
}

TEST(FastaReader, ALetterMeansTheSameAtEveryDistanceFromTheBeginningOfItsLine) {
  const std::pair<char, std::string> letters[] = {{'n', "N"}, {'u', "T"}, {'R', "N"},
                                                  {'-', ""},  {'A', "A"}, {'t', "T"}};
  for (const auto& [letter, meaning] : letters) {
    std::string lines;
    std::string residues;
    for (std::size_t distance = 0; distance <= kBases.size(); ++distance) {
      lines += kBases.substr(0, distance) + letter + kBases + "\n";
      residues += kBasesInUpperCase.substr(0, distance) + meaning + kBasesInUpperCase;
    }
    EXPECT_EQ(FirstRecord(">s\n" + lines).sequence.residues.view(), residues) << letter;
  }
}

TEST(FastaReader, ABadCharacterIsFoundAtEveryDistanceFromTheBeginningOfItsLine) {
  for (std::size_t distance = 0; distance <= kBases.size(); ++distance) {
    const FirstRecord record(">s\nAC\n" + kBases.substr(0, distance) + "1" + kBases + "\n");
    EXPECT_TRUE(record.is_malformed()) << distance;
    EXPECT_EQ(record.file.line_number(), 3U) << distance;
  }
}

// 17 bases a line: lines and fills of the input buffer end at every distance from each other.
TEST(FastaReader, LinesGoOnWhereTheInputBufferIsFilledAgain) {
  constexpr std::size_t kBytesOfSeveralFills = 3'100'000;
  std::string lines;
  std::string bases;
  for (std::size_t i = 0; lines.size() < kBytesOfSeveralFills; ++i) {
    const char base = "ACGT"[i * i / 7 % 4];
    bases += base;
    lines += base;
    if (i % 17 == 16) lines += '\n';
  }
  const FirstRecord record(">a\n" + lines);
  EXPECT_EQ(record.sequence.residues.view(), bases);
}

TEST(FastaReader, AHeaderThatBeginsWithABlankHasAnEmptyName) {
  const FirstRecord record("> seq1\nACGT\n");
  EXPECT_EQ(record.sequence.header.view(), " seq1");
  EXPECT_EQ(record.sequence.name.view(), "");
  EXPECT_EQ(record.sequence.description.view(), "seq1");
  EXPECT_EQ(record.sequence.residues.view(), "ACGT");
}

TEST(FastaReader, ATabBelongsToTheName) {
  const FirstRecord record(">s\t1 d\nA\n");
  EXPECT_EQ(record.sequence.name.view(), "s\t1");
  EXPECT_EQ(record.sequence.description.view(), "d");
}

TEST(FastaReader, OnlyBlanksBehindTheNameGiveAnEmptyDescription) {
  FastaReader reader(">a old\nA\n>b  \nC\n");
  reader.read();
  reader.read();
  EXPECT_EQ(reader.sequence.name.view(), "b");
  EXPECT_EQ(reader.sequence.description.view(), "");
}

TEST(FastaReader, AHeaderWithoutABlankLeavesTheDescriptionOfTheRecordBefore) {
  FastaReader reader(">a old\nA\n>b\nC\n");
  reader.read();
  reader.read();
  EXPECT_EQ(reader.sequence.name.view(), "b");
  EXPECT_EQ(reader.sequence.description.view(), "old");
}

TEST(FastaReader, BlankAndCommentLinesMayStandBeforeTheFirstRecord) {
  const FirstRecord record("\n\n# comment\n#another\n>s\nAC GT\n\tAC\n");
  EXPECT_EQ(record.sequence.name.view(), "s");
  EXPECT_EQ(record.sequence.residues.view(), "ACGTAC");
  EXPECT_FALSE(record.is_malformed());
}

TEST(FastaReader, BlanksMayStandBeforeTheFirstHeaderInItsLine) {
  const FirstRecord record(" \t # c\n  >s\nAC\n");
  EXPECT_EQ(record.sequence.name.view(), "s");
  EXPECT_EQ(record.sequence.residues.view(), "AC");
}

TEST(FastaReader, ADigitIsMalformedInItsLine) {
  const FirstRecord record(">s\nAC1GT\n");
  EXPECT_TRUE(record.is_malformed());
  EXPECT_EQ(record.file.line_number(), 2U);
}

// The end of the line behind the bad character is looked at, but must not be counted.
TEST(FastaReader, ABadCharacterAtTheEndOfItsLineIsReportedInThatLine) {
  const FirstRecord record(">s\nAC\nGT1\nAC\n");
  EXPECT_TRUE(record.is_malformed());
  EXPECT_EQ(record.file.line_number(), 3U);
}

// The look at the next character meets the end of the file, which turns the error into an end.
TEST(FastaReader, ABadCharacterAsTheVeryLastByteCountsAsTheEnd) {
  const FirstRecord without_line_end(">s\nAC1");
  EXPECT_FALSE(without_line_end.is_malformed());
  EXPECT_TRUE(without_line_end.file.eof());
  EXPECT_EQ(without_line_end.sequence.residues.view(), "AC");

  const FirstRecord with_line_end(">s\nAC1\n");
  EXPECT_TRUE(with_line_end.is_malformed());
}

TEST(FastaReader, TwoRecordsAreReadOneByOne) {
  FastaReader reader(">s1\nAC\n>s2\nGG");
  reader.read();
  EXPECT_EQ(reader.sequence.name.view(), "s1");
  EXPECT_EQ(reader.sequence.residues.view(), "AC");
  EXPECT_TRUE(reader.file.good());
  EXPECT_FALSE(reader.file.fail());
  reader.read();
  EXPECT_EQ(reader.sequence.name.view(), "s2");
  EXPECT_EQ(reader.sequence.residues.view(), "GG");
  EXPECT_TRUE(reader.file.eof());
  EXPECT_TRUE(reader.file.fail());
}

TEST(FastaReader, AHeaderThatIsNotAtTheStartOfItsLineIsMalformed) {
  const FirstRecord record(">s1\nAC\n  >s2\nGG\n");
  EXPECT_TRUE(record.is_malformed());
  EXPECT_EQ(record.file.line_number(), 3U);
}

TEST(FastaReader, AHeaderWithNothingBehindItIsARecordWithoutResidues) {
  const FirstRecord record(">only-header");
  EXPECT_FALSE(record.is_malformed());
  EXPECT_TRUE(record.file.eof());
  EXPECT_EQ(record.sequence.name.view(), "only-header");
  EXPECT_EQ(record.sequence.residues.view(), "");
}

TEST(FastaReader, AnEmptyFileIsMalformedAtLine1) {
  const FirstRecord record("");
  EXPECT_TRUE(record.is_malformed());
  EXPECT_EQ(record.file.line_number(), 1U);
}

TEST(FastaReader, AFileOfWhiteSpaceAndCommentsIsMalformed) {
  const FirstRecord record("\n # c\n");
  EXPECT_TRUE(record.is_malformed());
  EXPECT_EQ(record.file.line_number(), 3U);
}

TEST(FastaReader, ACommentWithoutALineEndIsMalformed) {
  EXPECT_TRUE(FirstRecord("#>s").is_malformed());
}

TEST(FastaReader, ATextBeforeTheFirstHeaderIsMalformed) {
  EXPECT_TRUE(FirstRecord("ACGT\n>s\nAC\n").is_malformed());
}

TEST(FastaReader, ACommentBehindTheFirstRecordIsMalformed) {
  FastaReader reader(">a\nAC\n# comment\n>b\nAC\n");
  reader.read();
  EXPECT_TRUE(reader.is_malformed());
  EXPECT_EQ(reader.file.line_number(), 3U);
}

TEST(FastaReader, BlankLinesInsideAndBetweenRecordsAreIgnored) {
  FastaReader reader(">a\nAC\n\nGT\n\n\n>b\n\nTT\n");
  reader.read();
  EXPECT_EQ(reader.sequence.residues.view(), "ACGT");
  reader.read();
  EXPECT_EQ(reader.sequence.name.view(), "b");
  EXPECT_EQ(reader.sequence.residues.view(), "TT");
}

class FastaLineEnds : public ::testing::TestWithParam<std::string> {};

TEST_P(FastaLineEnds, ReadTheSame) {
  std::string text;
  for (const char ch : std::string_view(">a b\nAC\n\nGT\n>c\nTT\n")) {
    text += ch == '\n' ? GetParam() : std::string(1, ch);
  }
  FastaReader reader(text);
  reader.read();
  EXPECT_EQ(reader.sequence.header.view(), "a b");
  EXPECT_EQ(reader.sequence.residues.view(), "ACGT");
  reader.read();
  EXPECT_EQ(reader.sequence.header.view(), "c");
  EXPECT_EQ(reader.sequence.residues.view(), "TT");
  EXPECT_EQ(reader.file.line_number(), 7U);
}

INSTANTIATE_TEST_SUITE_P(LfCrLfAndCr, FastaLineEnds, ::testing::Values("\n", "\r\n", "\r"));

TEST(FastaReader, ALoneGreaterSignAtTheEndIsAnEmptyRecordWithTheNameBefore) {
  FastaReader reader(">first\nAC\n>");
  reader.read();
  EXPECT_TRUE(reader.file.good());
  reader.read();
  EXPECT_FALSE(reader.is_malformed());
  EXPECT_TRUE(reader.file.eof());
  EXPECT_EQ(reader.sequence.name.view(), "first");
  EXPECT_EQ(reader.sequence.header.view(), "");
  EXPECT_EQ(reader.sequence.residues.view(), "");
}

TEST(FastaReader, AGreaterSignAndACrAtTheEndAreARecordWithAnEmptyName) {
  FastaReader reader(">first\nAC\n>\r");
  reader.read();
  reader.read();
  EXPECT_FALSE(reader.is_malformed());
  EXPECT_TRUE(reader.file.eof());
  EXPECT_EQ(reader.sequence.name.view(), "");
  EXPECT_EQ(reader.sequence.header.view(), "");
}

TEST(FastaReader, AnyByteMayStandInAHeader) {
  const std::string header("s\0\x80\xff >#1", 8);
  const FirstRecord record(">" + header + "\nAC\n");
  EXPECT_EQ(record.sequence.header.view(), header);
  EXPECT_EQ(record.sequence.name.view(), header.substr(0, 4));
  EXPECT_FALSE(record.is_malformed());
}

TEST(FastaReader, ResiduesOfTheRecordBeforeAreForgotten) {
  FastaReader reader(">a\nACGTACGT\n>b\n");
  reader.read();
  reader.read();
  EXPECT_EQ(reader.sequence.residues.size, 0U);
}

TEST(FastaReader, ResiduesGrowBeyondTheRoomReservedForThem) {
  const std::string bases(1000, 'G');  // 16 are reserved
  const FirstRecord record(">a\n" + bases + "\n");
  EXPECT_EQ(record.sequence.residues.view(), bases);
}

TEST(FastaReader, ACopyOfARecordStaysWhenTheNextIsRead) {
  FastaReader reader(">a first one\nACGT\n>b\nGG\n");
  reader.read();
  CSequence_Mol copy(CSequence_Mol::kDna, 0);
  copy.assign(reader.sequence);
  reader.read();
  EXPECT_EQ(copy.header.view(), "a first one");
  EXPECT_EQ(copy.name.view(), "a");
  EXPECT_EQ(copy.description.view(), "first one");
  EXPECT_EQ(copy.residues.view(), "ACGT");
  copy.assign(reader.sequence);
  EXPECT_EQ(copy.name.view(), "b");
  EXPECT_EQ(copy.residues.view(), "GG");
}

TEST(FastaReader, AnotherMoleculeTypeIsNotImplemented) {
  constexpr std::uint32_t kProtein = 2;
  FastaReader reader(">a\nMK\n", kProtein);
  CapturedStandardStream output(stdout);
  reader.read();
  EXPECT_EQ(output.text(), "Not implemented.\n");
  EXPECT_TRUE(reader.is_malformed());
  EXPECT_EQ(reader.sequence.residues.size, 0U);
}

}  // namespace
}  // namespace vorlan
