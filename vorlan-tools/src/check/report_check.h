// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

namespace vorlan_tools {

/// What `check` has been asked for.
struct CheckRequest {
  std::string report = "-";
  std::string fasta;          ///< empty: the bases are not compared
  std::uint64_t limit = 100;  ///< findings after which the check ends; 0: none
};

/// Checks a whole report and writes its findings to standard output. Returns their number. Memory:
/// one repeat and one sequence. Throws DataError where the report cannot be read on.
std::uint64_t check_report(const CheckRequest& request);

}  // namespace vorlan_tools
