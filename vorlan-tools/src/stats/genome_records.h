// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fasta/fasta_reader.h"
#include "io/line_reader.h"

namespace vorlan_tools {

/// A sequence of the genome that a report was made from.
struct GenomeRecord {
  std::uint64_t number = 0;  ///< from 1
  std::string name;          ///< up to the first blank; of an index, up to the first white space
  std::int64_t length = 0;   ///< bases, N included
  std::optional<std::int64_t> ns;  ///< absent in an index
};

/// The sequences of a FASTA file, or of its index (.fai), told apart by content. Memory: one
/// record.
class GenomeRecords {
 public:
  /// "-" is standard input. Throws DataError.
  explicit GenomeRecords(const std::string& name);

  /// Moves on; false behind the last one. Throws DataError.
  bool next();

  const GenomeRecord& record() const { return record_; }

  /// Whether names end at white space of any kind, as samtools has them.
  bool is_index() const { return index_ != nullptr; }

  const std::string& name() const { return name_; }

 private:
  bool next_in_index();

  std::string name_;
  std::unique_ptr<FastaReader> fasta_;
  std::unique_ptr<LineReader> index_;
  GenomeRecord record_;
};

}  // namespace vorlan_tools
