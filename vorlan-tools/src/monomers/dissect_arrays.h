// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>

#include "convert/repeat_filter.h"

namespace vorlan_tools {

/// What `monomers` and `consensus` have been asked for.
struct ArrayRequest {
  std::string arrays;  ///< report, or BED file with units
  std::string genome;  ///< FASTA file with its sequences in the same order
  std::string output = "-";
  std::string begin;  ///< how copies begin; empty: as the array does
  RepeatFilter filter;
  enum class Form {
    kMonomerBed,
    kMonomerFasta,
    kConsensusFasta,
    kConsensusTable,
  } form = Form::kMonomerBed;
};

/// Takes the arrays one by one and writes what is asked of each. Memory: one sequence and one
/// array. Throws DataError, UsageError.
void dissect_arrays(const ArrayRequest& request);

}  // namespace vorlan_tools
