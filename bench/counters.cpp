// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// vorlan_counters FASTA: counts what the plain imperfect search does on a file at the default
// settings, summed over its records. The counts depend on the residues alone, not on machine or
// compiler: they tell whether a change of run time comes from more steps or from slower ones.

#include <cstdio>

#include "input/cfile.h"
#include "input/csequence_mol.h"
#include "plain_search.h"

namespace {

/// Adds up the steps on all records; false at a malformed record.
bool count_file(vorlan::CFile& file, reference::Counters& counters) {
  vorlan::CSequence_Mol sequence(vorlan::CSequence_Mol::kDna, 0);
  while (!file.eof()) {
    sequence.readFastaSequence(file);
    if (file.fail() && !file.eof()) return false;
    reference::imperfect_search(sequence.residues.view(), reference::Settings(), &counters);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("Usage: vorlan_counters FASTA\n", stderr);
    return 2;
  }
  vorlan::CFile file;
  file.open(argv[1]);
  if (file.fail()) {
    std::fprintf(stderr, "%s: could not be opened.\n", argv[1]);
    return 1;
  }
  reference::Counters counters;
  if (!count_file(file, counters)) {
    std::fprintf(stderr, "%s: malformed at line %u.\n", argv[1], file.line_number());
    return 1;
  }
  std::printf("candidates        %llu\n", counters.candidates);
  std::printf("decision points   %llu\n", counters.decision_points);
  std::printf("look-ahead calls  %llu\n", counters.look_ahead_calls);
  std::printf("accepted records  %llu\n", counters.accepted);
  return 0;
}
