// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/run.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>

#include "config/command_line.h"
#include "config/number_text.h"
#include "config/settings.h"
#include "driver/console.h"
#include "driver/exit_status.h"
#include "driver/masked_file.h"
#include "driver/output_file.h"
#include "driver/record_series.h"
#include "driver/standard_streams.h"
#include "input/cfile.h"
#include "input/csequence_mol.h"
#include "output/report.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

/// Room for this many bases from the start; longer sequences double it.
constexpr std::uint32_t kReservedResidues = 10'000'001;

constexpr const char* kReportPrefix = "# ";

int abort_run(int code) {
  good_bye_on_error(code);
  return code;
}

/// The files of a run and its loop over the records of the input.
class Run {
 public:
  explicit Run(const Accelerations& accelerations) : accelerations_(accelerations) {}

  int execute() {
    input_.open(global_input_filename.c_str());
    if (input_.fail()) return abort_without_input();
    if (!global_output_filename.empty()) report_.emplace(global_output_filename);
    if (!report_) report_.emplace();
    print_headers();
    if (global_mask_repeats) open_masked_file();
    if (!search_records()) return malformed_input();
    return finish();
  }

 private:
  static int abort_without_input() {
    general_PrintMessage(stderr, "Sorry! The input file \n   \"");
    general_PrintText(stderr, global_input_filename);
    general_PrintMessage(stderr, "\"\ncould not be opened. I guess it does not exist.\n");
    return abort_run(kInputNotOpened);
  }

  void print_headers() {
    creator_message(stderr, "");
    print_search_parameters(stderr, "");
    general_PrintMessage(
        stderr,
        "\n\nSearch progress:\n\n"
        "Time     - SeqNr - PatLen - Seq-Name\n"
        "------------------------------------------------------------------------\n");
    std::fflush(stderr);

    std::FILE* out = report_->stream();
    creator_message(out, kReportPrefix);
    print_search_parameters(out, kReportPrefix);
    print_output_format(out, kReportPrefix);
    std::fflush(out);
  }

  void open_masked_file() {
    const std::string name = global_input_filename + ".masked";
    if (name == global_output_filename) throw OutputNotOpened(name);
    masked_.emplace(name);
  }

  // Records behind the last selected one are read, too, so that a malformed one is always reported.
  // Returns false at a malformed record.
  bool search_records() {
    const auto first = static_cast<std::uint32_t>(global_sequence_from);
    const auto last = static_cast<std::uint32_t>(global_sequence_to);
    for (std::uint32_t number = 1; !input_.eof(); ++number) {
      const bool is_whole = take_record(number, number >= first && number <= last);
      // No report waits for input.
      const bool more_may_wait =
          is_whole && !series_.is_full() && input_.holds_record(RecordSeries::kLongestText);
      if (!more_may_wait) search_series();
      if (!is_whole) return false;
    }
    return true;
  }

  // Reads a record and, if it is selected, searches it; a short one waits for others. Returns false
  // when it is malformed.
  bool take_record(std::uint32_t number, bool is_selected) {
    bool waits = false;
    try {
      sequence_.readFastaSequence(input_);
      if (input_.fail() && !input_.eof()) return false;
      waits = is_selected && RecordSeries::is_short(sequence_);
      if (waits) series_.add(number, sequence_);
    } catch (const std::bad_alloc&) {
      search_series();  // those before it did fit
      throw;
    }
    if (!is_selected || waits) return true;
    search_series();
    search_record(number, sequence_, nullptr);
    return true;
  }

  void search_series() {
    if (accelerations_.series_filter) series_.judge();
    for (std::size_t i = 0; i < series_.size(); ++i) {
      RecordSeries::Record& record = series_[i];
      const SeriesSurvivors survivors = series_.survivors(record);
      search_record(record.number, record.sequence, &survivors);
    }
    series_.clear();
  }

