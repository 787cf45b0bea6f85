// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/merge.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "merge/merge_reports.h"

namespace vorlan_tools {

void add_merge(CLI::App& app, Action& action) {
  struct Choices {
    MergeOptions options;
    std::string input_name;
    bool are_masked = false;
  };
  const auto choices = std::make_shared<Choices>();
  CLI::App* command =
      app.add_subcommand("merge", "Put reports of parts of an input together to that of the whole");
  command
      ->add_option("part", choices->options.parts,
                   "Reports in the order of the sequences; - is standard input")
      ->required();
  command->add_option(
      "-o,--output", choices->options.output,
      "Merged report, compressed if its name ends in .gz, .bgz or .bgzf (default: standard "
      "output)");
  const CLI::Option* input =
      command->add_option("--input", choices->input_name, "Input name that the head shall show");
  command->add_flag("--slices", choices->options.are_slices,
                    "The parts are runs over pieces of the input, not ranges of its sequences");
  command->add_flag("--masked", choices->are_masked, "The parts are masked files, not reports");
  command->callback([&action, choices, input] {
    if (input->count() > 0) choices->options.input_name = choices->input_name;
    action = [choices] {
      if (choices->are_masked) {
        merge_masked(choices->options);
      } else {
        merge_reports(choices->options);
      }
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
