// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/cfile.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_file.h"

namespace vorlan {
namespace {

/// The first fill of the buffer holds this many bytes; later ones one less, since the last
/// character delivered is kept in front of them.
constexpr std::size_t kFirstFill = 1'000'000;
constexpr std::size_t kLaterFill = kFirstFill - 1;

/// All characters of a file up to its end, and what the file says afterwards.
struct Delivered {
  explicit Delivered(std::string_view bytes) : content(bytes) {
    file.open(content.name());
    for (char ch = file.getchar(); !file.fail(); ch = file.getchar()) text += ch;
  }

  TemporaryFile content;
  CFile file;
  std::string text;
};

TEST(InputFile, ACrLfPairIsOneLineEnd) {
  const Delivered delivered("A\r\nB");
  EXPECT_EQ(delivered.text, "A\nB");
  EXPECT_EQ(delivered.file.line_number(), 2U);
}

TEST(InputFile, ALoneCrIsALineEnd) {
  const Delivered delivered("A\rB");
  EXPECT_EQ(delivered.text, "A\nB");
  EXPECT_EQ(delivered.file.line_number(), 2U);
}

TEST(InputFile, LfFollowedByCrAreTwoLineEnds) {
  const Delivered delivered("A\n\rB");
  EXPECT_EQ(delivered.text, "A\n\nB");
  EXPECT_EQ(delivered.file.line_number(), 3U);
}

TEST(InputFile, TwoCrsAreTwoLineEnds) {
  const Delivered delivered("A\r\r\nB");
  EXPECT_EQ(delivered.text, "A\n\nB");
  EXPECT_EQ(delivered.file.line_number(), 3U);
}

// The end is met while the character behind the CR is looked for, so the line end itself comes
// with the end flags set.
TEST(InputFile, ACrAtTheVeryEndIsDeliveredAsALineEndAndThenTheFileEnds) {
  const TemporaryFile content("A\r");
  CFile file;
  file.open(content.name());
  EXPECT_EQ(file.getchar(), 'A');
  EXPECT_EQ(file.getchar(), '\n');
  EXPECT_EQ(file.line_number(), 2U);
  EXPECT_EQ(file.getchar(), '\0');
  EXPECT_TRUE(file.eof());
  EXPECT_TRUE(file.fail());
  EXPECT_FALSE(file.good());
}

TEST(InputFile, ACrLfPairSplitAcrossTwoFillsIsOneLineEnd) {
  const std::string first_line(kFirstFill - 1, 'A');
  const Delivered delivered(first_line + "\r\nB");
  EXPECT_EQ(delivered.text, first_line + "\nB");
  EXPECT_EQ(delivered.file.line_number(), 2U);
}

TEST(InputFile, ACrLfPairSplitAcrossLaterFillsIsOneLineEnd) {
  const std::string first_line(kFirstFill + kLaterFill - 1, 'A');
  const Delivered delivered(first_line + "\r\nB");
  EXPECT_EQ(delivered.text, first_line + "\nB");
  EXPECT_EQ(delivered.file.line_number(), 2U);
}

TEST(InputFile, ALoneCrAtTheEndOfAFillIsOneLineEnd) {
  const std::string first_line(kFirstFill - 1, 'A');
  const Delivered delivered(first_line + "\rB");
  EXPECT_EQ(delivered.text, first_line + "\nB");
  EXPECT_EQ(delivered.file.line_number(), 2U);
}

TEST(InputFile, ACharacterCanBePutBackRightAfterARefill) {
  const TemporaryFile content(std::string(kFirstFill - 1, 'A') + "CG");
  CFile file;
  file.open(content.name());
  for (std::size_t i = 0; i + 1 < kFirstFill; ++i) ASSERT_EQ(file.getchar(), 'A');
  EXPECT_EQ(file.getchar(), 'C');
  EXPECT_EQ(file.peekchar(), 'G');  // the first byte of the second fill
  file.ungetchar();                 // the C is kept in front of the second fill
  EXPECT_TRUE(file.good());
  EXPECT_EQ(file.getchar(), 'C');
  EXPECT_EQ(file.getchar(), 'G');
}

TEST(InputFile, PuttingALineEndBackUncountsIt) {
  const TemporaryFile content("1\n2\n3\n4\n5\n6\n7\n8");
  CFile file;
  file.open(content.name());
  for (int i = 0; i < 14; ++i) file.getchar();
  EXPECT_EQ(file.line_number(), 8U);
  file.ungetchar();
  EXPECT_EQ(file.line_number(), 7U);
  EXPECT_EQ(file.getchar(), '\n');
  EXPECT_EQ(file.line_number(), 8U);
  EXPECT_EQ(file.getchar(), '8');
}

TEST(InputFile, ACrThatIsPutBackComesAgainAsALineEnd) {
  const TemporaryFile content("A\rB");
  CFile file;
  file.open(content.name());
  EXPECT_EQ(file.getchar(), 'A');
  EXPECT_EQ(file.peekchar(), '\n');
  EXPECT_EQ(file.line_number(), 1U);
  EXPECT_EQ(file.getchar(), '\n');
  EXPECT_EQ(file.getchar(), 'B');
  EXPECT_EQ(file.line_number(), 2U);
}

TEST(InputFile, AnEmptyFileEndsAtTheFirstCharacterInLine1) {
  const TemporaryFile content("");
  CFile file;
  file.open(content.name());
  EXPECT_TRUE(file.good());
  EXPECT_EQ(file.getchar(), '\0');
  EXPECT_TRUE(file.eof());
  EXPECT_TRUE(file.fail());
  EXPECT_FALSE(file.good());
  EXPECT_EQ(file.line_number(), 1U);
}

TEST(InputFile, AFileThatCannotBeOpenedFailsWithoutBeingAtItsEnd) {
  CFile file;
  file.open("no such directory/no such file");
  EXPECT_TRUE(file.fail());
  EXPECT_FALSE(file.good());
  EXPECT_FALSE(file.eof());
}

TEST(InputFile, ADirectoryIsAtItsEndAtOnce) {
  CFile file;
  file.open(::testing::TempDir().c_str());
  EXPECT_EQ(file.getchar(), '\0');
  EXPECT_TRUE(file.fail());
  EXPECT_EQ(file.line_number(), 1U);
}

TEST(InputFile, NothingCanBePutBackBeforeTheFirstCharacter) {
  const TemporaryFile content("A");
  CFile file;
  file.open(content.name());
  file.ungetchar();
  EXPECT_TRUE(file.fail());
  EXPECT_FALSE(file.good());
  EXPECT_FALSE(file.eof());
}

TEST(InputFile, ControlCharactersAndBytesFrom128UpComeUnchanged) {
  const std::string bytes("\0\t\v\f\x1f\x7f\x80\xff", 8);
  const Delivered delivered(bytes);
  EXPECT_EQ(delivered.text, bytes);
  EXPECT_EQ(delivered.file.line_number(), 1U);
}

TEST(InputFile, BufferedCharactersStandAsInTheFileAndCanBeSkipped) {
  const TemporaryFile content("ACGT\r\nTT");
  CFile file;
  file.open(content.name());
  EXPECT_EQ(file.buffered(), "");  // nothing was read yet
  EXPECT_EQ(file.getchar(), 'A');
  EXPECT_EQ(file.buffered(), "CGT\r\nTT");
  file.skip(2);
  EXPECT_EQ(file.getchar(), 'T');
  EXPECT_EQ(file.getchar(), '\n');
  EXPECT_EQ(file.line_number(), 2U);
  EXPECT_EQ(file.buffered(), "TT");
}

TEST(InputFile, OnceMalformedLineEndsAreNeitherConvertedNorCounted) {
  const TemporaryFile content("1\n\r\n3");
  CFile file;
  file.open(content.name());
  file.getchar();
  file.set_malformed();
  EXPECT_EQ(file.getchar(), '\n');
  EXPECT_EQ(file.getchar(), '\r');
  EXPECT_EQ(file.line_number(), 1U);
  file.ungetchar();
  file.ungetchar();
  EXPECT_EQ(file.line_number(), 1U);
}

/// Whether a whole record waits, once the first character of the file has been looked at.
bool holds_record(std::string_view bytes, std::size_t longest = kFirstFill) {
  const TemporaryFile content(bytes);
  CFile file;
  file.open(content.name());
  file.peekchar();
  return file.holds_record(longest);
}

TEST(InputFile, HoldsARecordThatAnotherOneFollows) {
  EXPECT_TRUE(holds_record(">a\nAC\n>"));
  EXPECT_TRUE(holds_record(">a\rAC\r>b"));
  EXPECT_TRUE(holds_record(">a\r\n>b"));
}

TEST(InputFile, DoesNotKnowTheEndOfARecordThatNoneFollows) {
  EXPECT_FALSE(holds_record(">a\nAC\n"));
  EXPECT_FALSE(holds_record(">"));
  EXPECT_FALSE(holds_record(""));
}

TEST(InputFile, AGreaterSignWithinALineIsNoOtherRecord) {
  EXPECT_FALSE(holds_record(">a >b\nAC>\n"));
  EXPECT_TRUE(holds_record(">a >b\nAC\n>c"));
}

TEST(InputFile, ARecordIsNotHeldWhoseEndHasNotBeenReadFromTheFile) {
  const std::string record = ">a\n" + std::string(kFirstFill - 5, 'A') + '\n';
  EXPECT_TRUE(holds_record(record + ">b"));
  EXPECT_FALSE(holds_record(record + "\n>b"));
}

TEST(InputFile, ALongerRecordThanAskedForIsNotHeld) {
  EXPECT_TRUE(holds_record(">a\nAC\n>b", 6));
  EXPECT_FALSE(holds_record(">a\nAC\n>b", 5));
  EXPECT_FALSE(holds_record(">a\nAC\n>b", 0));
}

TEST(InputFile, HoldsNoRecordBeforeItIsRead) {
  const TemporaryFile content(">a\n>b\n");
  CFile file;
  file.open(content.name());
  EXPECT_FALSE(file.holds_record(kFirstFill));
}

TEST(InputFile, OpeningAgainStartsAnew) {
  const TemporaryFile first("A\nB");
  const TemporaryFile second("C");
  CFile file;
  file.open(first.name());
  while (!file.fail()) file.getchar();
  file.close();
  file.open(second.name());
  EXPECT_TRUE(file.good());
  EXPECT_FALSE(file.eof());
  EXPECT_EQ(file.line_number(), 1U);
  EXPECT_EQ(file.getchar(), 'C');
}

}  // namespace
}  // namespace vorlan
