// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <string>

#include "monomers/dissect_arrays.h"

namespace vorlan_tools {

/// What the command lines of `monomers` and `consensus` say.
struct ArrayOptions {
  ArrayRequest request;
  std::string form;
  std::string unit_lengths;
  double min_perfection = 0;
  double min_copies = 0;
};

/// Adds what both take: the arrays, the genome, the output, the phase and which repeats.
void add_array_options(CLI::App& command, ArrayOptions& options);

/// The request with everything but its form set. Throws UsageError.
ArrayRequest request_of(const ArrayOptions& options);

}  // namespace vorlan_tools
