// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/sequence_list.h"

#include "errors.h"
#include "report/field_cursor.h"
#include "report/head.h"
#include "report/report_reader.h"

namespace vorlan_tools {

namespace {

/// Formats 0 and 1, without a look at the repeats: behind the head, only lines that name a sequence
/// begin with '>'. Entries begin with a blank or a digit, alignments with a base, a colon, a bar, a
/// blank, '-' or
/// '*', other lines with a letter or '#'.
std::vector<ListedSequence> list_blocks(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  read_head(lines);
  std::vector<ListedSequence> list;
  std::string_view line;
  while (lines.skip_to('>')) {
    lines.next(line);
    list.push_back({std::string(line.substr(1, line.find(' ') - 1)), -1});
    if (lines.next(line)) FieldCursor(line).literal("sequence length: ").number(list.back().length);
    if (list.back().length < 0) {
      throw LineError(lines.name(), lines.line_number(), "the length of the sequence is missing.");
    }
  }
  return list;
}

std::vector<ListedSequence> list_comments(const RereadableInput& input) {
  ReportReader report(input.open_again(), input.name());
  std::vector<ListedSequence> list;
  for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
    const bool is_told = item == ReportReader::Item::kSequence && report.sequence().length;
    if (is_told) list.push_back({report.sequence().name, *report.sequence().length});
  }
  return list;
}

}  // namespace

std::vector<ListedSequence> list_sequences(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  const Settings settings = read_head(lines).settings;
  if (settings.format == Format::kPlain || settings.format == Format::kExtended)
    return list_blocks(input);
  if (settings.sequence_info_as_comment) return list_comments(input);
  return {};
}

}  // namespace vorlan_tools
