// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "convert/row_text.h"
#include "report/head.h"
#include "report/repeat.h"
#include "report/sequence_list.h"

namespace vorlan_tools {

/// A target that is text with one row for each repeat. Rows are appended to a text that the
/// caller owns; no call allocates once texts have grown.
class RowFormat {
 public:
  virtual ~RowFormat() = default;
  RowFormat(const RowFormat&) = delete;
  RowFormat& operator=(const RowFormat&) = delete;

  /// Whether append_head() wants the sequences; it gets none otherwise.
  virtual bool needs_sequences() const { return false; }

  /// What stands before all rows. The names of `sequences` are those to be written (perhaps cut).
  virtual void append_head(RowText& text, const Head& head,
                           const std::vector<ListedSequence>& sequences) = 0;

  /// Called before the repeats of a sequence. `name` is its name as it is to be written (perhaps
  /// cut). Throws DataError if the target cannot hold the sequence.
  virtual void begin_sequence(const Sequence& sequence, std::string_view name) = 0;

  /// The row of a repeat of that sequence, with its line feed.
  virtual void append_repeat(RowText& text, const Repeat& repeat) = 0;

 protected:
  RowFormat() = default;
};

/// Extended BED: sequence, start (from 0), end, unit, score within 0 and 1000, strand '.', unit
/// length, copies, perfection, score, motif.
std::unique_ptr<RowFormat> bed_rows();

/// GFF3 with types of the Sequence Ontology and, for reports with alignments, Target and Gap.
std::unique_ptr<RowFormat> gff3_rows();

/// A table with column names; coordinates as in the report.
std::unique_ptr<RowFormat> tsv_rows();

/// A JSON object for each line; coordinates as in the report.
std::unique_ptr<RowFormat> json_rows();

/// PAF with the perfect repeat as query; needs alignments and lengths of sequences.
std::unique_ptr<RowFormat> paf_rows();

}  // namespace vorlan_tools
