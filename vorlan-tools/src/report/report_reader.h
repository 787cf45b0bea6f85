// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "io/line_reader.h"
#include "report/head.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// A report of any output format, taken item by item in constant memory.
///
/// Every line must stand where vorlan puts it; a line that does not, or an end that comes too
/// early, is thrown as LineError or DataError. Whether the numbers are true is not judged here. In
/// formats 2 and 3 without comments, and in 4, a sequence shows only in the names of its repeats:
/// sequences without repeats are not seen there, and neighbours of one name are taken for one
/// sequence.
class ReportReader {
 public:
  enum class Item {
    kSequence,  ///< sequence() has changed
    kRepeat,    ///< repeat() has changed; belongs to sequence()
    kEnd,       ///< the report is complete (format 4 cannot show that)
  };

  /// Opens the report ("-": standard input) and reads its head.
  explicit ReportReader(const std::string& name);

  /// The same from an open descriptor, which this object closes.
  ReportReader(int descriptor, const std::string& name);

  const Head& head() const { return head_; }
  const Settings& settings() const { return head_.settings; }

  /// Moves on. Not to be called again after kEnd.
  Item next();

  /// Valid until next() is called; strings keep their memory from one repeat to the next.
  const Sequence& sequence() const { return sequence_; }
  const Repeat& repeat() const { return repeat_; }

  const std::string& name() const { return lines_.name(); }
  std::uint64_t line_number() const { return lines_.line_number(); }

  /// Bytes of text read so far, decompressed.
  std::uint64_t bytes_delivered() const { return lines_.bytes_delivered(); }

 private:
  [[noreturn]] void fail(const std::string& what) const;
  std::string_view take_line();
  void require(bool fits);

  Item next_in_blocks();
  Item next_in_rows();
  Item next_in_fasta();
  Item end_at_closing_line();
  void begin_block(std::string_view header_line);
  void read_own_repeat(std::string_view line);
  void begin_commented_sequence();
  Item read_row(std::string_view line);
  void read_sequence_part();
  bool is_footer(std::string_view line, std::string_view text) const;
  void begin_sequence(std::string_view name);
  Item deliver(std::string_view name);

  LineReader lines_;
  Head head_;
  Sequence sequence_;
  Repeat repeat_;
  bool in_block_ = false;
  bool repeat_waits_ = false;
};

}  // namespace vorlan_tools
