// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/run.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cli/exit_status.h"
#include "errors.h"
#include "run/child_process.h"
#include "run/run.h"
#include "run/vorlan_arguments.h"

namespace vorlan_tools {

namespace {

/// A slice of this size is searched in about a second; a process starts in a few milliseconds.
constexpr std::uint64_t kSliceSize = std::uint64_t{1024} * 1024;

struct RunChoices {
  RunOptions options;
  std::string vorlan;
  std::string folder;  ///< for a report of each input
  std::string ending = ".txt";
  std::vector<std::string> arguments;
};

/// "genome.fa.gz" and "genome.fa" become "genome".
std::string name_of_genome(const std::string& input) {
  std::filesystem::path name = std::filesystem::path(input).filename();
  for (const std::string_view ending : {".gz", ".bgz", ".bgzf"}) {
    if (name.extension() == ending) {
      name = name.stem();
      break;
    }
  }
  return name.stem().string();
}

RunFiles files_of(const std::string& input, const std::string& report, bool masks) {
  RunFiles files{input, report.empty() ? "-" : report, ""};
  if (!masks) return files;
  if (input == "-")
    throw UsageError("--maskX names its file after the input: it needs one with a name.");
  files.masked = input + ".masked";
  return files;
}

/// As vorlan takes names: an input and perhaps a report; or with --reports only inputs.
std::vector<RunFiles> files_of(const VorlanArguments& arguments, const RunChoices& choices) {
  const std::vector<std::string>& names = arguments.names;
  if (names.empty())
    throw UsageError("run needs an input file, and \"--\" in front of what is for vorlan.");
  std::vector<RunFiles> runs;
  if (choices.folder.empty()) {
    if (names.size() > 2) {
      throw UsageError("run takes one input and one report; several inputs need --reports FOLDER.");
    }
    runs.push_back(files_of(names[0], names.size() == 2 ? names[1] : "-", arguments.masks));
    return runs;
  }
  for (const std::string& input : names) {
    if (input == "-") throw UsageError("With --reports every input needs a name.");
    const std::string report = choices.folder + "/" + name_of_genome(input) + choices.ending;
    runs.push_back(files_of(input, report, arguments.masks));
  }
  return runs;
}

int become_vorlan(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<char*> pointers{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) {
    pointers.push_back(const_cast<char*>(argument.c_str()));
  }
  pointers.push_back(nullptr);
  ::execv(program.c_str(), pointers.data());
  throw DataError("Cannot execute " + program + ": " + std::strerror(errno) + ".");
}

int run(RunChoices& choices) {
  const VorlanArguments arguments = take_apart(choices.arguments);
  choices.options.vorlan = find_vorlan(choices.vorlan);
  if (arguments.asks_for_text) return become_vorlan(choices.options.vorlan, arguments.settings);
  choices.options.settings = arguments.settings;
  choices.options.range = arguments.range;
  const std::vector<RunFiles> runs = files_of(arguments, choices);
  refuse_destructive_calls(runs);
  Signals signals;
  int status = kSuccess;
  for (const RunFiles& files : runs) {
    const int result = run_vorlan(files, choices.options, signals);
    if (status == kSuccess) status = result;
  }
  return status;
}

}  // namespace

void add_run(CLI::App& app, Action& action, const std::vector<std::string>& vorlan_arguments) {
  const auto choices = std::make_shared<RunChoices>();
  choices->arguments = vorlan_arguments;
  RunOptions& options = choices->options;
  options.jobs = std::max(1U, std::thread::hardware_concurrency());
  options.slice_size = kSliceSize;
  CLI::App* command =
      app.add_subcommand("run", "Run vorlan on all cores, with the report of one run");
  command->add_option("-j,--jobs", options.jobs, "Processes at a time (default: one for each core)")
      ->check(CLI::Range(1, 1024));
  command->add_flag("--resume", options.resumes, "Take up what an earlier run has finished");
  command->add_flag("-q,--quiet", options.is_quiet, "No progress");
  command->add_option("--vorlan", choices->vorlan,
                      "The program to run (default: beside vorlan-tools, or in PATH)");
  command->add_option("--slice-size", options.slice_size, "Bytes of input for a process, at least")
      ->transform(CLI::AsSizeValue(false))
      ->check(CLI::PositiveNumber);
  command->add_option("--reports", choices->folder,
                      "All names are inputs; write a report of each into this folder");
  command->add_option("--ending", choices->ending, "Ending of these reports (default: .txt)");
  command->footer(
      "Behind these: -- VORLAN-OPTIONS INPUT [REPORT]. INPUT may be compressed, - is standard "
      "input;\n"
      "REPORT is compressed if its name ends in .gz, .bgz or .bgzf (default: standard output).");
  command->callback([&action, choices] { action = [choices] { return run(*choices); }; });
}

}  // namespace vorlan_tools
