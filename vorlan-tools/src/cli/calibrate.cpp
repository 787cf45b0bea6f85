// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/calibrate.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "calibrate/calibrate.h"
#include "calibrate/calibration_json.h"
#include "calibrate/kmer_shuffle.h"
#include "cli/exit_status.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/output_file.h"
#include "run/child_process.h"
#include "run/vorlan_arguments.h"

namespace vorlan_tools {

namespace {

struct Choices {
  CalibrationRequest request;
  std::vector<std::string> arguments;
  bool per_sequence = false;
  std::string vorlan;
  std::string table;
  std::string json;
};

/// Options that say how a report looks are chosen here.
void require_search_settings(const VorlanArguments& arguments) {
  if (!arguments.names.empty() || !arguments.range.empty() || arguments.asks_for_text ||
      arguments.masks) {
    throw UsageError("Behind \"--\" only options of the search can stand: the input is --genome.");
  }
  for (const std::string& word : arguments.settings) {
    for (const char* const option : {"--outputFormat", "--printRepeatSeqMode",
                                     "--sequenceInfoAsComment", "-f", "--flanking"}) {
      if (word != option) continue;
      throw UsageError("calibrate chooses how its reports look: leave out " + word + ".");
    }
  }
}

void write(const std::string& name, const std::string& text) {
  OutputFile output(name, compression_by_name(name));
  output.write(text);
  output.finish();
}

int run_calibrate(Choices& choices) {
  const VorlanArguments arguments = take_apart(choices.arguments);
  require_search_settings(arguments);
  for (const std::string& output : {choices.table, choices.json}) {
    if (output.empty() || !is_same_file(choices.request.fasta, output)) continue;
    throw UsageError("The output " + output + " is the genome.");
  }
  if (choices.table == "-" && choices.json == "-") {
    throw UsageError("Only one of --tsv and --json can be standard output.");
  }
  choices.request.settings = arguments.settings;
  choices.request.vorlan = find_vorlan(choices.vorlan);
  if (choices.per_sequence) choices.request.window = 0;
  const Calibration calibration = calibrate(choices.request);
  if (choices.table.empty() && choices.json.empty()) choices.table = "-";
  if (!choices.table.empty()) write(choices.table, calibration_table(calibration));
  if (!choices.json.empty()) write(choices.json, to_json(calibration).dump() + "\n");
  return kSuccess;
}

void add_shuffle_options(CLI::App& command, Choices& choices) {
  CalibrationRequest& request = choices.request;
  command.add_option("-k,--word-length", request.k, "Words of so many bases stay (default 3)")
      ->check(CLI::Range(1U, KmerShuffle::kLongestWord));
  command.add_option("--copies", request.copies, "Shuffled copies (default 10)")
      ->check(CLI::Range(1, 1000));
  command.add_option("--seed", request.seed, "Another number, other copies (default 1)");
  command
      .add_option("--window", request.window, "Bases that are shuffled together (default 10000)")
      ->check(CLI::Range(100, 1000000000));
  command.add_flag("--per-sequence", choices.per_sequence, "Shuffle whole sequences, not windows");
  command
      .add_option("--mask-length", request.mask_length,
                  "Leave repeats of so many bases out of the copies (default 30; 0: none)")
      ->check(CLI::Range(0, 1000000000));
}

}  // namespace

void add_calibrate(CLI::App& app, Action& action,
                   const std::vector<std::string>& vorlan_arguments) {
  const auto choices = std::make_shared<Choices>();
  choices->arguments = vorlan_arguments;
  CLI::App* const command = app.add_subcommand(
      "calibrate", "Estimate how many repeats of each score chance alone brings");
  command->add_option("-g,--genome", choices->request.fasta, "FASTA file; - is standard input")
      ->required();
  add_shuffle_options(*command, *choices);
  command->add_option("-j,--jobs", choices->request.jobs, "Copies searched at a time (default 1)")
      ->check(CLI::Range(1, 1024));
  command->add_option("--vorlan", choices->vorlan,
                      "The program to run (default: beside vorlan-tools, or in PATH)");
  command->add_option("--tsv", choices->table,
                      "File for a table; - is standard output (default if --json is not given)");
  command->add_option("--json", choices->json, "File for all numbers, which page and convert read");
  command->footer("Behind these: -- OPTIONS of the search.");
  command->callback([&action, choices] { action = [choices] { return run_calibrate(*choices); }; });
}

}  // namespace vorlan_tools
