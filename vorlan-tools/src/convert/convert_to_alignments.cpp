// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <algorithm>

#include "convert/alignment_target.h"
#include "convert/conversion.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "errors.h"
#include "io/line_reader.h"
#include "io/rereadable_input.h"
#include "report/report_reader.h"
#include "report/sequence_list.h"

// SAM wants all sequences with their lengths before the first alignment, so the report is read
// twice: first only for its headers.

namespace vorlan_tools {

namespace {

AlignmentSequences sequences_of(const RereadableInput& input, const Conversion& conversion) {
  AlignmentSequences list;
  for (const ListedSequence& sequence : list_sequences(input)) {
    list.add(written_name(sequence.name, conversion), sequence.length);
  }
  return list;
}

Head head_with_alignments(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  Head head = read_head(lines);
  require_alignments(head, input.name());
  return head;
}

std::string header_text(const AlignmentSequences& sequences, const Head& head) {
  std::string text = "@HD\tVN:1.6\tSO:coordinate\n" + sequences.header_lines;
  text += "@PG\tID:vorlan\tPN:vorlan";
  const bool is_plain = head.version.find_first_not_of("0123456789.") == std::string::npos;
  if (is_plain && !head.version.empty()) (text += "\tVN:") += head.version;
  return text += '\n';
}

/// Lengths of a CIGAR have 28 bits.
void require_short(const Repeat& repeat) {
  constexpr std::size_t kMostColumns = (std::size_t{1} << 28) - 1;
  if (repeat.sequence_line.size() > kMostColumns) {
    throw DataError("A repeat is too long for this target.");
  }
}

void require_order(const ReportReader& report, std::int64_t last_start) {
  if (report.repeat().start < last_start) {
    throw LineError(report.name(), report.repeat().line,
                    "the repeats of a sequence are not in order.");
  }
}

}  // namespace

void AlignmentSequences::add(std::string_view name, std::int64_t length) {
  if (length == 0) {
    index_of_number.push_back(-1);
    return;
  }
  require_sam_name(name);
  if (!names.emplace(name).second) {
    throw DataError("SAM needs names that differ, and two sequences are named " +
                    quoted_name(name) + ".");
  }
  (header_lines += "@SQ\tSN:") += name;
  append_number(header_lines += "\tLN:", length);
  header_lines += '\n';
  index_of_number.push_back(static_cast<std::int32_t>(written.size()));
  written.emplace_back(name);
  longest = std::max(longest, length);
}

void convert_to_alignments(const Conversion& conversion) {
  const RereadableInput input(conversion.report);
  const Head head = head_with_alignments(input);
  const AlignmentSequences sequences = sequences_of(input, conversion);
  ReportReader report(input.open_again(), input.name());
  const auto open = conversion.target == Target::kSam ? sam_target : bam_target;
  const std::unique_ptr<AlignmentTarget> target =
      open(conversion, sequences, header_text(sequences, head));
  std::int64_t number = 0;
  std::int64_t last_start = 0;
  for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
    if (item == ReportReader::Item::kSequence) {
      last_start = 0;
      continue;
    }
    ++number;
    require_order(report, last_start);
    last_start = report.repeat().start;
    const std::int32_t index = sequences.index_of_number.at(report.sequence().number - 1);
    if (index < 0) {
      throw LineError(report.name(), report.repeat().line,
                      "a sequence without bases has a repeat.");
    }
    if (!conversion.filter.keeps(report.repeat())) continue;
    require_short(report.repeat());
    target->write(report.repeat(), index, number);
  }
  target->finish();
}

}  // namespace vorlan_tools
