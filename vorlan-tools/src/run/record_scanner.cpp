// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/record_scanner.h"

#include <algorithm>
#include <utility>

namespace vorlan_tools {

namespace {

/// The first LF or CR at or behind a place, for places that only move on: each is looked for once,
/// so that lines without one kind of line end do not make the other expensive.
class LineEnds {
 public:
  explicit LineEnds(std::string_view text) : text_(text) {}

  /// Its offset, or the size of the text.
  std::size_t at_or_behind(std::size_t offset) {
    return std::min(next('\n', lf_, offset), next('\r', cr_, offset));
  }

 private:
  std::size_t next(char line_end, std::size_t& found, std::size_t offset) {
    if (found == kUnknown || found < offset) {
      found = std::min(text_.find(line_end, offset), text_.size());
    }
    return found;
  }

  static constexpr std::size_t kUnknown = std::string_view::npos;
  std::string_view text_;
  std::size_t lf_ = kUnknown;
  std::size_t cr_ = kUnknown;
};

bool is_line_end(char byte) { return byte == '\n' || byte == '\r'; }

bool is_space(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace

std::size_t RecordScanner::read(std::string_view text) {
  LineEnds line_ends(text);
  std::size_t at = 0;
  while (at < text.size()) {
    const char byte = text[at];
    if (is_line_end(byte)) {
      end_line(byte);
      ++at;
    } else if (place_ == Place::kBeforeFirst) {
      read_before_first(byte);
      ++at;
    } else if (at_line_start_ && byte == '>' && place_ != Place::kComment) {
      if (!std::exchange(stands_at_record_, !stands_at_record_)) return at;
      begin_record();
      ++at;
    } else {
      const std::size_t end = line_ends.at_or_behind(at);
      if (place_ == Place::kResidues) counts_.bases += end - at;
      at_line_start_ = after_cr_ = false;
      at = end;
    }
  }
  return at;
}

// White space is skipped by character, a comment by line; anything else but '>' is malformed, and
// then nothing behind it matters.
void RecordScanner::read_before_first(char byte) {
  at_line_start_ = after_cr_ = false;
  if (is_space(byte)) return;
  if (byte == '>') {
    begin_record();
  } else {
    place_ = byte == '#' ? Place::kComment : Place::kResidues;
  }
}

void RecordScanner::begin_record() {
  ++counts_.records;
  place_ = Place::kHeader;
  at_line_start_ = after_cr_ = false;
}

void RecordScanner::end_line(char line_end) {
  const bool belongs_to_cr = line_end == '\n' && after_cr_;
  after_cr_ = line_end == '\r';
  at_line_start_ = true;
  if (belongs_to_cr) return;
  ++counts_.line_ends;
  if (place_ == Place::kHeader) place_ = Place::kResidues;
  if (place_ == Place::kComment) place_ = Place::kBeforeFirst;
}

TextCounts RecordScanner::take_counts() { return std::exchange(counts_, {}); }

}  // namespace vorlan_tools