  // `survivors` is what is known of the starts of the record, or null.
  void search_record(std::uint32_t number, CSequence_Mol& sequence,
                     const SeriesSurvivors* survivors) {
    report_status(number, sequence.name.terminate(), global_min_unit_length, 'r');
    update_report_time();
    CSearchController controller(number, sequence, search_console(), accelerations_);
    controller.set_series_survivors(survivors);
    CsatContainer& sats = search(controller);
    controller.remove_hidden(sats);
    controller.complete_events(sats);
    controller.report_SATList(report_->stream(), sats);
    report_->check();
    if (masked_) {
      mask_repeats(sats, sequence);
      write_masked_record(masked_->stream(), sequence);
      masked_->check();
    }
  }

  // Returns the list that the search of the chosen mode has filled.
  CsatContainer& search(CSearchController& controller) {
    switch (global_search_mode) {
      case kExact:
        controller.exact_search_2();
        return controller.exact_sats;
      case kExtendExact:
        controller.search_exact_and_extend_to_imperfect_repeats();
        return controller.imperfect_sats;
      default:
        controller.complete_imperfect_search(report_->stream());
        return controller.imperfect_sats;
    }
  }

  // Neither the report nor the console gets a closing line: that it is missing shows that the
  // report is not complete.
  int malformed_input() {
    if (sequence_.too_long) {
      general_PrintMessage(stderr, "Sorry, the sequence \"");
      general_PrintText(stderr, sequence_.name.view());
      general_PrintMessage(stderr, "\" has more than ", number2str(CSequence_Mol::kMaxResidues),
                           " residues.\n");
    }
    general_PrintMessage(stderr, "\n\n",
                         "An error occurred while reading the input file. It might not be a valid "
                         "fasta file.\n",
                         "File position: line ", number2str(input_.line_number()), "\n");
    std::fflush(stderr);
    return kMalformedInput;
  }

  int finish() {
    if (masked_) masked_->close();
    input_.close();
    good_bye(report_->stream());
    report_->close();
    return kSuccess;
  }

  Accelerations accelerations_;
  CSequence_Mol sequence_{CSequence_Mol::kDna, kReservedResidues};
  RecordSeries series_;
  CFile input_;
  std::optional<OutputFile> report_;
  std::optional<OutputFile> masked_;
};

int output_not_opened(const OutputNotOpened& file) {
  general_PrintMessage(stderr, "Sorry! Failed to open file\n   \"");
  general_PrintText(stderr, file.what());
  general_PrintMessage(stderr, "\"\nas output file.\n");
  return abort_run(kOutputNotWritten);
}

int write_failed(const WriteFailed& file) {
  general_PrintMessage(stderr, "Sorry! Writing to file\n   \"");
  general_PrintText(stderr, file.what());
  general_PrintMessage(stderr, "\"\nfailed. Its contents are not complete.\n");
  return abort_run(kOutputNotWritten);
}

int not_enough_memory() {
  general_PrintMessage(stderr, "Sorry, there is not enough memory for this run.\n");
  return abort_run(kNotEnoughMemory);
}

bool is_lack_of_memory(const std::exception_ptr& exception) try {
  if (exception != nullptr) std::rethrow_exception(exception);
  return true;  // there was not even room for an exception
} catch (const std::bad_alloc&) {
  return true;
} catch (...) {
  return false;
}

// The runtime calls this where no exception can be made, or where one more is thrown while the way
// back from the first is cleared.
[[noreturn]] void terminated() {
  if (!is_lack_of_memory(std::current_exception())) std::abort();
  const int status = not_enough_memory();
  std::fflush(nullptr);
  std::_Exit(status);
}

}  // namespace

int run(int argc, const char* const* argv, const Accelerations& accelerations) try {
  std::set_terminate(terminated);
  keep_output_descriptors();
  let_writes_fail_at_a_size_limit();
  time_analysis_started = std::time(nullptr);
  vorlan_welcome(stderr);
  std::fflush(stderr);
  if (const int result = read_and_init_parameters(argc, argv); result != 0) {
    return abort_run(result);
  }
  return Run(accelerations).execute();
} catch (const OutputNotOpened& file) {
  return output_not_opened(file);
} catch (const WriteFailed& file) {
  return write_failed(file);
} catch (const std::bad_alloc&) {
  return not_enough_memory();
} catch (const std::length_error&) {
  return not_enough_memory();
}

}  // namespace vorlan
