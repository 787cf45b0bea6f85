// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "report/repeat.h"

namespace vorlan_tools {

/// Finds loci with few bases between them, which papers count as one compound locus.
///
///     CACACACACACA gtttca GAGAGAGAGAGA     (CA)6[6](GA)6
///
/// To be given the loci of a sequence in the order of their starts.
class CompoundLoci {
 public:
  /// At most `gap` bases lie between loci of a compound.
  explicit CompoundLoci(std::int64_t gap) : gap_(gap) {}

  void begin_sequence(std::string_view name);
  void add(const Repeat& repeat);

  /// Ends the sequence: the last compound is complete.
  void end_sequence();

  /// Compounds so far, and the loci in them.
  std::int64_t compounds() const { return compounds_; }
  std::int64_t loci() const { return loci_; }

  /// Rows of the compounds that are complete, for a table; the caller takes and clears them. The
  /// structure shows motifs on the strand of the sequence where the report tells them, otherwise
  /// units, with their whole copies; in brackets the bases between, negative where loci overlap.
  std::string& rows() { return rows_; }

  static constexpr std::string_view kColumns = "sequence\tstart\tend\tloci\tstructure\n";

 private:
  void begin_chain(const Repeat& repeat);
  void append_part(const Repeat& repeat);

  std::int64_t gap_;
  std::string name_;
  std::string structure_;
  std::string motif_;
  std::int64_t start_ = 0;
  std::int64_t end_ = 0;
  std::int64_t chain_ = 0;  ///< loci that may become a compound
  std::int64_t compounds_ = 0;
  std::int64_t loci_ = 0;
  std::string rows_;
};

}  // namespace vorlan_tools
