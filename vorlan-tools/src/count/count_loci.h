// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorlan_tools {

/// What `count` has been asked for.
struct Counting {
  std::string loci;                  ///< BED file; its places are those of the first FASTA file
  std::vector<std::string> genomes;  ///< FASTA files; not empty
  std::string output = "-";
  std::int64_t flank = 50;       ///< bases on each side by which a bracket is found
  std::int64_t longest = 10000;  ///< bases of an allele that is looked for by flanks
};

/// Writes one row for each locus and each place where its bracket is found, file by file, and one
/// with full stops for a locus that a file lacks. On the reference itself the bracket lies where
/// the locus says; elsewhere its flanks tell. Memory: one sequence. Throws DataError, UsageError.
void count_loci(const Counting& counting);

}  // namespace vorlan_tools
