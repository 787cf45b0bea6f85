// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "mask/masked_stretches.h"

#include <algorithm>

#include "errors.h"

namespace vorlan_tools {

namespace {

bool tells_headers(const Settings& settings) {
  return settings.format == Format::kPlain || settings.format == Format::kExtended ||
         settings.sequence_info_as_comment;
}

}  // namespace

MaskedStretches::MaskedStretches(const std::string& report)
    : report_(report),
      item_(report_.next()),
      tells_headers_(tells_headers(report_.settings())),
      first_number_(std::max<std::uint64_t>(report_.settings().first_sequence, 1)) {}

void MaskedStretches::fail(const std::string& what) const {
  throw LineError(report_.name(), report_.line_number(), what);
}

bool MaskedStretches::is_next_sequence(std::uint64_t number, const std::string& header) {
  if (tells_headers_) {
    if (item_ != ReportReader::Item::kSequence) return false;
    const Sequence& sequence = report_.sequence();
    if (number != first_number_ + sequence.number - 1) return false;
    if (sequence.header != header) {
      fail("the report has the sequence \"" + *sequence.header + "\" where the FASTA file has \"" +
           header + "\": it was made from another file.");
    }
    return true;
  }
  const std::string name = header.substr(0, header.find(' '));
  if (used_names_.contains(name)) {
    throw DataError("The FASTA file has several sequences named \"" + name +
                    "\", and the report does not tell which of them is meant.");
  }
  if (item_ != ReportReader::Item::kSequence || report_.sequence().name != name) return false;
  used_names_.insert(name);
  return true;
}

void MaskedStretches::begin_record(std::uint64_t number, const std::string& header) {
  header_ = header;
  last_begin_ = last_end_ = 0;
  is_in_record_ = is_next_sequence(number, header);
  if (!is_in_record_) return;
  length_ = report_.sequence().length;
  item_ = report_.next();
}

void MaskedStretches::take_repeat(Stretch& stretch) {
  const Repeat& repeat = report_.repeat();
  if (repeat.start < last_begin_ || repeat.start < 1 || repeat.end < repeat.start) {
    fail("the repeats are not in the order of a report.");
  }
  last_begin_ = repeat.start;
  stretch.end = std::max(stretch.end, repeat.end);
  last_end_ = std::max(last_end_, repeat.end);
  item_ = report_.next();
}

Stretch MaskedStretches::next() {
  if (!is_in_record_ || item_ != ReportReader::Item::kRepeat) return {};
  Stretch stretch{report_.repeat().start, 0};
  while (item_ == ReportReader::Item::kRepeat &&
         (stretch.end == 0 || report_.repeat().start <= stretch.end)) {
    take_repeat(stretch);
  }
  return stretch;
}

void MaskedStretches::end_record(std::int64_t bases) {
  if (!is_in_record_) return;
  while (item_ == ReportReader::Item::kRepeat) next();
  if (length_ && *length_ != bases) {
    fail("the sequence \"" + header_ + "\" has " + std::to_string(*length_) +
         " bases in the report, but " + std::to_string(bases) + " in the FASTA file.");
  }
  if (last_end_ > bases) {
    fail("the report has a repeat behind the end of the sequence \"" + header_ +
         "\" of the FASTA file.");
  }
  is_in_record_ = false;
}

void MaskedStretches::finish() {
  if (item_ == ReportReader::Item::kEnd) return;
  fail("the FASTA file has no sequence \"" + report_.sequence().name +
       "\" in the place where the report has it.");
}

}  // namespace vorlan_tools
