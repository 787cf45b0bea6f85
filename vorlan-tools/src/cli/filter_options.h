// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <string>

#include "convert/repeat_filter.h"

namespace vorlan_tools {

/// What the command line says of the repeats that are wanted.
struct FilterOptions {
  RepeatFilter filter;
  std::string unit_lengths;
  double min_perfection = 0;
  double min_copies = 0;
};

/// Adds --unit-length, --min-perfection, --min-length and --min-copies. `options` must live as long
/// as `command`.
void add_filter_options(CLI::App& command, FilterOptions& options);

/// The filter that was asked for. Throws UsageError for values without a meaning.
RepeatFilter filter_of(const FilterOptions& options);

}  // namespace vorlan_tools
