// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/consensus.h"

#include <CLI/CLI.hpp>

#include "cli/array_options.h"

namespace vorlan_tools {

void add_consensus(CLI::App& app, Action& action) {
  using Form = ArrayRequest::Form;
  const ArrayForms forms{{"fasta", Form::kConsensusFasta}, {"tsv", Form::kConsensusTable}};
  add_array_subcommand(
      *app.add_subcommand("consensus", "Write the consensus of the copies of each repeat"), forms,
      "fasta", action);
}

}  // namespace vorlan_tools
