// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

#include "stats/genome_stats.h"

namespace vorlan_tools {

/// The numbers as a table: a line with the names of the columns, then for each genome lines for the
/// whole ("genome"), each sequence, unit length, unit, class of copies and class of divergence.
std::string stats_table(const std::vector<GenomeStats>& genomes);

/// What a class of copies or divergence is called: "5", "10-11", "1000-" copies; "0", "0-1", "50-"
/// %.
std::string copy_class_name(std::size_t index);
std::string divergence_class_name(std::size_t index);

}  // namespace vorlan_tools
