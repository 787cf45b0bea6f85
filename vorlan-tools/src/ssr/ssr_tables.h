// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

#include "convert/repeat_filter.h"

namespace vorlan_tools {

/// What `ssr` has been asked for. Tables without a name are not written.
struct SsrRequest {
  std::string report = "-";
  std::string output = "-";  ///< loci by unit length
  std::string units;         ///< loci by unit
  std::string sequences;     ///< loci by sequence
  std::string compounds;     ///< compound loci
  std::string min = "1:10,2:6,3:5,4:5,5:5,6:5";
  std::int64_t compound_gap = 100;
  RepeatFilter filter;
};

/// Reads the report and writes the tables, all or none. Memory: one line for each unit. Throws
/// UsageError if the request has no sense, DataError.
void write_ssr_tables(const SsrRequest& request);

}  // namespace vorlan_tools
