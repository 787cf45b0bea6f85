// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/genome_options.h"

#include <CLI/CLI.hpp>

#include "io/file_identity.h"

namespace vorlan_tools {

void add_genome_options(CLI::App& command, GenomeInputs& request) {
  command
      .add_option("report", request.inputs,
                  "Reports of any format, or files of stats --json; - is standard input")
      ->required();
  command
      .add_option("-g,--genome", request.fastas,
                  "FASTA file of the report, or its index; once for each report")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--name", request.names, "What the genome is called; once for each report")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void require_other_file(const GenomeInputs& request, const std::string& output) {
  refuse_input_as_output(request.inputs, output);
  refuse_input_as_output(request.fastas, output);
}

}  // namespace vorlan_tools
