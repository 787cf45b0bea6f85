// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "convert/row_text.h"
#include "monomers/array_source.h"
#include "monomers/dissect_array.h"

namespace vorlan_tools {

/// An array as it is written: its number from 1, its place, its bases, and what it consists of.
struct DissectedArray {
  std::int64_t number;
  const Array& array;
  std::string_view bases;
  const Dissection& dissection;
};

/// The functions below append to `text`.

/// One BED row for each copy: sequence, start, end, "array.copy", score, strand, bases, places of
/// the unit, mismatches, insertions, deletions, divergence in %, position in the higher-order
/// repeat.
void append_monomer_rows(RowText& text, const DissectedArray& array);

/// One FASTA record for each copy.
void append_monomer_records(RowText& text, const DissectedArray& array);

/// The consensus as a FASTA record.
void append_consensus_record(RowText& text, const DissectedArray& array);

/// The names of the columns, and a row.
void append_consensus_head(RowText& text);
void append_consensus_row(RowText& text, const DissectedArray& array);

}  // namespace vorlan_tools
