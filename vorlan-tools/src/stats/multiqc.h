// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "stats/genome_stats.h"

namespace vorlan_tools {

/// Files that MultiQC shows without a module, as pairs of an ending and a text: key figures, bases
/// by unit length, and bases by divergence. Files of several runs are shown together.
std::vector<std::pair<std::string, std::string>> multiqc_files(
    const std::vector<GenomeStats>& genomes);

}  // namespace vorlan_tools
