// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/array_options.h"

#include <CLI/CLI.hpp>

#include "errors.h"

namespace vorlan_tools {

void add_array_options(CLI::App& command, ArrayOptions& options) {
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
  command.add_option("--unit-length", options.unit_lengths,
                     "Only units of this length or range, such as 100-200 or 7-");
  command
      .add_option("--min-perfection", options.min_perfection,
                  "Only repeats of at least this perfection in %")
      ->check(CLI::Range(0.0, 100.0));
  command
      .add_option("--min-length", request.filter.min_length,
                  "Only repeats of at least so many bases in the sequence")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--min-copies", options.min_copies,
                  "Only repeats of at least so many copies of the unit")
      ->check(CLI::NonNegativeNumber);
}

ArrayRequest request_of(const ArrayOptions& options) {
  ArrayRequest request = options.request;
  if (request.begin.find_first_not_of("ACGT") != std::string::npos) {
    throw UsageError("--begin takes bases (A, C, G, T), not \"" + request.begin + "\".");
  }
  if (!options.unit_lengths.empty()) set_unit_lengths(request.filter, options.unit_lengths);
  if (options.min_perfection > 0) {
    request.filter.min_perfection = to_thousandths(options.min_perfection, "--min-perfection");
  }
  request.filter.min_copies = to_thousandths(options.min_copies, "--min-copies");
  return request;
}

}  // namespace vorlan_tools
