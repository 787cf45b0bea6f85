// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/array_options.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/exit_status.h"
#include "cli/filter_options.h"
#include "errors.h"
#include "fasta/bases.h"

namespace vorlan_tools {
namespace {

struct ArrayOptions {
  ArrayRequest request;
  FilterOptions filter;
  std::string form;
};

void add_options(CLI::App& command, ArrayOptions& options, const ArrayForms& forms) {
  ArrayRequest& request = options.request;
  command
      .add_option("report", request.arrays,
                  "Report, or BED file with units in column 4; - is standard input")
      ->required();
  command.add_option("-g,--genome", request.genome, "FASTA file that the report was made from")
      ->required();
  command.add_option("-o,--output", request.output,
                     "File to write; - is standard output (default)");
  command.add_option("--begin", request.begin,
                     "Bases with which a copy begins (default: as the array does)");
  command.add_option("-t,--to", options.form, "Target (default " + options.form + ")")
      ->check(CLI::IsMember(forms));
  add_filter_options(command, options.filter);
}

ArrayRequest request_of(const ArrayOptions& options, const ArrayForms& forms) {
  ArrayRequest request = options.request;
  if (!holds_only_bases(request.begin)) {
    throw UsageError("--begin takes bases (A, C, G, T), not \"" + request.begin + "\".");
  }
  request.filter = filter_of(options.filter);
  request.form = forms.at(options.form);
  return request;
}

}  // namespace

void add_array_subcommand(CLI::App& command, const ArrayForms& forms, const std::string& standard,
                          Action& action) {
  const auto options = std::make_shared<ArrayOptions>();
  options->form = standard;
  add_options(command, *options, forms);
  command.callback([&action, options, forms] {
    action = [options, forms] {
      dissect_arrays(request_of(*options, forms));
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
