// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/filter_options.h"

#include <CLI/CLI.hpp>

namespace vorlan_tools {

void add_filter_options(CLI::App& command, FilterOptions& options) {
  command.add_option("--unit-length", options.unit_lengths,
                     "Only units of this length or range, such as 2-6 or 7-");
  command
      .add_option("--min-perfection", options.min_perfection,
                  "Only repeats of at least this perfection in %")
      ->check(CLI::Range(0.0, 100.0));
  command
      .add_option("--min-length", options.filter.min_length,
                  "Only repeats of at least so many bases in the sequence")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--min-copies", options.min_copies,
                  "Only repeats of at least so many copies of the unit")
      ->check(CLI::NonNegativeNumber);
}

RepeatFilter filter_of(const FilterOptions& options) {
  RepeatFilter filter = options.filter;
  if (!options.unit_lengths.empty()) set_unit_lengths(filter, options.unit_lengths);
  if (options.min_perfection > 0)
    filter.min_perfection = to_thousandths(options.min_perfection, "--min-perfection");
  filter.min_copies = to_thousandths(options.min_copies, "--min-copies");
  return filter;
}

}  // namespace vorlan_tools
