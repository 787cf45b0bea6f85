// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "catalog/genotyper.h"
#include "convert/repeat_filter.h"
#include "io/output_file.h"

namespace vorlan_tools {

/// Which of loci that lie too near to each other are kept.
enum class OverlapPolicy { kBest, kAll, kDrop };

/// What `catalog` has been asked for.
struct CatalogRequest {
  std::string report = "-";
  std::string fasta;
  std::string output = "-";
  std::string rejected;  ///< table of what is dropped; empty: none
  Genotyper genotyper = Genotyper::kTrgt;
  Compression compression = Compression::kPlain;
  bool write_index = false;
  bool cut_names = false;
  bool trims_to_units = false;
  OverlapPolicy overlaps = OverlapPolicy::kBest;
  std::int64_t min_gap = 0;
  std::optional<std::int64_t> flank;       ///< absent: that of the genotyper
  std::optional<std::int64_t> max_period;  ///< likewise; not above what the genotyper takes
  std::optional<std::int64_t> max_length;  ///< likewise, but may be above: an option of its own
  RepeatFilter filter;
};

/// The rules of the genotyper with what the request changes. Throws UsageError if the genotyper
/// cannot take that.
GenotyperRules rules_for(const CatalogRequest& request);

/// Reads the report and the genome, writes the catalogue whole or not at all, and tells on standard
/// error what was kept and dropped. Memory: one sequence, and loci that overlap in a chain. Throws
/// UsageError if the parts of the request do not go together, DataError; also if no locus is left.
void make_catalog(const CatalogRequest& request);

}  // namespace vorlan_tools
