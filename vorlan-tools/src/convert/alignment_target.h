// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "convert/conversion.h"
#include "report/head.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// Sequences of the report in its order, as SAM and BAM want them before the first alignment; those
/// without bases cannot be named there.
struct AlignmentSequences {
  std::string header_lines;                   ///< @SQ, one for each
  std::vector<std::string> written;           ///< names
  std::vector<std::int32_t> index_of_number;  ///< by number in the report; -1: left out
  std::int64_t longest = 0;
  std::unordered_set<std::string> names;

  /// Throws DataError if SAM cannot hold the name.
  void add(std::string_view name, std::int64_t length);
};

/// A SAM or BAM file to which repeats with alignments are written in their order. The perfect
/// repeat is the read, the sequence the reference that it is mapped to:
///
///     QNAME  r1, r2, ... by the order in the report, also when repeats are filtered out
///     FLAG 0, MAPQ 255 (not available), CIGAR with = X I D, SEQ the perfect repeat, QUAL *
///     NM, MD, AS (the score); ul unit length, un unit, mo motif, cn copies, pf perfection
class AlignmentTarget {
 public:
  virtual ~AlignmentTarget() = default;
  AlignmentTarget(const AlignmentTarget&) = delete;
  AlignmentTarget& operator=(const AlignmentTarget&) = delete;

  /// `sequence`: an index of `written`; `number`: of the repeat in the report, from 1. Throws
  /// DataError.
  virtual void write(const Repeat& repeat, std::int32_t sequence, std::int64_t number) = 0;

  /// The file appears, with its index if asked.
  virtual void finish() = 0;

 protected:
  AlignmentTarget() = default;
};

/// Text, written without htslib: its way through a record and back to text takes twice the time.
/// `sequences` must live as long as the target.
std::unique_ptr<AlignmentTarget> sam_target(const Conversion& conversion,
                                            const AlignmentSequences& sequences,
                                            const std::string& header);

std::unique_ptr<AlignmentTarget> bam_target(const Conversion& conversion,
                                            const AlignmentSequences& sequences,
                                            const std::string& header);

}  // namespace vorlan_tools
