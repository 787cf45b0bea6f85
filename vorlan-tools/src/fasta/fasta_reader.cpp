// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/fasta_reader.h"

#include <htslib/bgzf.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "errors.h"
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
  const ssize_t count = bgzf_read(file_, buffer_.data(), buffer_.size());
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
  residues_.clear();
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
  if (residues_are_ahead_) pass_residues<true>();
}

/// The first line feed in the buffer, or the end of the buffer.
std::size_t FastaReader::find_line_feed() const {
  const void* const found = std::memchr(buffer_.data() + begin_, '\n', end_ - begin_);
  return found == nullptr
             ? end_
             : static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
}

/// Most lines lie in the buffer and hold nothing but residues: these are taken at once, by a loop
/// without a way out, which needs a cycle for each byte. Of other lines, what stands in front of
/// the first other byte is taken.
template <bool kKeep>
void FastaReader::pass_letters() {
  const std::size_t size = residues_.size();
  const std::size_t line_end = find_line_feed();
  const std::string_view line(buffer_.data() + begin_, line_end - begin_);
  if (kKeep) residues_.append(line);
  char* const kept = residues_.data() + size;
  bool is_plain = true;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char residue = kResidues[static_cast<unsigned char>(line[i])];
    if (kKeep) kept[i] = residue;
    is_plain &= residue > kMalformed;
  }
  std::size_t taken = line.size();
  if (!is_plain) {
    const auto is_other = [](char byte) {
      return kResidues[static_cast<unsigned char>(byte)] <= kMalformed;
    };
    taken =
        static_cast<std::size_t>(std::find_if(line.begin(), line.end(), is_other) - line.begin());
    if (kKeep) residues_.resize(size + taken);
  }
  begin_ += taken;
}

template <bool kKeep>
void FastaReader::pass_residues() {
  residues_are_ahead_ = false;
  for (bool at_line_start = true;;) {
    if (!at_line_start) pass_letters<kKeep>();
    const int c = at_line_start ? peek() : get();
    if (c == kEnd) return;
    if (at_line_start) {
      if (c == '>') return;
      at_line_start = false;
      continue;
    }
    if (c == '\n') {
      at_line_start = true;
      continue;
    }
    const char residue = kResidues[static_cast<std::size_t>(c)];
    if (residue == kMalformed) {
      if (peek() == kEnd) return;
      fail("a residue line holds a byte that is no residue.");
    }
    if (kKeep && residue != kSkipped) residues_ += residue;
  }
}

}  // namespace vorlan_tools
