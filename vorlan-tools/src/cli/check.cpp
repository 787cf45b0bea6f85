// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/check.h"

#include <memory>
#include <string>

#include "check/report_check.h"
#include "cli/exit_status.h"
#include "errors.h"

namespace vorlan_tools {

namespace {

int run_check(const CheckRequest& request) {
  if (request.report == "-" && request.fasta == "-") {
    throw UsageError("Only one of report and FASTA can be standard input.");
  }
  const std::uint64_t count = check_report(request);
  if (count == 0) return kSuccess;
  const std::string name = request.report == "-" ? "standard input" : request.report;
  throw DataError("The report " + name + " does not hold: " + std::to_string(count) +
                  (count == 1 ? " fault" : " faults") +
                  (count == request.limit ? ", perhaps more (see --limit)." : "."));
}

}  // namespace

void add_check(CLI::App& app, Action& action) {
  const auto request = std::make_shared<CheckRequest>();
  CLI::App* const command = app.add_subcommand("check", "Recompute every number of a report");
  command->add_option("report", request->report, "Report to check; - is standard input")
      ->required();
  command->add_option("-g,--genome", request->fasta,
                      "FASTA file of the run: compare the bases too");
  command->add_option("--limit", request->limit,
                      "End after so many faults (default 100; 0: never)");
  command->callback([&action, request] { action = [request] { return run_check(*request); }; });
}

}  // namespace vorlan_tools
