// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The reports of what a search finds, in every format, and the masked record: each must be true for
// its residues, and all must tell the same. See report_check.h.

#include <cstddef>
#include <exception>
#include <limits>
#include <string>

#include "config/settings.h"
#include "description.h"
#include "driver/masked_file.h"
#include "fuzz_target.h"
#include "report_check.h"
#include "search_adapter.h"
#include "search_input.h"
#include "support/captured_output.h"
#include "support/dna.h"

namespace {

using fuzz::Layout;
using fuzz::ReportedRecord;

std::string header_from(fuzz::InputBytes& bytes) {
  return bytes.one_of<const char*>(
      {"chr1 a test", "seq", "", " blank", "100%s|%n %d", "tab\there", "a  \"b\" "});
}

ReportedRecord record_from(fuzz::InputBytes& bytes) {
  ReportedRecord record;
  record.unit_mode = bytes.one_of({2, 0, 1});
  record.flanking = bytes.one_of({0, 1, 5, 30, 1000, std::numeric_limits<int>::max()});
  record.info_as_comment = bytes.flag();
  record.header = header_from(bytes);
  return record;
}

// Writes the record in a layout; the search settings are set already.
std::string report(vorlan::CSearchController& controller, const vorlan::CsatContainer& sats,
                   const ReportedRecord& record, const Layout& layout) {
  vorlan::global_report_unit_mode = record.unit_mode;
  vorlan::global_flanking = record.flanking;
  vorlan::global_sequenceInfoAsComment = record.info_as_comment;
  vorlan::global_print_sat_mode = layout.format;
  vorlan::global_print_sat_seq_mode = layout.sequence_mode;
  vorlan::CapturedStream stream;
  controller.report_SATList(stream.stream(), sats);
  return stream.text();
}

std::string masked(const vorlan::CsatContainer& sats, vorlan::CSequence_Mol& sequence) {
  vorlan::CapturedStream stream;
  vorlan::mask_repeats(sats, sequence);
  vorlan::write_masked_record(stream.stream(), sequence);
  return stream.text();
}

void expect_equal(const std::string& expected, const std::string& found, const std::string& what) {
  if (found == expected) return;
  fuzz::report_fault(what + "\nexpected\n" + expected + "\nfound\n" + found);
}

// The masked record comes last: it overwrites the residues.
void check(vorlan::CSearchController& controller, const vorlan::CsatContainer& sats,
           const ReportedRecord& record) {
  const std::vector<fuzz::ReportEntry> entries =
      fuzz::read_extended_report(report(controller, sats, record, {1, 2}), record);
  for (int format = 0; format <= 5; ++format) {
    for (int sequence_mode = 0; sequence_mode <= 2; ++sequence_mode) {
      const Layout layout = {format, sequence_mode};
      expect_equal(
          fuzz::expected_report(entries, record, layout), report(controller, sats, record, layout),
          "format " + std::to_string(format) + ", sequence mode " + std::to_string(sequence_mode));
    }
  }
  expect_equal(fuzz::expected_masked_record(record), masked(sats, controller.sequence),
               "masked record");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::InputBytes bytes(data, size);
  ReportedRecord record = record_from(bytes);
  const fuzz::SearchInput input = fuzz::read_search_input(bytes);
  record.settings = input.settings;
  record.residues = input.residues;
  const fuzz::PoolOfOneInput pool;
  vorlan::Dna dna(input.residues, record.header);
  const auto visit = [&](vorlan::CSearchController& controller, vorlan::CsatContainer& sats) {
    record.repeats = differential::converted(sats, dna);
    try {
      check(controller, sats, record);
    } catch (const std::exception& fault) {
      fuzz::report_fault(differential::describe(record.settings) + "\n" + record.residues + "\n" +
                         fault.what());
    }
  };
  differential::search_record(input.mode, dna, input.settings, visit);
  return 0;
}
