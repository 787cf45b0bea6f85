// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>

#include "input/cfile.h"
#include "input/faststring.h"

namespace vorlan {

/// One molecular sequence: a FASTA header line, the name and description split from it, and the
/// residues in normal form (only 'A', 'C', 'G', 'T' and 'N'). One object serves for all records of
/// a run; searches hold pointers into `residues`, which are valid until the next read.
class CSequence_Mol {
 public:
  static constexpr std::uint32_t kDna = 1;

  /// Positions are reported as signed 32-bit numbers, so a record holds at most this many residues.
  static constexpr std::uint32_t kMaxResidues = 2'147'483'647;

  /// An empty sequence of the molecule type `type`, with room for `reserved_residues` bases.
  /// Throws std::bad_alloc.
  CSequence_Mol(std::uint32_t type, std::uint32_t reserved_residues);

  /// Reads the next FASTA record: upper case, every ambiguity code as `ambiguity_char`, U as T,
  /// white space, gaps ('-') and stops ('*') left out. Blank and '#' lines may stand before the
  /// first record.
  ///
  /// The outcome is told by the flags of `file`: `good` means that more input follows; `eof` that
  /// the file is exhausted and this record is the last; `fail` without `eof` that the record is
  /// malformed at `file.line_number()` (a bad character, no '>' where a record must begin, or more
  /// than kMaxResidues residues: then `too_long` is set as well). Writes no messages, except for
  /// a molecule type other than DNA, which is malformed. Throws std::bad_alloc.
  /// Cost: one pass over the bytes.
  void readFastaSequence(CFile& file);

  /// Copies header, name, description and residues; the buffers only grow. Throws std::bad_alloc.
  void assign(const CSequence_Mol& other);

  faststring header;       ///< The header line without '>' and line end.
  faststring name;         ///< The header up to its first blank; tabs belong to the name.
  faststring description;  ///< The header after the name and the blanks that follow it.
  faststring residues;
  std::uint32_t type;
  char ambiguity_char = 'N';
  bool too_long = false;  ///< The last read stopped at the limit of kMaxResidues.

 private:
  static char first_character_of_record(CFile& file);
  bool read_header(CFile& file);
  void split_header();
  void read_residue_line(CFile& file);
  void read_bases(CFile& file);
};

}  // namespace vorlan
