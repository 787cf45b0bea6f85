// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/fasta_reader.h"

#include <htslib/bgzf.h>

#include <algorithm>
#include <array>

#include "errors.h"
#include "fasta/bases.h"
#include "fasta/lines.h"
#include "io/open_input.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;
constexpr char kSkipped = 0;
constexpr char kMalformed = 1;

/// What becomes of each byte of a residue line.
constexpr std::array<char, 256> make_residue_table() {
  std::array<char, 256> table{};
  table.fill(kMalformed);
  const auto set = [&table](std::string_view letters, char residue) {
    for (const char letter : letters) {
      table[static_cast<unsigned char>(letter)] = residue;
      const bool is_capital = letter >= 'A' && letter <= 'Z';
      if (is_capital) table[static_cast<unsigned char>(letter + 'a' - 'A')] = residue;
    }
  };
  set("A", 'A');
  set("C", 'C');
  set("G", 'G');
  set("TU", 'T');
  set("NXRYKMSWBDHV?", 'N');
  set(" \t\v\f-*", kSkipped);
  return table;
}

constexpr std::array<char, 256> kResidues = make_residue_table();

bool is_white_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

FastaReader::FastaReader(const std::string& name)
    : name_(shown_input_name(name)), file_(open_input(name)), buffer_(kBufferSize) {}

FastaReader::FastaReader(int descriptor, const std::string& name)
    : name_(name), file_(open_input(descriptor, name)), buffer_(kBufferSize) {}

FastaReader::~FastaReader() { bgzf_close(file_); }

void FastaReader::fail(const std::string& what) const { throw LineError(name_, line_, what); }

bool FastaReader::refill() {
  const ssize_t count = read_input(file_, buffer_.data(), buffer_.size());
  if (count < 0) throw DataError("Cannot read " + name_ + ": the file is damaged or cut short.");
  begin_ = 0;
  end_ = static_cast<std::size_t>(count);
  return count > 0;
}

/// The next byte as it is, left in place.
int FastaReader::raw() {
  if (begin_ == end_ && !refill()) return kEnd;
  return static_cast<unsigned char>(buffer_[begin_]);
}

/// The next character, with every line end as one line feed.
int FastaReader::get() {
  const int c = raw();
  if (c == kEnd) return kEnd;
  ++begin_;
  if (c != '\r' && c != '\n') return c;
  if (c == '\r' && raw() == '\n') ++begin_;
  ++line_;
  return '\n';
}

int FastaReader::peek() {
  const int c = raw();
  return c == '\r' ? '\n' : c;
}

void FastaReader::skip_before_records() {
  for (;;) {
    while (is_white_space(peek())) get();
    if (peek() != '#') return;
    for (int c = get(); c != '\n' && c != kEnd;) c = get();
  }
}

bool FastaReader::next_header() {
  if (residues_are_ahead_) pass_residues<false>();
  if (number_ == 0) {
    skip_before_records();
    if (peek() != '>') fail("this is no FASTA record.");
  }
  if (peek() == kEnd) return false;
  get();
  read_header_line();
  ++number_;
  residues_are_ahead_ = true;
  return true;
}

void FastaReader::read_header_line() {
  header_.clear();
  int c = get();
  const bool is_lone = c == kEnd;
  for (; c != '\n' && c != kEnd; c = get()) header_ += static_cast<char>(c);
  header_.resize(std::min(header_.size(), header_.find('\0')));
  if (!is_lone) sequence_name_ = header_.substr(0, header_.find(' '));
}

void FastaReader::read_residues() {
  if (!residues_are_ahead_) return;
  residues_.clear();
  pass_residues<true>();
}

template <bool kKeep>
void FastaReader::pass_plain_lines(std::string_view lines) {
  begin_ += lines.size();
  const auto size = static_cast<std::ptrdiff_t>(residues_.size());
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    if (kKeep) residues_.append(line);
    lines.remove_prefix(line.size() + 1);
    ++line_;
  }
  std::transform(residues_.begin() + size, residues_.end(), residues_.begin() + size, upper_case);
}

/// Takes what lies in the buffer of the line, up to a byte that is no residue.
template <bool kKeep>
void FastaReader::pass_letters() {
  const std::string_view part = line_part({buffer_.data() + begin_, end_ - begin_});
  const std::size_t size = residues_.size();
  if (kKeep) residues_.append(part);
  std::size_t kept = size;
  std::size_t taken = 0;
  for (; taken < part.size(); ++taken) {
    const char residue = kResidues[static_cast<unsigned char>(part[taken])];
    if (residue == kMalformed) break;
    if (kKeep) residues_[kept] = residue;
    kept += residue == kSkipped ? 0 : 1;
  }
  if (kKeep) residues_.resize(kept);
  begin_ += taken;
}

template <bool kKeep>
void FastaReader::pass_line() {
  for (;;) {
    pass_letters<kKeep>();
    const int c = raw();
    if (c != kEnd && kResidues[static_cast<std::size_t>(c)] != kMalformed) continue;
    if (c != kEnd && get() != '\n' && peek() != kEnd) {
      fail("a residue line holds a byte that is no residue.");
    }
    return;
  }
}

/// In nearly all genomes, nearly all lines hold nothing but plain residues: these are taken at
/// once.
template <bool kKeep>
void FastaReader::pass_residues() {
  residues_are_ahead_ = false;
  while (peek() != kEnd && peek() != '>') {
    // The last byte in the buffer may be half of a line end.
    const std::string_view lines = whole_lines({buffer_.data() + begin_, end_ - begin_ - 1});
    if (lines.empty()) {
      pass_line<kKeep>();
    } else if (holds_only_plain_lines(lines)) {
      pass_plain_lines<kKeep>(lines);
    } else {
      const std::size_t lines_end = begin_ + lines.size();
      while (begin_ < lines_end) pass_line<kKeep>();
    }
  }
}

}  // namespace vorlan_tools
