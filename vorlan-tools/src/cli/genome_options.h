// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <string>

#include "stats/read_genomes.h"

namespace vorlan_tools {

/// Adds what `stats` and `page` share: reports, --genome and --name.
void add_genome_options(CLI::App& command, GenomeInputs& request);

/// Throws UsageError if the output is one of the inputs, by whatever name.
void require_other_file(const GenomeInputs& request, const std::string& output);

}  // namespace vorlan_tools
