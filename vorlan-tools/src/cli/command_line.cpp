// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/command_line.h"

#include <htslib/hts_log.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/exit_status.h"
#include "cli/subcommands.h"
#include "errors.h"
#include "io/unfinished_files.h"

#ifndef VORLAN_TOOLS_VERSION
#error "The build names the version."
#endif

namespace vorlan_tools {

namespace {

void complain(const std::string& sentence) { std::cerr << "vorlan-tools: " << sentence << '\n'; }

/// Help and version are no failures and go to standard output; everything else is a usage error.
int end_parse(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error, std::cout, std::cerr);
    return std::cout.flush() ? kSuccess : kData;
  }
  complain(std::string(error.what()) + " (see vorlan-tools --help)");
  return kUsage;
}

int perform(const Action& action) {
  try {
    return action();
  } catch (const UsageError& error) {
    complain(error.what());
    return kUsage;
  } catch (const DataError& error) {
    complain(error.what());
  } catch (const std::system_error& error) {
    complain(std::string("The system refused: ") + error.what() + ".");
  } catch (const std::bad_alloc&) {
    complain("There is not enough memory.");
  }
  return kData;
}

// What stands behind "--" of `run` and `calibrate` is the command line of another program, and
// never read as ours. Shortens `argc`.
std::vector<std::string> take_vorlan_arguments(int& argc, char** argv) {
  std::vector<std::string> arguments;
  if (argc < 2) return arguments;
  const std::string_view subcommand = argv[1];
  if (subcommand != "run" && subcommand != "calibrate") return arguments;
  char** const end = argv + argc;
  char** const marks = std::find(argv + 2, end, std::string_view("--"));
  if (marks == end) return arguments;
  arguments.assign(marks + 1, end);
  argc = static_cast<int>(marks - argv);
  return arguments;
}

}  // namespace

int run_command_line(int argc, char** argv) {
  const std::vector<std::string> vorlan_arguments = take_vorlan_arguments(argc, argv);
  // What htslib has to say comes as one sentence of this program.
  hts_set_log_level(HTS_LOG_OFF);
  CLI::App app("Reads, checks and converts reports of vorlan, and runs vorlan on all cores.",
               "vorlan-tools");
  app.set_version_flag("--version", std::string("vorlan-tools ") + VORLAN_TOOLS_VERSION);
  app.require_subcommand(1);
  Action action;
  add_subcommands(app, action, vorlan_arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return end_parse(app, error);
  }
  remove_unfinished_files_at_signals();
  return perform(action);
}

}  // namespace vorlan_tools
