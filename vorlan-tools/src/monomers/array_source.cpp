// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "monomers/array_source.h"

#include <string_view>
#include <vector>

#include "convert/motif.h"
#include "errors.h"
#include "fasta/bases.h"
#include "io/bed_lines.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kFirstLineOfReport = "# Results computed with:";
constexpr std::size_t kColumns = 4;
constexpr std::int64_t kThousand = 1000;

bool is_unit(std::string_view text) { return !text.empty() && holds_only_bases(text); }

}  // namespace

ArraySource::ArraySource(const std::string& name, const RepeatFilter& filter)
    : input_(name), filter_(filter) {
  std::string_view line;
  auto bed = std::make_unique<LineReader>(input_.open_again(), input_.name());
  if (bed->peek(line) && line != kFirstLineOfReport) {
    bed_ = std::move(bed);
    return;
  }
  bed.reset();
  report_ = std::make_unique<ReportReader>(input_.open_again(), input_.name());
}

bool ArraySource::next(Array& array) { return bed_ ? next_of_bed(array) : next_of_report(array); }

bool ArraySource::next_of_report(Array& array) {
  for (;;) {
    const ReportReader::Item item = report_->next();
    if (item == ReportReader::Item::kEnd) return false;
    if (item == ReportReader::Item::kSequence) {
      array.sequence = report_->sequence().name;
      continue;
    }
    const Repeat& repeat = report_->repeat();
    if (!filter_.keeps(repeat)) continue;
    find_motif(repeat, array.unit);
    if (array.unit.empty()) array.unit = repeat.unit;
    array.start = repeat.start - 1;
    array.end = repeat.end;
    array.line = repeat.line;
    if (is_unit(array.unit)) return true;
    throw LineError(input_.name(), repeat.line, "the repeat shows no unit.");
  }
}

bool ArraySource::next_of_bed(Array& array) {
  for (std::string_view line; next_interval_line(*bed_, line);) {
    const std::vector<std::string_view> columns = split(line, '\t', kColumns);
    const bool fits = columns.size() == kColumns && is_number(columns[1], array.start) &&
                      is_number(columns[2], array.end) && array.start < array.end &&
                      is_unit(columns[3]);
    if (!fits) {
      throw LineError(input_.name(), bed_->line_number(),
                      "an array has the columns sequence, start, end and unit (A, C, G, T).");
    }
    array.sequence = columns[0];
    array.unit = columns[3];
    array.line = bed_->line_number();
    Repeat repeat;
    repeat.unit_length = static_cast<std::int64_t>(array.unit.size());
    repeat.bases = array.end - array.start;
    repeat.copies = repeat.bases * kThousand / repeat.unit_length;
    repeat.perfection = INT64_MAX;
    if (filter_.keeps(repeat)) return true;
  }
  return false;
}

}  // namespace vorlan_tools
