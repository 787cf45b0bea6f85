// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "convert/row_text.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// How a column of an alignment reads for programs that align a query with a reference: the perfect
/// repeat is the query, the sequence the reference. A base that the report calls an insertion, one
/// that the perfect repeat has not, is therefore a deletion there, and the other way round. An N
/// differs from every base, so a bridged N is a mismatch.
///
///     sequence   ACAGACTAC-CAN      the reference
///     match      ||| || || || *
///     unit       ACACAC-ACACAC      the query
///                ===X==D==I==X      3=1X2=1D2=1I2=1X
enum class Operation : char { kEqual = '=', kDifferent = 'X', kInsertion = 'I', kDeletion = 'D' };

inline Operation operation_of(char sequence_base, char unit_base) {
  if (sequence_base == '-') return Operation::kInsertion;
  if (unit_base == '-') return Operation::kDeletion;
  return sequence_base == unit_base ? Operation::kEqual : Operation::kDifferent;
}

/// The end of whole words of equal bases that begin at `begin`; more may follow. Most columns of a
/// repeat are equal, so eight are compared at once.
inline std::size_t end_of_equal(std::string_view sequence, std::string_view unit,
                                std::size_t begin) {
  std::uint64_t bases = 0;
  std::uint64_t unit_bases = 0;
  for (; begin + sizeof bases <= sequence.size(); begin += sizeof bases) {
    std::memcpy(&bases, sequence.data() + begin, sizeof bases);
    std::memcpy(&unit_bases, unit.data() + begin, sizeof unit_bases);
    if (bases != unit_bases) break;
  }
  return begin;
}

/// Calls run(operation, length) for every stretch of columns with one operation.
template <typename Run>
void for_each_run(const Repeat& repeat, Run run) {
  const std::string& sequence = repeat.sequence_line;
  const std::string& unit = repeat.unit_line;
  std::size_t begin = 0;
  while (begin < sequence.size()) {
    const Operation operation = operation_of(sequence[begin], unit[begin]);
    std::size_t end = begin + 1;
    if (operation == Operation::kEqual) end = end_of_equal(sequence, unit, end);
    while (end < sequence.size() && operation_of(sequence[end], unit[end]) == operation) ++end;
    run(operation, begin, end);
    begin = end;
  }
}

/// What alignment formats count.
struct AlignmentCounts {
  std::int64_t equal = 0;
  std::int64_t different = 0;  ///< among them bridged Ns
  std::int64_t inserted = 0;   ///< bases of the perfect repeat that the sequence has not
  std::int64_t deleted = 0;    ///< bases of the sequence that the perfect repeat has not

  std::int64_t columns() const { return equal + different + inserted + deleted; }
  std::int64_t edit_distance() const { return different + inserted + deleted; }
  std::int64_t query_length() const { return equal + different + inserted; }
  std::int64_t reference_length() const { return equal + different + deleted; }
};

/// Requires has_alignment(). Linear in its columns, like the functions below, which append to
/// `text`.
AlignmentCounts count_operations(const Repeat& repeat);

/// With = X I D, such as 3=1X2=.
void append_cigar(RowText& text, const Repeat& repeat);

/// The Gap attribute of GFF3, with M I D, such as M6 D1 M2.
void append_gap(RowText& text, const Repeat& repeat);

/// The MD tag of SAM: lengths of equal stretches, differing reference bases, deleted ones behind ^.
void append_md(RowText& text, const Repeat& repeat);

/// The perfect repeat itself: the unit line without gaps.
void append_query(RowText& text, const Repeat& repeat);

}  // namespace vorlan_tools
