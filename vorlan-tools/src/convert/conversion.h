// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

#include "convert/repeat_filter.h"
#include "io/output_file.h"
#include "report/head.h"

namespace vorlan_tools {

enum class Target { kBed, kGff3, kJsonLines, kSam, kBam, kPaf, kTsv };

/// What `convert` has been asked for.
struct Conversion {
  std::string report = "-";
  std::string output = "-";
  std::string calibration;  ///< file of `calibrate --json`; empty: no shares of false repeats
  Target target = Target::kBed;
  Compression compression = Compression::kPlain;  ///< of BAM: blocks that only store
  bool write_index = false;
  bool sort = false;
  bool cut_names = false;  ///< names end at their first white space, as samtools faidx takes them
  int threads = 1;
  RepeatFilter filter;
};

/// Throws UsageError if the parts of the request do not go together.
void require_sense(const Conversion& conversion);

/// Reads the report and writes the output, whole or not at all. Constant memory but for the names
/// of the sequences. Throws DataError.
void convert(const Conversion& conversion);

/// A name as it is to be written.
std::string_view written_name(std::string_view name, const Conversion& conversion);

/// Throws DataError if a report with that head shows no alignments.
void require_alignments(const Head& head, const std::string& report);

/// The two kinds of targets.
void convert_to_rows(const Conversion& conversion);
void convert_to_alignments(const Conversion& conversion);

}  // namespace vorlan_tools
