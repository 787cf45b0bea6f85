// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/stats.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_status.h"
#include "cli/genome_options.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/output_file.h"
#include "stats/multiqc.h"
#include "stats/stats_json.h"
#include "stats/stats_table.h"

namespace vorlan_tools {

namespace {

struct StatsRequest {
  GenomeInputs genomes;
  std::string table;
  std::string json;
  std::string multiqc;
};

using Texts = std::vector<std::pair<std::string, std::string>>;

/// All files with their texts; the table goes to standard output if nothing else is asked for.
Texts texts_of(const StatsRequest& request, const std::vector<GenomeStats>& genomes) {
  Texts texts;
  if (!request.table.empty()) texts.emplace_back(request.table, stats_table(genomes));
  if (!request.json.empty()) {
    texts.emplace_back(request.json, to_json(genomes, Detail::kAll).dump() + "\n");
  }
  if (!request.multiqc.empty()) {
    for (const auto& [ending, text] : multiqc_files(genomes)) {
      texts.emplace_back(request.multiqc + ending, text);
    }
  }
  if (texts.empty()) texts.emplace_back("-", stats_table(genomes));
  return texts;
}

int run_stats(const StatsRequest& request) {
  if (request.table == "-" && request.json == "-") {
    throw UsageError("Only one of --tsv and --json can be standard output.");
  }
  for (const std::string& output : {request.table, request.json}) {
    if (!output.empty()) require_other_file(request.genomes, output);
  }
  const Texts texts = texts_of(request, read_genomes(request.genomes));
  std::vector<std::unique_ptr<OutputFile>> files;
  for (const auto& [name, text] : texts) {
    files.push_back(std::make_unique<OutputFile>(name, compression_by_name(name)));
    files.back()->write(text);
    files.back()->close();
  }
  for (const auto& file : files) file->commit();
  return kSuccess;
}

}  // namespace

void add_stats(CLI::App& app, Action& action) {
  const auto request = std::make_shared<StatsRequest>();
  CLI::App* const command =
      app.add_subcommand("stats", "Count the repeats of genomes by unit, length, place and edits");
  add_genome_options(*command, request->genomes);
  command->add_option("--tsv", request->table,
                      "File for a table; - is standard output (default if no other is asked for)");
  command->add_option("--json", request->json,
                      "File for all numbers as JSON, which stats and page read again");
  command->add_option("--multiqc", request->multiqc,
                      "Write files for MultiQC, whose names begin so");
  command->callback([&action, request] { action = [request] { return run_stats(*request); }; });
}

}  // namespace vorlan_tools
