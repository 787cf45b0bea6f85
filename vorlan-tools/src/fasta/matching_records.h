// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

#include "fasta/fasta_reader.h"
#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// The records of a FASTA file that belong to the sequences of a report, one after the other.
///
/// A sequence belongs to the next record of its name behind the record of the sequence before it,
/// within the range of the run. Memory: one record.
class MatchingRecords {
 public:
  /// `settings` are those of the report. Throws DataError if the file cannot be read.
  MatchingRecords(const std::string& fasta, const Settings& settings);

  /// Moves on to the record of `sequence` and reads its residues. Throws DataError if none follows,
  /// or if the report states another length.
  void find(const Sequence& sequence);

  /// Residues of the record found last: A C G T and N in upper case, as vorlan takes them.
  const std::string& residues() const { return fasta_.residues(); }

  /// The bases of a repeat. Throws DataError if the repeat lies outside of the record, or shows
  /// other bases: then the report was made from another file.
  std::string_view bases_of(const Repeat& repeat) const;

 private:
  FastaReader fasta_;
  bool has_record_;
  bool is_used_ = false;  ///< the current record belongs to a sequence already
};

}  // namespace vorlan_tools
