// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Readable texts of settings, repeats and records, for the messages of failed comparisons.
#ifndef VORLAN_TESTS_DIFFERENTIAL_DESCRIPTION_H_
#define VORLAN_TESTS_DIFFERENTIAL_DESCRIPTION_H_

#include <string>
#include <string_view>
#include <vector>

#include "fasta_by_rules.h"
#include "plain_search.h"

namespace differential {

// All settings on one line, as options of the program where they have one letter or are well known
// by it, so that a case can be tried by hand.
std::string describe(const reference::Settings& settings);

// One line: span, unit, cursors, counts and events, all as 0-based offsets.
std::string describe(const reference::Repeat& repeat);

// The numbers of records and the first record that differs, of both sides.
// REQUIRES: the lists differ.
std::string describe_first_difference(const std::vector<reference::Repeat>& expected,
                                      const std::vector<reference::Repeat>& found);

// The text as it stands in C++, between quotation marks: whatever is not printable ASCII is
// escaped.
std::string quoted(std::string_view text);

// A line for each record, then whether the file is well formed or where it is malformed.
std::string describe(const reference::FastaFile& file);

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_DESCRIPTION_H_
