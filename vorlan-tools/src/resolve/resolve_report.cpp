// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "resolve/resolve_report.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "report/report_reader.h"

namespace vorlan_tools {

namespace {

constexpr std::int64_t kHighestScore = 1000;  // that BED knows

/// What is written of a repeat; its place is that of the span with the same index.
struct Reading {
  std::string unit;
  Thousandths copies = 0;
  Thousandths perfection = 0;
};

class Resolver {
 public:
  explicit Resolver(const ResolveRequest& request)
      : request_(request), report_(request.report), output_(request.output, request.compression) {
    if (request.members.empty()) return;
    members_.emplace(request.members, compression_by_name(request.members));
    members_->write(
        "sequence\tstart\tend\tunit_length\tunit\tscore\tshown_bases\tinto_start\tinto_end\n");
  }

  void run() {
    for (auto item = report_.next(); item != ReportReader::Item::kEnd; item = report_.next()) {
      if (item == ReportReader::Item::kSequence) {
        settle();
        name_ = report_.sequence().name;
        written_name_ = request_.cut_names ? until_white_space(name_) : std::string_view(name_);
        last_start_ = 0;
      } else if (request_.filter.keeps(report_.repeat())) {
        take(report_.repeat());
      }
    }
    settle();
    output_.close();
    if (members_) members_->close();
    output_.commit();
    if (members_) members_->commit();
  }

 private:
  void take(const Repeat& repeat) {
    if (repeat.start < last_start_) {
      throw LineError(
          report_.name(), repeat.line,
          "the repeats of a sequence are not in order, or two sequences have its name.");
    }
    last_start_ = repeat.start;
    if (repeat.start - 1 > reach_) settle();
    reach_ = std::max(reach_, repeat.end + request_.max_gap);
    spans_.push_back(
        {repeat.start - 1, repeat.end, repeat.score.value_or(repeat.bases), repeat.unit_length});
    readings_.push_back({repeat.unit, repeat.copies, repeat.perfection});
  }

  /// Resolves the readings so far, none of which touches a later one.
  void settle() {
    if (!spans_.empty()) {
      require_bed_name(written_name_);
      const std::vector<Stretch> stretches = resolve(spans_, request_.strategy, request_.max_gap);
      write_members(stretches);
      write_stretches(stretches);
    }
    spans_.clear();
    readings_.clear();
    reach_ = 0;
  }

  void write_stretches(const std::vector<Stretch>& stretches) {
    text_.clear();
    for (std::size_t i = 0; i < stretches.size(); ++i) append_row(stretches[i], held_[i]);
    output_.write(text_);
  }

  void append_row(const Stretch& stretch, std::int64_t readings) {
    const ScoredSpan& span = spans_[stretch.reading];
    const Reading& reading = readings_[stretch.reading];
    text_ += written_name_;
    append_number(text_ += '\t', stretch.start);
    append_number(text_ += '\t', stretch.end);
    append_or_dot(text_ += '\t', reading.unit);
    append_number(text_ += '\t', std::clamp<std::int64_t>(span.score, 0, kHighestScore));
    append_number(text_ += "\t.\t", span.unit_length);
    append_thousandths(text_ += '\t', reading.copies);
    append_thousandths(text_ += '\t', reading.perfection);
    append_number(text_ += '\t', span.score);
    append_number(text_ += '\t', span.start);
    append_number(text_ += '\t', span.end);
    append_number(text_ += '\t', readings);
    text_ += '\n';
  }

  /// Also counts the readings that went into each stretch.
  void write_members(const std::vector<Stretch>& stretches) {
    held_.assign(stretches.size(), 0);
    text_.clear();
    for (std::size_t i = 0; i < spans_.size(); ++i) {
      std::int64_t shown = 0;
      const std::size_t place = stretch_of(spans_, i, stretches, shown);
      ++held_.at(place);
      append_member(i, shown, stretches[place]);
    }
    if (members_) members_->write(text_);
  }

  void append_member(std::size_t number, std::int64_t shown, const Stretch& into) {
    if (!members_) return;
    const ScoredSpan& span = spans_[number];
    text_ += tsv_name(name_);
    append_number(text_ += '\t', span.start + 1);
    append_number(text_ += '\t', span.end);
    append_number(text_ += '\t', span.unit_length);
    append_or_dot(text_ += '\t', readings_[number].unit);
    append_number(text_ += '\t', span.score);
    append_number(text_ += '\t', shown);
    append_number(text_ += '\t', into.start + 1);
    append_number(text_ += '\t', into.end);
    text_ += '\n';
  }

  const ResolveRequest& request_;
  ReportReader report_;
  OutputFile output_;
  std::optional<OutputFile> members_;
  std::string name_;
  std::string written_name_;
  std::int64_t last_start_ = 0;
  std::int64_t reach_ = 0;  ///< a reading that begins behind it belongs to the next chain
  std::vector<ScoredSpan> spans_;
  std::vector<Reading> readings_;
  std::vector<std::int64_t> held_;
  std::string text_;
};

void require_sense(const ResolveRequest& request) {
  if (request.max_gap > 0 && request.strategy != Strategy::kUnion) {
    throw UsageError("--max-gap is for --strategy union.");
  }
  for (const std::string& output : {request.output, request.members}) {
    if (!output.empty() && is_same_file(request.report, output)) {
      throw UsageError("The output " + output + " is the report itself.");
    }
  }
  if (request.output == request.members) {
    throw UsageError("The stretches and the table of members need two files.");
  }
}

}  // namespace

void resolve_report(const ResolveRequest& request) {
  require_sense(request);
  Resolver(request).run();
}

}  // namespace vorlan_tools
