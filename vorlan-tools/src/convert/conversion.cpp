// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/conversion.h"

#include "convert/false_share_rows.h"
#include "convert/sequence_names.h"
#include "errors.h"
#include "io/file_identity.h"

namespace vorlan_tools {

namespace {

bool is_alignment_target(Target target) { return target == Target::kSam || target == Target::kBam; }

bool can_be_indexed(const Conversion& conversion) {
  if (conversion.target == Target::kBam) return true;
  return (conversion.target == Target::kBed || conversion.target == Target::kGff3) &&
         conversion.compression == Compression::kBgzip;
}

}  // namespace

void require_sense(const Conversion& conversion) {
  if (conversion.write_index && !can_be_indexed(conversion)) {
    throw UsageError("Only BAM, and BED and GFF3 with -O z, can have an index.");
  }
  if (conversion.write_index && conversion.output == "-") {
    throw UsageError("An index needs a named output (-o).");
  }
  if (conversion.sort && is_alignment_target(conversion.target)) {
    throw UsageError("SAM and BAM are always in order; --sort is for the other targets.");
  }
  if (!conversion.calibration.empty() && !can_hold_false_shares(conversion.target)) {
    throw UsageError("--calibration is for bed, gff3, jsonl and tsv.");
  }
  if (is_same_file(conversion.report, conversion.output)) {
    throw UsageError("The output " + conversion.output + " is the report itself.");
  }
}

std::string_view written_name(std::string_view name, const Conversion& conversion) {
  return conversion.cut_names ? until_white_space(name) : name;
}

void require_alignments(const Head& head, const std::string& report) {
  const Format format = head.settings.format;
  const bool is_own = format == Format::kPlain || format == Format::kExtended;
  if (is_own && head.settings.sequence_mode == SequenceMode::kAlignment) return;
  throw DataError("This target needs alignments, and " + report +
                  " has none; use a report of output format 0 or 1 with --printRepeatSeqMode 2.");
}

void convert(const Conversion& conversion) {
  require_sense(conversion);
  if (is_alignment_target(conversion.target)) {
    convert_to_alignments(conversion);
  } else {
    convert_to_rows(conversion);
  }
}

}  // namespace vorlan_tools
