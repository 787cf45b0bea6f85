// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "calibrate/calibration_json.h"
#include "convert/conversion.h"
#include "convert/false_share_rows.h"
#include "convert/index_order.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/sorted_rows.h"
#include "convert/tabix_index.h"
#include "io/rereadable_input.h"
#include "report/report_reader.h"

namespace vorlan_tools {

namespace {

std::unique_ptr<RowFormat> rows_of(Target target) {
  switch (target) {
    case Target::kGff3:
      return gff3_rows();
    case Target::kJsonLines:
      return json_rows();
    case Target::kPaf:
      return paf_rows();
    case Target::kTsv:
      return tsv_rows();
    default:
      return bed_rows();
  }
}

std::unique_ptr<RowFormat> rows_for(const Conversion& conversion) {
  std::unique_ptr<RowFormat> rows = rows_of(conversion.target);
  if (conversion.calibration.empty()) return rows;
  return with_false_shares(std::move(rows), conversion.target,
                           read_calibration(conversion.calibration));
}

/// Takes rows in the order of the report and writes them so, or sorted.
class RowWriter {
 public:
  explicit RowWriter(const Conversion& conversion)
      : output_(conversion.output, conversion.compression, conversion.threads),
        must_index_(conversion.write_index) {
    if (conversion.sort) sorted_.emplace();
  }

  /// Where the next row is to be appended, behind others that are not yet written.
  RowText& text() { return text_; }

  void end_head() { write_text(); }

  void end_row(std::string_view name, std::int64_t start, std::int64_t end) {
    if (sorted_) {
      sorted_->add(name, start, end, text_.view());
      text_.clear();
    } else if (text_.size() >= OutputFile::kBufferSize) {
      write_text();
    }
    if (!must_index_) return;
    if (!sorted_) order_.add(name, start, end);
    longest_end_ = std::max(longest_end_, end);
  }

  void finish(const Conversion& conversion) {
    write_text();
    if (sorted_) sorted_->write_to(output_);
    if (!must_index_) {
      output_.finish();
      return;
    }
    const tbx_conf_t& layout = conversion.target == Target::kBed ? tbx_conf_bed : tbx_conf_gff;
    finish_with_index(output_, conversion.output, longest_end_, layout, conversion.threads);
  }

 private:
  void write_text() {
    output_.write(text_.view());
    text_.clear();
  }

  OutputFile output_;
  RowText text_;
  bool must_index_;
  std::optional<SortedRows> sorted_;
  IndexOrder order_;
  std::int64_t longest_end_ = 0;
};

/// Each name once, with the greatest length that a sequence of that name has.
std::vector<ListedSequence> written_sequences(const RereadableInput& input,
                                              const Conversion& conversion) {
  std::vector<ListedSequence> sequences;
  std::unordered_map<std::string, std::size_t> places;
  for (const ListedSequence& listed : list_sequences(input)) {
    const std::string name(written_name(listed.name, conversion));
    const auto [place, is_new] = places.try_emplace(name, sequences.size());
    if (is_new) sequences.push_back({name, listed.length});
    std::int64_t& length = sequences[place->second].length;
    length = std::max(length, listed.length);
  }
  return sequences;
}

void write_rows(const Conversion& conversion, RowFormat& format, ReportReader& report,
                const std::vector<ListedSequence>& sequences) {
  RowWriter writer(conversion);
  format.append_head(writer.text(), report.head(), sequences);
  writer.end_head();
  std::string name;
  bool is_begun = false;
  for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
    if (item == ReportReader::Item::kSequence) {
      name = written_name(report.sequence().name, conversion);
      is_begun = false;
      continue;
    }
    const Repeat& repeat = report.repeat();
    if (!conversion.filter.keeps(repeat)) continue;
    if (!is_begun) format.begin_sequence(report.sequence(), name);
    is_begun = true;
    format.append_repeat(writer.text(), repeat);
    writer.end_row(name, repeat.start, repeat.end);
  }
  writer.finish(conversion);
}

}  // namespace

void convert_to_rows(const Conversion& conversion) {
  const std::unique_ptr<RowFormat> format = rows_for(conversion);
  if (!format->needs_sequences()) {
    ReportReader report(conversion.report);
    if (conversion.target == Target::kPaf) require_alignments(report.head(), report.name());
    write_rows(conversion, *format, report, {});
    return;
  }
  const RereadableInput input(conversion.report);
  const std::vector<ListedSequence> sequences = written_sequences(input, conversion);
  ReportReader report(input.open_again(), input.name());
  write_rows(conversion, *format, report, sequences);
}

}  // namespace vorlan_tools
