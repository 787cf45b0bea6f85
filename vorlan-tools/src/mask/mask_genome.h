// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "io/output_file.h"
#include "mask/text_masker.h"

namespace vorlan_tools {

struct Masking {
  std::string report;  ///< "-": standard input
  std::string fasta;   ///< likewise
  std::string output = "-";
  Compression compression = Compression::kPlain;
  int threads = 1;           ///< that compress
  bool write_index = false;  ///< .fai, and .gzi if compressed, beside the output
  MaskStyle style;
};

/// Writes the FASTA file with the repeats of the report masked. Throws DataError if the report was
/// not made from that file, UsageError if the output would overwrite one of them. Streams both.
void mask_genome(const Masking& masking);

}  // namespace vorlan_tools
