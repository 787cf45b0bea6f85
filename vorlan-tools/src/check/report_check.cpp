// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/report_check.h"

#include <memory>
#include <optional>
#include <string_view>

#include "check/findings.h"
#include "check/repeat_check.h"
#include "convert/sequence_names.h"
#include "errors.h"
#include "fasta/fasta_reader.h"
#include "report/report_reader.h"

namespace vorlan_tools {

namespace {

/// The records of the input, in step with the sequences of a report.
class Input {
 public:
  Input(const std::string& name, const Settings& settings) : fasta_(name), settings_(settings) {
    has_record_ = fasta_.next_header();
    while (has_record_ && fasta_.number() < settings.first_sequence)
      has_record_ = fasta_.next_header();
  }

  /// Whether a record is there that the run looked at.
  bool has_record() const {
    return has_record_ && fasta_.number() >= settings_.first_sequence &&
           (!settings_.last_sequence || fasta_.number() <= *settings_.last_sequence);
  }

  const FastaReader& record() const { return fasta_; }

  /// Residues of the current record, once it has been taken.
  std::string_view residues() const { return fasta_.residues(); }

  /// Reads the residues and moves on to the header of the next record.
  void take() {
    taken_header_ = fasta_.header();
    taken_name_ = fasta_.sequence_name();
    fasta_.read_residues();
    has_record_ = fasta_.next_header();
  }

  const std::string& taken_header() const { return taken_header_; }
  const std::string& taken_name() const { return taken_name_; }

  void skip() { has_record_ = fasta_.next_header(); }

 private:
  FastaReader fasta_;
  const Settings& settings_;
  bool has_record_ = false;
  std::string taken_header_;
  std::string taken_name_;
};

class ReportCheck {
 public:
  ReportCheck(const CheckRequest& request, Findings& findings)
      : report_(request.report), findings_(findings), repeat_check_(report_.settings(), findings) {
    if (!request.fasta.empty()) input_ = std::make_unique<Input>(request.fasta, report_.settings());
  }

  void run() {
    for (auto item = report_.next(); item != ReportReader::Item::kEnd; item = report_.next()) {
      if (item == ReportReader::Item::kSequence) {
        begin_sequence();
      } else {
        check_repeat();
      }
      if (findings_.is_full()) return;
    }
    if (input_ && lists_all_sequences() && input_->has_record()) {
      findings_.add(report_.line_number(), "the sequence " +
                                               quoted_name(input_->record().sequence_name()) +
                                               " of the input is missing");
    }
  }

 private:
  /// Formats with a block or comments for each sequence; others show only sequences with repeats.
  bool lists_all_sequences() const {
    const Format format = report_.settings().format;
    return format == Format::kPlain || format == Format::kExtended ||
           report_.settings().sequence_info_as_comment;
  }

  void begin_sequence() {
    last_start_ = last_end_ = 0;
    const Sequence& sequence = report_.sequence();
    const Settings& settings = report_.settings();
    if (settings.last_sequence && lists_all_sequences() &&
        sequence.number > *settings.last_sequence) {
      findings_.add(sequence.line,
                    "the run looked at sequences up to " + std::to_string(*settings.last_sequence));
    }
    if (!input_) return;
    if (!lists_all_sequences()) {
      find_named(sequence);
      return;
    }
    if (!input_->has_record()) throw_missing(sequence);
    input_->take();
    compare_sequence(sequence);
  }

  void compare_sequence(const Sequence& sequence) {
    findings_.expect(sequence.line, "the header", *sequence.header, input_->taken_header());
    // The header tells the name, unless it has no line end: then the name before it is kept.
    const bool shows_name = report_.settings().sequence_info_as_comment;
    if (shows_name)
      findings_.expect(sequence.line, "the name", sequence.name, input_->taken_name());
    findings_.expect(sequence.line + (shows_name ? 2 : 1), "the sequence length", *sequence.length,
                     static_cast<std::int64_t>(input_->residues().size()));
  }

  void find_named(const Sequence& sequence) {
    while (input_->has_record() && input_->record().sequence_name() != sequence.name)
      input_->skip();
    if (!input_->has_record()) throw_missing(sequence);
    input_->take();
  }

  [[noreturn]] void throw_missing(const Sequence& sequence) const {
    throw LineError(report_.name(), sequence.line,
                    "the input has no such sequence " + quoted_name(sequence.name) + " here.");
  }

  bool is_in_order(const Repeat& repeat) const {
    return repeat.start > last_start_ || (repeat.start == last_start_ && repeat.end >= last_end_);
  }

  /// Where nothing but names shows, sequences of one name look like one if none with repeats lies
  /// between them. Starts that fall begin another one, perhaps behind sequences without repeats;
  /// other bases do if it is the very next.
  void look_behind_neighbours(const Repeat& repeat) {
    if (!input_) return;
    if (!is_in_order(repeat)) {
      find_named(report_.sequence());
      last_start_ = last_end_ = 0;
    }
    while (!repeat_check_.fits_residues(repeat, input_->residues()) && input_->has_record() &&
           input_->record().sequence_name() == report_.sequence().name) {
      input_->take();
    }
  }

  void check_repeat() {
    const Repeat& repeat = report_.repeat();
    if (!lists_all_sequences()) look_behind_neighbours(repeat);
    const bool may_be_neighbour = !input_ && !lists_all_sequences();
    if (!is_in_order(repeat) && !may_be_neighbour) {
      findings_.add(repeat.line, "the repeat is out of order: starts and then ends must rise");
    }
    last_start_ = repeat.start;
    last_end_ = repeat.end;
    repeat_check_.run(report_.sequence(), repeat,
                      input_ ? std::optional<std::string_view>(input_->residues()) : std::nullopt);
  }

  ReportReader report_;
  Findings& findings_;
  RepeatCheck repeat_check_;
  std::unique_ptr<Input> input_;
  std::int64_t last_start_ = 0;
  std::int64_t last_end_ = 0;
};

}  // namespace

std::uint64_t check_report(const CheckRequest& request) {
  OutputFile output("-", Compression::kPlain);
  Findings findings(output, request.report == "-" ? "standard input" : request.report,
                    request.limit);
  try {
    ReportCheck(request, findings).run();
  } catch (...) {
    output.finish();
    throw;
  }
  output.finish();
  return findings.count();
}

}  // namespace vorlan_tools
