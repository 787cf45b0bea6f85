// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/output_file.h"

#include <gmock/gmock.h>

#include <string>

#include "support/temporary_file.h"

namespace vorlan {
namespace {

using ::testing::StrEq;
using ::testing::ThrowsMessage;

TEST(OutputFile, EmptiesAFileThatExists) {
  const TemporaryFile file("what was there before");
  OutputFile output(file.name());
  std::fputs("new", output.stream());
  output.close();
  EXPECT_EQ(file.bytes(), "new");
}

TEST(OutputFile, AFileThatCannotBeOpenedIsNamed) {
  EXPECT_THAT([] { OutputFile output("no such directory/out.txt"); },
              ThrowsMessage<OutputNotOpened>(StrEq("no such directory/out.txt")));
}

TEST(OutputFile, AFullDiskIsNoticedWhenTheFileIsClosed) {
  OutputFile output("/dev/full");
  std::fputs("lost", output.stream());
  EXPECT_THAT([&] { output.close(); }, ThrowsMessage<WriteFailed>(StrEq("/dev/full")));
}

TEST(OutputFile, AFullDiskIsNoticedBetweenRecords) {
  OutputFile output("/dev/full");
  output.check();
  std::fputs("lost", output.stream());
  std::fflush(output.stream());
  EXPECT_THROW(output.check(), WriteFailed);
}

TEST(OutputFile, StandardOutputStaysOpen) {
  OutputFile output;
  EXPECT_EQ(output.stream(), stdout);
  output.close();
  EXPECT_EQ(output.stream(), stdout);
  EXPECT_NE(std::fputs("", stdout), EOF);
}

}  // namespace
}  // namespace vorlan
