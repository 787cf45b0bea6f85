// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/report_reader.h"

#include "errors.h"
#include "report/entry.h"
#include "report/field_cursor.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kFooterBegin = "# Analysis of sequence \"";
constexpr std::string_view kFooterEnd = "\" completed.";
constexpr std::string_view kFullName = "# Full sequence name:";
constexpr std::string_view kRegion = "##sequence-region ";

bool begins_with(std::string_view line, std::string_view text) {
  return line.substr(0, text.size()) == text;
}

/// A name ends at the first blank; a tab belongs to the name.
std::string_view name_of(std::string_view header) { return header.substr(0, header.find(' ')); }

}  // namespace

ReportReader::ReportReader(const std::string& name) : lines_(name), head_(read_head(lines_)) {}

ReportReader::ReportReader(int descriptor, const std::string& name)
    : lines_(descriptor, name), head_(read_head(lines_)) {}

void ReportReader::fail(const std::string& what) const {
  throw LineError(lines_.name(), lines_.line_number(), what);
}

std::string_view ReportReader::take_line() {
  std::string_view line;
  if (!lines_.next(line)) throw DataError(lines_.name() + " is not complete: its end is missing.");
  if (!lines_.line_was_ended()) fail("the line is cut short, the report is not complete.");
  return line;
}

void ReportReader::require(bool fits) {
  if (!fits) fail("this line cannot stand here in a report of this format.");
}

ReportReader::Item ReportReader::next() {
  if (repeat_waits_) {
    repeat_waits_ = false;
    return Item::kRepeat;
  }
  switch (settings().format) {
    case Format::kPlain:
    case Format::kExtended:
      return next_in_blocks();
    case Format::kGff:
    case Format::kTable:
      return next_in_rows();
    case Format::kFasta:
      break;
  }
  return next_in_fasta();
}

void ReportReader::begin_sequence(std::string_view name) {
  sequence_.line = lines_.line_number();
  ++sequence_.number;
  sequence_.name = name;
  sequence_.header.reset();
  sequence_.length.reset();
}

ReportReader::Item ReportReader::end_at_closing_line() {
  std::string_view line;
  if (lines_.peek(line)) {
    lines_.next(line);
    fail("the report goes on behind its closing line.");
  }
  return Item::kEnd;
}

/// Formats 0 and 1: every sequence has a block with header, entries and footer.
ReportReader::Item ReportReader::next_in_blocks() {
  for (;;) {
    const std::string_view line = take_line();
    if (!in_block_) {
      if (line == head_.closing_line()) return end_at_closing_line();
      begin_block(line);
      return Item::kSequence;
    }
    if (!begins_with(line, "#")) {
      read_own_repeat(line);
      return Item::kRepeat;
    }
    require(is_footer(line, *sequence_.header));
    in_block_ = false;
  }
}

void ReportReader::begin_block(std::string_view header_line) {
  require(begins_with(header_line, ">"));
  const std::string_view header = header_line.substr(1);
  begin_sequence(name_of(header));
  sequence_.header = header;
  FieldCursor fields(take_line());
  require(fields.literal("sequence length: ").optional_number(sequence_.length).at_end());
  in_block_ = true;
}

bool ReportReader::is_footer(std::string_view line, std::string_view text) const {
  return line.size() == kFooterBegin.size() + text.size() + kFooterEnd.size() &&
         begins_with(line, kFooterBegin) && line.substr(kFooterBegin.size(), text.size()) == text &&
         line.substr(kFooterBegin.size() + text.size()) == kFooterEnd;
}

void ReportReader::read_own_repeat(std::string_view line) {
  repeat_.line = lines_.line_number();
  repeat_.entry = line;
  require(read_own_entry(line, settings(), repeat_));
  if (settings().format == Format::kExtended) require(read_events_line(take_line(), repeat_));
  read_sequence_part();
  repeat_.last_line = lines_.line_number();
}

void ReportReader::read_sequence_part() {
  if (settings().sequence_mode == SequenceMode::kBases) {
    require(read_bases_line(take_line(), settings(), repeat_));
  } else if (settings().sequence_mode == SequenceMode::kAlignment) {
    require(read_sequence_line(take_line(), settings(), repeat_));
    require(read_match_line(take_line(), settings(), repeat_));
    require(read_unit_line(take_line(), settings(), repeat_));
  }
}

/// Formats 2 and 3: a row for each repeat, with comments around those of a sequence if asked. A
/// name has no blanks and a tab follows it, so that no row begins with "# ".
ReportReader::Item ReportReader::next_in_rows() {
  for (;;) {
    const std::string_view line = take_line();
    if (settings().sequence_info_as_comment) {
      if (in_block_ && is_footer(line, sequence_.name)) {
        in_block_ = false;
        continue;
      }
      if (!in_block_ && line == kFullName) {
        begin_commented_sequence();
        return Item::kSequence;
      }
    }
    if (!in_block_ && line == head_.closing_line()) return end_at_closing_line();
    return read_row(line);
  }
}

void ReportReader::begin_commented_sequence() {
  const std::string_view header_line = take_line();
  require(begins_with(header_line, "#>"));
  const std::string header(header_line.substr(2));
  begin_sequence(name_of(header));
  sequence_.header = header;
  const std::string_view region = take_line();
  require(begins_with(region, kRegion));
  // A lone '>' at the end of the input is a sequence without header and bases that keeps the name
  // of the sequence before it, which may have been outside the range.
  constexpr std::string_view kEmpty = " 1 0";
  if (header.empty() && region.size() >= kRegion.size() + kEmpty.size() &&
      region.substr(region.size() - kEmpty.size()) == kEmpty) {
    sequence_.name = region.substr(kRegion.size(), region.size() - kRegion.size() - kEmpty.size());
  }
  FieldCursor fields(region.substr(kRegion.size()));
  require(fields.literal(sequence_.name).literal(" 1 ").optional_number(sequence_.length).at_end());
  in_block_ = true;
}

ReportReader::Item ReportReader::read_row(std::string_view line) {
  repeat_.line = repeat_.last_line = lines_.line_number();
  repeat_.entry = line;
  std::string_view name;
  if (settings().format == Format::kGff) {
    require(read_gff_row(line, repeat_, name));
  } else {
    require(read_table_row(line, settings(), repeat_, name));
  }
  return deliver(name);
}

/// The repeat that has just been read, or first the sequence that begins with it.
ReportReader::Item ReportReader::deliver(std::string_view name) {
  if (settings().sequence_info_as_comment) {
    require(in_block_ && name == sequence_.name);
    return Item::kRepeat;
  }
  if (sequence_.number > 0 && name == sequence_.name) return Item::kRepeat;
  begin_sequence(name);
  sequence_.line = repeat_.line;
  repeat_waits_ = true;
  return Item::kSequence;
}

ReportReader::Item ReportReader::next_in_fasta() {
  std::string_view line;
  if (!lines_.peek(line)) return Item::kEnd;
  repeat_.entry = take_line();
  repeat_.line = lines_.line_number();
  std::string_view name;
  require(read_fasta_header(repeat_.entry, repeat_, name));
  require(read_fragment(take_line(), settings(), repeat_));
  repeat_.last_line = lines_.line_number();
  return deliver(name);
}

}  // namespace vorlan_tools
