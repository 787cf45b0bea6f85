// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/mask.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "cli/output_options.h"
#include "mask/mask_genome.h"

namespace vorlan_tools {

void add_mask(CLI::App& app, Action& action) {
  struct Choices {
    Masking masking;
    std::string output_type;
  };
  const auto choices = std::make_shared<Choices>();
  Masking& masking = choices->masking;
  CLI::App* command =
      app.add_subcommand("mask", "Write the FASTA file with the repeats of a report masked");
  command->add_option("report", masking.report, "Report of any format; - is standard input")
      ->required();
  command->add_option("-g,--genome", masking.fasta, "FASTA file that the report was made from")
      ->required();
  add_output_options(*command, masking.output, choices->output_type);
  add_thread_option(*command, masking.threads);
  command->add_flag("--hard", masking.style.is_hard, "Write N instead of lower case");
  command->add_flag("--keep-lower-case", masking.style.keeps_lower_case,
                    "Leave what was lower case before (default: upper case but for repeats)");
  command->add_flag("--write-index", masking.write_index,
                    "Write OUTPUT.fai, and OUTPUT.gzi if compressed");
  command->callback([&action, choices] {
    Masking& chosen = choices->masking;
    chosen.compression = compression_of(chosen.output, choices->output_type);
    action = [choices] {
      mask_genome(choices->masking);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
