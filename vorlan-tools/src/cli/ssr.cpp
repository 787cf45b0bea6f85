// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/ssr.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/exit_status.h"
#include "convert/repeat_filter.h"
#include "ssr/ssr_tables.h"

namespace vorlan_tools {

namespace {

struct SsrOptions {
  SsrRequest request;
  double min_perfection = 0;
};

void add_options(CLI::App& command, SsrOptions& options) {
  SsrRequest& request = options.request;
  command.add_option("report", request.report, "Report to read; - is standard input")->required();
  command.add_option(
      "--min", request.min,
      "Copies that make a locus, by unit length (default: 1:10,2:6,3:5,4:5,5:5,6:5)");
  command
      .add_option("--compound", request.compound_gap,
                  "Bases that may lie between loci of a compound locus (default: 100)")
      ->check(CLI::Range(0, 1000000000));
  command
      .add_option("--min-perfection", options.min_perfection,
                  "Only repeats of at least this perfection in %")
      ->check(CLI::Range(0.0, 100.0));
  command.add_option("-o,--output", request.output,
                     "Table by unit length; - is standard output (default)");
  command.add_option("--units", request.units, "Table by unit");
  command.add_option("--sequences", request.sequences, "Table by sequence");
  command.add_option("--compounds", request.compounds, "Table of compound loci");
}

}  // namespace

void add_ssr(CLI::App& app, Action& action) {
  const auto options = std::make_shared<SsrOptions>();
  CLI::App* const command =
      app.add_subcommand("ssr", "Count microsatellites by unit length, unit and sequence");
  add_options(*command, *options);
  command->callback([&action, options] {
    action = [options] {
      SsrRequest& request = options->request;
      if (options->min_perfection > 0) {
        request.filter.min_perfection = to_thousandths(options->min_perfection, "--min-perfection");
      }
      write_ssr_tables(request);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
