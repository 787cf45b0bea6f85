// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// A FASTA reader that takes the bytes of a whole file at once.
//
// Idea: first CR LF and lone CR become LF, then the file is lines. Before the first record stand
// blank lines, white space and '#' comments; every line that begins with '>' begins a record; every
// other line holds residues.
//
// Why doing the line ends first is right: the reader of the product converts them one character at
// a time, and after a malformed character it no longer does. But then it only asks whether anything
// follows, and a line end of any kind is something. A CR as the last byte of the file is a line end
// like any other. Line numbers count converted line ends before the place concerned.
//
// Surprising, and meant so:
//  - a malformed residue that is the very last byte of the file is not reported: the record counts
//    as read, with the residues before it, and the file as well formed;
//  - a lone '>' as the last byte gives one more record with an empty header that keeps the name and
//    the description of the record before it; with a line end after it its name is empty;
//  - a header without a blank leaves the description of the record before it in place;
//  - white space before the first '>' is skipped by character, so an indented '>' opens the first
//    record, but is a malformed residue later.
//
// Example: ">s x\nAC-g\nRU" is one record, name s, description x, residues ACGNT.
#ifndef VORLAN_TESTS_REFERENCE_FASTA_BY_RULES_H_
#define VORLAN_TESTS_REFERENCE_FASTA_BY_RULES_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace reference {

struct FastaRecord {
  std::string header;       // the line without '>' and without its end
  std::string name;         // the header up to its first blank
  std::string description;  // the header after the blanks that follow the name
  std::string residues;     // only 'A', 'C', 'G', 'T' and 'N'
  bool operator==(const FastaRecord&) const = default;
};

struct FastaFile {
  std::vector<FastaRecord> records;  // in file order; those before the malformed one, if any
  bool malformed = false;
  std::size_t malformed_line = 0;  // counted from 1; 0 when the file is well formed
  bool operator==(const FastaFile&) const = default;
};

// Reads all records of a file. A file without any '>' after blanks and comments is malformed.
FastaFile read_fasta_by_rules(std::string_view bytes);

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_FASTA_BY_RULES_H_
