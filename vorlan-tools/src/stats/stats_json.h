// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "stats/genome_stats.h"

namespace vorlan_tools {

/// How much of a genome is told.
enum class Detail {
  kAll,   ///< enough to make the object again
  kPage,  ///< the commonest units and the longest sequences only, and names cut: bounded size
};

/// Genomes as JSON; docs/page.md describes the keys. The same objects give the same text.
nlohmann::ordered_json to_json(const std::vector<GenomeStats>& genomes, Detail detail);

/// Reads what to_json() has made with Detail::kAll. `source` is for messages. Throws DataError.
std::vector<GenomeStats> genomes_from_json(const std::string& text, const std::string& source);

/// Numbers that follow from others, for JSON and tables; absent where nothing can be divided by.
std::optional<double> per_million(std::int64_t count, const std::optional<std::int64_t>& bases);
std::optional<double> percent(std::int64_t part, const std::optional<std::int64_t>& whole);
std::optional<double> edits_per_100_bases(const Tally& tally, bool knows_edits);

}  // namespace vorlan_tools
