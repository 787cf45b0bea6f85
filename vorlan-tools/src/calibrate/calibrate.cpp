// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "calibrate/calibrate.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "calibrate/shuffled_copy.h"
#include "errors.h"
#include "fasta/fasta_reader.h"
#include "io/output_file.h"
#include "report/report_reader.h"
#include "run/child_process.h"
#include "run/children.h"
#include "run/signals.h"
#include "run/slice_loop.h"
#include "run/vorlan_end.h"
#include "run/work_folder.h"
#include "stats/collect.h"

namespace vorlan_tools {

namespace {

using SpansOfRecords = std::vector<std::vector<Span>>;

std::string copy_name(std::int64_t copy) { return "copy" + std::to_string(copy); }

class CalibrationRun {
 public:
  CalibrationRun(const CalibrationRequest& request, Signals& signals)
      : request_(request), signals_(signals), folder_(WorkFolder::temporary()) {}

  Calibration execute() {
    take_genome();
    search({"genome"});
    read_genome_report();
    for (std::int64_t copy = 1; copy <= request_.copies;) {
      std::vector<std::string> names;
      while (names.size() < request_.jobs && copy <= request_.copies) {
        write_copy(copy);
        names.push_back(copy_name(copy++));
      }
      search(names);
      for (const std::string& name : names) read_copy_report(name);
    }
    evaluate(counts_, result_);
    return result_;
  }

 private:
  std::string fasta_of(const std::string& name) const { return folder_.file(name + ".fa"); }
  std::string report_of(const std::string& name) const { return folder_.file(name + ".report"); }

  /// Numbers for names: those of the input may be any bytes, and equal.
  static void write_record(OutputFile& output, std::uint64_t number, const std::string& residues) {
    output.write(">" + std::to_string(number) + "\n");
    output.write(residues);
    output.write("\n");
  }

  void take_genome() {
    FastaReader fasta(request_.fasta);
    OutputFile output(fasta_of("genome"), Compression::kPlain);
    while (fasta.next_header()) {
      fasta.read_residues();
      write_record(output, fasta.number(), fasta.residues());
      result_.bases += bases_in(fasta.residues());
    }
    output.finish();
    result_.genome = as_utf8(genome_name(fasta.name(), "genome"));
    result_.k = request_.k;
    result_.window = request_.window;
    result_.copies = request_.copies;
    result_.seed = request_.seed;
    result_.mask_length = request_.mask_length;
  }

  static std::int64_t bases_in(const std::string& residues) {
    return static_cast<std::int64_t>(residues.size()) -
           std::count(residues.begin(), residues.end(), 'N');
  }

  Command command_of(const std::string& name) const {
    Command command{request_.vorlan, request_.settings, folder_.path(), folder_.file(name + ".out"),
                    folder_.file(name + ".messages")};
    for (const char* const word :
         {"--outputFormat", "3", "--printRepeatSeqMode", "0", "--sequenceInfoAsComment", "--"}) {
      command.arguments.emplace_back(word);
    }
    command.arguments.push_back(fasta_of(name));
    command.arguments.push_back(report_of(name));
    return command;
  }

  /// Runs vorlan on each of these files, all at once.
  void search(const std::vector<std::string>& names) {
    Children children;
    for (std::size_t i = 0; i < names.size(); ++i) children.start(i, command_of(names[i]));
    while (children.size() > 0) {
      if (const auto ended = children.take_ended()) {
        require_success(names[ended->first], ended->second);
        continue;
      }
      pollfd event{signals_.descriptor(), POLLIN, 0};
      ::poll(&event, 1, -1);
      if (const auto signal = signals_.take()) throw Interrupted{*signal};
    }
    for (const std::string& name : names) ::unlink(folder_.file(name + ".messages").c_str());
  }

  void require_success(const std::string& name, int status) const {
    const VorlanEnd end(status);
    if (end.is_success()) return;
    if (end.is_refusal()) {
      const std::string messages = read_small_file(folder_.file(name + ".messages"));
      std::fwrite(messages.data(), 1, messages.size(), stderr);
    }
    throw DataError("vorlan " + end.text() + ".");
  }

  void read_genome_report() {
    ReportReader report(report_of("genome"));
    result_.version = report.head().version;
    result_.settings = settings_of(report.head());
    const auto last_record = [&]() -> std::vector<Span>& {
      spans_.resize(std::max<std::size_t>(spans_.size(), report.sequence().number));
      return spans_[report.sequence().number - 1];
    };
    for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
      if (item != ReportReader::Item::kRepeat) continue;
      const Repeat& repeat = report.repeat();
      ++counts_[repeat.unit_length][*repeat.score].found;
      if (request_.mask_length > 0 && repeat.bases >= request_.mask_length) {
        last_record().emplace_back(repeat.start - 1, repeat.end);
      }
    }
    ::unlink(report_of("genome").c_str());
  }

  void write_copy(std::int64_t copy) {
    KmerShuffle shuffle(request_.k);
    RandomNumbers random(request_.seed, static_cast<std::uint64_t>(copy));
    FastaReader fasta(fasta_of("genome"));
    OutputFile output(fasta_of(copy_name(copy)), Compression::kPlain);
    std::int64_t bases = 0;
    while (fasta.next_header()) {
      fasta.read_residues();
      const std::size_t index = fasta.number() - 1;
      std::string residues = without_spans(
          fasta.residues(), index < spans_.size() ? spans_[index] : std::vector<Span>());
      bases += bases_in(residues);
      shuffle_windows(residues, static_cast<std::size_t>(request_.window), shuffle, random);
      write_record(output, fasta.number(), residues);
      if (const auto signal = signals_.take()) throw Interrupted{*signal};
    }
    output.finish();
    result_.copied_bases = bases;
  }

  void read_copy_report(const std::string& name) {
    ReportReader report(report_of(name));
    for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
      if (item != ReportReader::Item::kRepeat) continue;
      ++counts_[report.repeat().unit_length][*report.repeat().score].chance;
    }
    ::unlink(report_of(name).c_str());
    ::unlink(fasta_of(name).c_str());
  }

  const CalibrationRequest& request_;
  Signals& signals_;
  WorkFolder folder_;
  Calibration result_;
  ScoreCounts counts_;
  SpansOfRecords spans_;
};

}  // namespace

Calibration calibrate(const CalibrationRequest& request) {
  Signals signals;
  int signal = 0;
  try {
    CalibrationRun run(request, signals);
    return run.execute();
  } catch (const Interrupted& interrupted) {
    signal = interrupted.signal;
  }
  // The folder is gone by now.
  end_by_signal(signal);
}

}  // namespace vorlan_tools
