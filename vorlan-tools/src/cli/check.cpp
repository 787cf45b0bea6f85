// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/check.h"

#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "io/line_reader.h"
#include "report/head.h"

namespace vorlan_tools {

namespace {

struct CheckOptions {
  std::string report;
};

int check(const CheckOptions& options) {
  LineReader lines(options.report);
  read_head(lines);
  return kSuccess;
}

}  // namespace

void add_check(CLI::App& app, Action& action) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* command = app.add_subcommand("check", "Recompute every number of a report");
  command->add_option("report", options->report, "Report to check; - is standard input")
      ->required();
  command->callback([&action, options] { action = [options] { return check(*options); }; });
}

}  // namespace vorlan_tools
