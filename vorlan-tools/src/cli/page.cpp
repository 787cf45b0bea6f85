// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/page.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "calibrate/calibration_json.h"
#include "cli/exit_status.h"
#include "cli/genome_options.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/output_file.h"
#include "page/page.h"

namespace vorlan_tools {

namespace {

struct PageRequest {
  GenomeInputs genomes;
  std::string output = "-";
  std::vector<std::string> calibrations;
};

int run_page(const PageRequest& request) {
  require_other_file(request.genomes, request.output);
  const std::vector<GenomeStats> genomes = read_genomes(request.genomes);
  if (!request.calibrations.empty() && request.calibrations.size() != genomes.size()) {
    throw UsageError("--calibration must be given once for each genome, or not at all.");
  }
  std::vector<Calibration> calibrations;
  for (const std::string& name : request.calibrations) {
    calibrations.push_back(read_calibration(name));
  }
  const std::string text = page_text(genomes, calibrations);
  OutputFile output(request.output, compression_by_name(request.output));
  output.write(text);
  output.finish();
  return kSuccess;
}

}  // namespace

void add_page(CLI::App& app, Action& action) {
  const auto request = std::make_shared<PageRequest>();
  CLI::App* const command =
      app.add_subcommand("page", "Write a page that shows the repeats of genomes in a browser");
  add_genome_options(*command, request->genomes);
  command->add_option("-o,--output", request->output,
                      "File to write; - is standard output (default)");
  command
      ->add_option("--calibration", request->calibrations,
                   "File of calibrate --json; once for each genome")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->callback([&action, request] { action = [request] { return run_page(*request); }; });
}

}  // namespace vorlan_tools
