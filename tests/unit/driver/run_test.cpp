// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/run.h"

#include <gmock/gmock.h>

#include <string>

#include "driver/console.h"
#include "support/captured_output.h"
#include "support/fresh_settings.h"
#include "support/temporary_file.h"

namespace vorlan {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

using RunOfTheProgram = FreshSettings;

// The line that announces a record counts as one: within it the next is due 60 seconds later.
TEST_F(RunOfTheProgram, ARecordPutsTheTimedLinesOff) {
  const TemporaryFile input(">a\nACGTACGTACGTACGT\n");
  const char* const arguments[] = {"vorlan", input.name()};
  CapturedStandardStream report(stdout);
  CapturedStandardStream console(stderr);
  time_next_status_report = 0;
  EXPECT_EQ(run(2, arguments), 0);
  EXPECT_THAT(console.text(),
              ContainsRegex("-----\n[0-9.]+ - #   1 -    1bp - a\n\nAnalysis finished"));
  EXPECT_THAT(report.text(), HasSubstr("tetranucleotide"));
}

}  // namespace
}  // namespace vorlan
