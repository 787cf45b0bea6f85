// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

#include "stats/genome_stats.h"

namespace vorlan_tools {

/// What `stats` and `page` are given.
struct GenomeInputs {
  std::vector<std::string> inputs;  ///< reports, or files of `stats --json`; "-": standard input
  std::vector<std::string> fastas;  ///< none, or one for each input
  std::vector<std::string> names;   ///< none, or one for each input
};

/// The genomes of all inputs, in their order; a file of `stats --json`, told by its first byte, may
/// hold several. Genomes of one name get a number behind it. Throws DataError and UsageError.
std::vector<GenomeStats> read_genomes(const GenomeInputs& request);

}  // namespace vorlan_tools
