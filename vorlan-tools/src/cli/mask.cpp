// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/mask.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "io/compression_by_name.h"
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
  command->add_option("-o,--output", masking.output,
                      "File to write; - is standard output (default)");
  command
      ->add_option("-O,--output-type", choices->output_type,
                   "z: compress with bgzip, u: do not (default: z if the output ends in .gz)")
      ->check(CLI::IsMember({"z", "u"}));
  command->add_flag("--hard", masking.style.is_hard, "Write N instead of lower case");
  command->add_flag("--keep-lower-case", masking.style.keeps_lower_case,
                    "Leave what was lower case before (default: upper case but for repeats)");
  command->add_flag("--write-index", masking.write_index,
                    "Write OUTPUT.fai, and OUTPUT.gzi if compressed");
  command->callback([&action, choices] {
    const std::string& type = choices->output_type;
    Masking& chosen = choices->masking;
    chosen.compression = type.empty()  ? compression_by_name(chosen.output)
                         : type == "z" ? Compression::kBgzip
                                       : Compression::kPlain;
    action = [choices] {
      mask_genome(choices->masking);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
