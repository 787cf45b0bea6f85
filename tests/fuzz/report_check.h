// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Checks the reports of one record, in all formats, against each other and against the residues.
//
// Idea: the extended format with alignments tells all there is. It is read back, and every number
// of an entry is computed anew from its alignment: length, score, perfection, counts, events. The
// alignment must show the residues at the stated place, against a unit that goes round. Then every
// other format must be, byte for byte, what these entries make of it. Which repeats must stand in a
// report is taken from the list that it was made from. Nothing of the product's output is used.
//
// Example, for the residues GACACTCACG with -m -2 and a minimum score of 2: the alignment
//   ACACTCAC
//   |||| |||
//   ACACACAC
// has 7 matches and a mismatch at its fifth column, so the entry must say 8 BP, 7 - 2 - 2 = 3 pt,
// 87.500 %, 1 mis, (5,M) and unit AC.
#ifndef VORLAN_TESTS_FUZZ_REPORT_CHECK_H_
#define VORLAN_TESTS_FUZZ_REPORT_CHECK_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plain_search.h"

namespace fuzz {

// What a report is made from.
struct ReportedRecord {
  std::string header;
  std::string residues;
  std::vector<reference::Repeat> repeats;  // the list handed to the report
  reference::Settings settings;
  int unit_mode = 2;
  int flanking = 0;
  bool info_as_comment = false;
};

// The settings that a report depends on besides those of the record.
struct Layout {
  int format = 1;         // 0 to 5
  int sequence_mode = 2;  // 0 to 2
};

// One repeat, with all numbers computed anew from its alignment.
struct ReportEntry {
  long start = 0;  // counted from 1, inclusive
  long end = 0;    // counted from 1, inclusive
  long unit_length = 0;
  long repeat_length = 0;  // columns that show a unit base
  long score = 0;
  float perfection = 0;  // per cent
  long mismatches = 0;
  long insertions = 0;
  long deletions = 0;
  long num_Ns = 0;
  std::string unit;
  std::string events;     // "(5,M),"
  std::string alignment;  // three lines, with their line ends
};

// Reads the report in the extended format with alignments. Throws std::runtime_error with the
// reason when it is wrong.
std::vector<ReportEntry> read_extended_report(std::string_view report,
                                              const ReportedRecord& record);

// The bytes of the report of these entries in a layout.
std::string expected_report(const std::vector<ReportEntry>& entries, const ReportedRecord& record,
                            const Layout& layout);

// The bytes of the masked file: all repeats of the list as X, also those that are not reported.
std::string expected_masked_record(const ReportedRecord& record);

}  // namespace fuzz

#endif  // VORLAN_TESTS_FUZZ_REPORT_CHECK_H_
