// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/resolve.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "cli/filter_options.h"
#include "cli/output_options.h"
#include "resolve/resolve_report.h"

namespace vorlan_tools {

namespace {

struct ResolveOptions {
  ResolveRequest request;
  std::string strategy = "best";
  std::string output_type;
  FilterOptions filter;
};

const std::map<std::string, Strategy> kStrategies = {
    {"best", Strategy::kBest}, {"union", Strategy::kUnion}, {"tile", Strategy::kTile}};

void add_options(CLI::App& command, ResolveOptions& options) {
  ResolveRequest& request = options.request;
  command.add_option("report", request.report, "Report to read; - is standard input")->required();
  command
      .add_option("--strategy", options.strategy,
                  "best: keep the best readings (default); union: merge all that overlap; tile: "
                  "give each base to its best reading")
      ->check(CLI::IsMember(kStrategies));
  command
      .add_option("--max-gap", request.max_gap,
                  "With union, also merge what lies at most so many bases apart")
      ->check(CLI::Range(0, 1000000000));
  add_output_options(command, request.output, options.output_type);
  command.add_option("--members", request.members, "Table of what became of each repeat");
  command.add_flag("--cut-names", request.cut_names,
                   "End the names of sequences at their first tab, as samtools faidx does");
  add_filter_options(command, options.filter);
}

int run_resolve(const ResolveOptions& options) {
  ResolveRequest request = options.request;
  request.strategy = kStrategies.at(options.strategy);
  request.filter = filter_of(options.filter);
  request.compression = compression_of(request.output, options.output_type);
  resolve_report(request);
  return kSuccess;
}

}  // namespace

void add_resolve(CLI::App& app, Action& action) {
  const auto options = std::make_shared<ResolveOptions>();
  CLI::App* const command =
      app.add_subcommand("resolve", "Turn readings that overlap into stretches that do not");
  add_options(*command, *options);
  command->callback([&action, options] { action = [options] { return run_resolve(*options); }; });
}

}  // namespace vorlan_tools
