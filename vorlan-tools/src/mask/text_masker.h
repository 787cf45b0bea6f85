// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// Masks the bases of repeats in a FASTA text and leaves every other byte where it is: line ends of
/// all kinds, line width, headers, comments, gaps.
///
/// Reports count bases as vorlan does: white space, '-' and '*' are none.
///
///     text      A C G T - A C A \n C A * C A T
///     base      1 2 3 4   5 6 7    8 9  10 11 12        a repeat at 5 to 11
///     masked    A C G T - a c a \n c a * c a T
///
/// Cost: one pass over the bytes; the text comes in blocks of any size.

#pragma once

#include <cstdint>
#include <string>

#include "mask/masked_stretches.h"

namespace vorlan_tools {

struct MaskStyle {
  bool is_hard = false;           ///< N instead of lower case
  bool keeps_lower_case = false;  ///< else what is not masked becomes upper case
};

class TextMasker {
 public:
  TextMasker(MaskedStretches& stretches, const MaskStyle& style)
      : stretches_(stretches), style_(style) {}

  /// Masks the next bytes of the text in place. Throws DataError if the report does not fit, or if
  /// vorlan could not have read this text.
  void mask(char* begin, const char* end);

  /// The text has ended.
  void finish();

 private:
  enum class Place { kBeforeFirst, kComment, kHeader, kResidues };

  bool end_line(char byte);
  void take_first(char byte);
  char* take_plain_lines(char* begin, char* end);
  char* take_residues(char* begin, const char* end);
  char masked(char residue);
  void mask_residues(char* begin, char* end);
  void end_header();
  void end_record();
  [[noreturn]] void fail() const;

  MaskedStretches& stretches_;
  MaskStyle style_;
  Place place_ = Place::kBeforeFirst;
  bool at_line_start_ = true;
  bool after_cr_ = false;
  std::uint64_t line_ = 1;
  std::uint64_t record_ = 0;  ///< its number, from 1
  std::string header_;
  Stretch stretch_;         ///< the next that is not yet passed
  std::int64_t bases_ = 0;  ///< of the record so far
};

}  // namespace vorlan_tools
