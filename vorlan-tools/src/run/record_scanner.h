// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// Where the records of a FASTA text begin, as vorlan reads it.
///
/// A file may be cut in front of any '>' that stands first in a line: there, and only there, vorlan
/// begins a new record, and nothing of the record before has any effect on the one behind. Two
/// places look alike and are none:
///
///   - what comes before the first record. White space and '#' lines are skipped by character, so
///     that the first '>' may stand anywhere in its line, and a piece without it would be
///     malformed:
///
///         "# made by hand\n  >s1\nACGT\n>s2\nAC\n"    cuts: in front of >s2 only
///
///   - a '>' as the very last byte of the file: that record has no name of its own, it shows the
///     name of the record before. The caller, who knows the end of the file, must not cut there.
///
/// Lines end in LF, CR LF or a lone CR; they are counted, since messages name them.
/// Cost: one pass, by memchr as long as no CR is met.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorlan_tools {

/// What a stretch of text holds.
struct TextCounts {
  std::uint64_t records = 0;
  std::uint64_t bases = 0;  ///< bytes of lines that are no headers, line ends not counted
  std::uint64_t line_ends = 0;
};

/// Reads a FASTA text in pieces of any size and stops at each place where it may be cut.
class RecordScanner {
 public:
  /// Reads on in `text`, which follows what was read before, up to the next place where the text
  /// may be cut, or to the end of `text`. Returns the number of bytes read. If it is smaller than
  /// the size of `text`, the byte behind is a '>' that begins a record; the next call reads on from
  /// it.
  std::size_t read(std::string_view text);

  /// What was read since the last call of `take_counts`, or the beginning.
  TextCounts take_counts();

 private:
  enum class Place { kBeforeFirst, kComment, kHeader, kResidues };

  void read_before_first(char byte);
  void begin_record();
  void end_line(char line_end);

  Place place_ = Place::kBeforeFirst;
  bool at_line_start_ = true;
  bool after_cr_ = false;
  bool stands_at_record_ = false;  ///< the last call returned in front of a '>'
  TextCounts counts_;
};

}  // namespace vorlan_tools
