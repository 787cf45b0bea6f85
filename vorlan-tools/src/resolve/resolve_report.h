// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

#include "convert/repeat_filter.h"
#include "io/output_file.h"
#include "resolve/strategies.h"

namespace vorlan_tools {

/// What `resolve` has been asked for.
struct ResolveRequest {
  std::string report = "-";
  std::string output = "-";
  std::string members;  ///< table of what became of each repeat; empty: none
  Compression compression = Compression::kPlain;
  Strategy strategy = Strategy::kBest;
  std::int64_t max_gap = 0;  ///< only with Strategy::kUnion
  bool cut_names = false;
  RepeatFilter filter;
};

/// Reads the report and writes stretches that do not overlap as BED, whole or not at all. Memory:
/// the repeats that overlap in a chain. Throws UsageError if the parts of the request do not go
/// together, DataError.
void resolve_report(const ResolveRequest& request);

}  // namespace vorlan_tools
