// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "mask/text_masker.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "errors.h"
#include "fasta/bases.h"
#include "fasta/lines.h"

namespace vorlan_tools {

namespace {

enum class ByteKind : unsigned char { kResidue, kSkipped, kMalformed };

constexpr std::array<ByteKind, 256> byte_kinds() {
  std::array<ByteKind, 256> kinds{};
  kinds.fill(ByteKind::kMalformed);
  for (const char letter : std::string_view("ACGTUNXRYKMSWBDHVacgtunxrykmswbdhv?")) {
    kinds[static_cast<unsigned char>(letter)] = ByteKind::kResidue;
  }
  for (const char gap : std::string_view(" \t\v\f-*")) {
    kinds[static_cast<unsigned char>(gap)] = ByteKind::kSkipped;
  }
  return kinds;
}

constexpr std::array<ByteKind, 256> kByteKinds = byte_kinds();

bool is_letter(char byte) { return byte != '?'; }
char lower(char residue) {
  return is_letter(residue) ? static_cast<char>(residue | kCaseBit) : residue;
}
char upper(char residue) { return is_letter(residue) ? upper_case(residue) : residue; }

}  // namespace

void TextMasker::fail() const {
  throw DataError("The FASTA file is malformed at line " + std::to_string(line_) + ".");
}

// In nearly all genomes, nearly all lines hold nothing but plain residues: these are taken at once.
void TextMasker::mask(char* begin, const char* end) {
  char* mixed_end = begin;
  for (char* at = begin; at != end;) {
    const bool at_residue_line = place_ == Place::kResidues && at_line_start_ && !after_cr_;
    if (at_residue_line && at >= mixed_end) {
      const std::string_view lines = whole_lines({at, static_cast<std::size_t>(end - at)});
      mixed_end = at + lines.size();
      if (holds_only_plain_lines(lines)) at = take_plain_lines(at, mixed_end);
      if (at == end) return;
    }
    const char byte = *at;
    if (end_line(byte)) {
      ++at;
    } else if (place_ == Place::kResidues && !(at_line_start_ && byte == '>')) {
      at = take_residues(at, end);
    } else {
      if (place_ == Place::kHeader) header_ += byte;
      if (place_ == Place::kBeforeFirst || place_ == Place::kResidues) take_first(byte);
      at_line_start_ = after_cr_ = false;
      ++at;
    }
  }
}

// A line feed behind a carriage return belongs to the same line end.
bool TextMasker::end_line(char byte) {
  if (byte != '\n' && byte != '\r') return false;
  if (byte == '\r' || !after_cr_) {
    ++line_;
    if (place_ == Place::kHeader) end_header();
    if (place_ == Place::kComment) place_ = Place::kBeforeFirst;
  }
  after_cr_ = byte == '\r';
  at_line_start_ = true;
  return true;
}

// Up to `end`, which stands behind a line feed.
char* TextMasker::take_plain_lines(char* begin, char* end) {
  if (!style_.keeps_lower_case) std::transform(begin, end, begin, upper_case);
  while (begin != end) {
    const std::string_view rest(begin, static_cast<std::size_t>(end - begin));
    char* const line_end = begin + rest.find('\n');
    mask_residues(begin, line_end);
    begin = line_end + 1;
    ++line_;
  }
  return begin;
}

// In front of the first record, or at the '>' of another one.
void TextMasker::take_first(char byte) {
  if (byte == '>') {
    if (place_ == Place::kResidues) end_record();
    ++record_;
    header_.clear();
    place_ = Place::kHeader;
  } else if (byte == '#') {
    place_ = Place::kComment;
  } else if (kByteKinds[static_cast<unsigned char>(byte)] != ByteKind::kSkipped || byte == '-' ||
             byte == '*') {
    fail();
  }
}

char* TextMasker::take_residues(char* begin, const char* end) {
  const std::string_view part = line_part({begin, static_cast<std::size_t>(end - begin)});
  char* const line_end = begin + part.size();
  at_line_start_ = after_cr_ = false;
  if (holds_only_plain_lines(part)) {
    if (!style_.keeps_lower_case) std::transform(begin, line_end, begin, upper_case);
    mask_residues(begin, line_end);
    return line_end;
  }
  for (char* at = begin; at != line_end; ++at) {
    const ByteKind kind = kByteKinds[static_cast<unsigned char>(*at)];
    if (kind == ByteKind::kResidue) {
      *at = masked(*at);
    } else if (kind == ByteKind::kMalformed) {
      fail();
    }
  }
  return line_end;
}

// The same as masked() for each of them, but a stretch, or what lies in front of it, at once. Their
// case is what it shall be outside of repeats.
void TextMasker::mask_residues(char* begin, char* end) {
  while (begin != end) {
    if (bases_ >= stretch_.end) stretch_ = stretches_.next();
    const bool is_in_front = bases_ + 1 < stretch_.begin;
    const std::int64_t last = is_in_front ? stretch_.begin - 1 : stretch_.end;
    const std::int64_t count = std::min<std::int64_t>(end - begin, last - bases_);
    char* const part_end = begin + count;
    if (!is_in_front && style_.is_hard) {
      std::fill(begin, part_end, 'N');
    } else if (!is_in_front) {
      std::transform(begin, part_end, begin, lower);
    }
    bases_ += count;
    begin = part_end;
  }
}

char TextMasker::masked(char residue) {
  ++bases_;
  if (bases_ > stretch_.end) stretch_ = stretches_.next();
  if (bases_ < stretch_.begin) return style_.keeps_lower_case ? residue : upper(residue);
  return style_.is_hard ? 'N' : lower(residue);
}

// Reports end a header at a NUL.
void TextMasker::end_header() {
  place_ = Place::kResidues;
  bases_ = 0;
  stretches_.begin_record(record_, header_.substr(0, header_.find('\0')));
  stretch_ = stretches_.next();
}

void TextMasker::end_record() { stretches_.end_record(bases_); }

void TextMasker::finish() {
  if (place_ == Place::kHeader) end_header();
  if (place_ != Place::kResidues) throw DataError("The FASTA file holds no sequence.");
  end_record();
  stretches_.finish();
}

}  // namespace vorlan_tools
