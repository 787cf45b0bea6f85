// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/monomers.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "cli/array_options.h"
#include "cli/exit_status.h"

namespace vorlan_tools {

namespace {

using Form = ArrayRequest::Form;

const std::map<std::string, Form> kForms = {{"bed", Form::kMonomerBed},
                                            {"fasta", Form::kMonomerFasta}};

}  // namespace

void add_monomers(CLI::App& app, Action& action) {
  const auto options = std::make_shared<ArrayOptions>();
  options->form = "bed";
  CLI::App* const command =
      app.add_subcommand("monomers", "Write the copies of the unit of each repeat, one by one");
  add_array_options(*command, *options);
  command->add_option("-t,--to", options->form, "Target: bed or fasta (default bed)")
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
