// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/monomers.h"

#include <CLI/CLI.hpp>

#include "cli/array_options.h"

namespace vorlan_tools {

void add_monomers(CLI::App& app, Action& action) {
  using Form = ArrayRequest::Form;
  const ArrayForms forms{{"bed", Form::kMonomerBed}, {"fasta", Form::kMonomerFasta}};
  add_array_subcommand(
      *app.add_subcommand("monomers", "Write the copies of the unit of each repeat, one by one"),
      forms, "bed", action);
}

}  // namespace vorlan_tools
