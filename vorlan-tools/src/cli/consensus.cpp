// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/consensus.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "cli/array_options.h"
#include "cli/exit_status.h"

namespace vorlan_tools {

namespace {

using Form = ArrayRequest::Form;

const std::map<std::string, Form> kForms = {{"fasta", Form::kConsensusFasta},
                                            {"tsv", Form::kConsensusTable}};

}  // namespace

void add_consensus(CLI::App& app, Action& action) {
  const auto options = std::make_shared<ArrayOptions>();
  options->form = "fasta";
  CLI::App* const command =
      app.add_subcommand("consensus", "Write the consensus of the copies of each repeat");
  add_array_options(*command, *options);
  command->add_option("-t,--to", options->form, "Target: fasta or tsv (default fasta)")
      ->check(CLI::IsMember(kForms));
  command->callback([&action, options] {
    action = [options] {
      ArrayRequest request = request_of(*options);
      request.form = kForms.at(options->form);
      dissect_arrays(request);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
