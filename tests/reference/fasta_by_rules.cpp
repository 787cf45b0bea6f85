// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Goes through the whole text once, with a position and nothing else. Idea and example: see the
// header.

#include "fasta_by_rules.h"

#include <algorithm>
#include <utility>

namespace reference {
namespace {

constexpr char kMalformed = '!';
constexpr char kSkipped = '-';

bool is_white_space(char c) { return std::string_view(" \t\n\v\f\r").find(c) < 6; }

std::string with_uniform_line_ends(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool ends_in_the_next_byte =
        bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n';
    if (ends_in_the_next_byte) continue;
    text += bytes[i] == '\r' ? '\n' : bytes[i];
  }
  return text;
}

// One past the end of the line that holds `at`, its line end included.
std::size_t after_line(const std::string& text, std::size_t at) {
  const std::size_t line_end = text.find('\n', at);
  return line_end == std::string::npos ? text.size() : line_end + 1;
}

std::size_t line_number(const std::string& text, std::size_t at) {
  return 1 + static_cast<std::size_t>(std::count(text.data(), text.data() + at, '\n'));
}

// The first character that is neither white space nor in a comment.
std::size_t skip_preamble(const std::string& text) {
  std::size_t at = 0;
  while (at < text.size() && (is_white_space(text[at]) || text[at] == '#')) {
    at = text[at] == '#' ? after_line(text, at) : at + 1;
  }
  return at;
}

// The residue that a character of the file stands for, or kSkipped, or kMalformed.
char residue_for(char c) {
  if (is_white_space(c) || c == '-' || c == '*') return kSkipped;
  const char upper = 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  switch (upper) {
    case 'A':
    case 'C':
    case 'G':
    case 'T':
      return upper;
    case 'U':
      return 'T';
    default:
      return std::string_view("NXRYKMSWBDHV?").find(upper) != std::string_view::npos ? 'N'
                                                                                     : kMalformed;
  }
}

// Splits at the first blank; only the space character is one. Without a blank the description is
// left alone.
void split_header(FastaRecord& record) {
  const std::string& header = record.header;
  const std::size_t blank = header.find(' ');
  record.name = header.substr(0, blank);
  if (blank == std::string::npos) return;
  const std::size_t rest = header.find_first_not_of(' ', blank);
  record.description = rest == std::string::npos ? "" : header.substr(rest);
}

FastaFile malformed_at(const std::string& text, std::size_t at, std::vector<FastaRecord> records) {
  return {std::move(records), true, line_number(text, at)};
}

}  // namespace

FastaFile read_fasta_by_rules(std::string_view bytes) {
  const std::string text = with_uniform_line_ends(bytes);
  std::vector<FastaRecord> records;
  std::size_t at = skip_preamble(text);
  if (at == text.size() || text[at] != '>') return malformed_at(text, at, records);
  FastaRecord record;  // name and description pass from one record to the next
  while (at < text.size()) {
    const std::size_t header_begin = at + 1;
    const bool lone = header_begin == text.size();
    const std::size_t header_end = std::min(text.find('\n', header_begin), text.size());
    record.header = text.substr(header_begin, header_end - header_begin);
    record.residues.clear();
    if (!lone) split_header(record);
    bool at_line_begin = true;
    for (at = after_line(text, header_begin);
         at < text.size() && !(at_line_begin && text[at] == '>'); ++at) {
      const char residue = residue_for(text[at]);
      const bool last_byte = at + 1 == text.size();
      if (residue == kMalformed && !last_byte) return malformed_at(text, at, records);
      if (residue != kMalformed && residue != kSkipped) record.residues += residue;
      at_line_begin = text[at] == '\n';
    }
    records.push_back(record);
  }
  return {records, false, 0};
}

}  // namespace reference
