// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

#include "calibrate/calibration.h"
#include "stats/genome_stats.h"

namespace vorlan_tools {

/// One HTML file that shows the numbers of genomes in charts and tables and needs nothing else, as
/// large as a few hundred kilobytes for each genome, whatever its size.
///
/// Names of sequences may be any text. They reach the page in JSON only, in which no character can
/// end a script or begin a comment, and its scripts handle them as text only.
///
/// `calibrations` are none, or one for each genome.
std::string page_text(const std::vector<GenomeStats>& genomes,
                      const std::vector<Calibration>& calibrations);

}  // namespace vorlan_tools
