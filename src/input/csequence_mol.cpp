// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/csequence_mol.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace vorlan {
namespace {

// What a byte of a residue line stands for: a base that is stored as it is in the table, or one of
// these.
constexpr char kMalformed = 0;
constexpr char kSkipped = ' ';
constexpr char kAmbiguous = '?';

constexpr std::array<char, 256> residue_codes() {
  std::array<char, 256> codes{};
  const auto set_both_cases = [&codes](char letter, char code) {
    codes[static_cast<unsigned char>(letter)] = code;
    if (letter >= 'A' && letter <= 'Z')
      codes[static_cast<unsigned char>(letter - 'A' + 'a')] = code;
  };
  for (const char base : std::string_view("ACGT")) set_both_cases(base, base);
  set_both_cases('U', 'T');
  for (const char letter : std::string_view("NXRYKMSWBDHV?")) set_both_cases(letter, kAmbiguous);
  for (const char gap : std::string_view(" \t\n\v\f\r-*")) set_both_cases(gap, kSkipped);
  return codes;
}

constexpr std::array<char, 256> kResidueCodes = residue_codes();

// Lines are read in pieces of eight characters, one word, as long as these are bases only.
using Piece = std::uint64_t;

constexpr Piece in_each_byte(unsigned char byte) { return ~Piece{0} / 0xFF * byte; }

// Adding 0x7F sets the highest bit of a byte unless its lower bits are all 0.
constexpr Piece highest_bit_of_bytes_but(char base, Piece piece) {
  const Piece difference = piece ^ in_each_byte(static_cast<unsigned char>(base));
  constexpr Piece kLowerBits = in_each_byte(0x7F);
  return ((difference & kLowerBits) + kLowerBits) | difference;
}

constexpr bool are_bases(Piece upper_case) {
  const Piece others =
      highest_bit_of_bytes_but('A', upper_case) & highest_bit_of_bytes_but('C', upper_case) &
      highest_bit_of_bytes_but('G', upper_case) & highest_bit_of_bytes_but('T', upper_case);
  return (others & in_each_byte(0x80)) == 0;
}

// The white space of the C locale, whatever locale the process runs in.
bool is_space(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

}  // namespace

CSequence_Mol::CSequence_Mol(std::uint32_t molecule_type, std::uint32_t reserved_residues)
    : type(molecule_type) {
  residues.reserve(reserved_residues);
}

void CSequence_Mol::readFastaSequence(CFile& file) {
  header.size = 0;
  residues.size = 0;
  too_long = false;
  if (first_character_of_record(file) != '>') {
    file.set_malformed();
    return;
  }
  if (!read_header(file)) return;
  split_header();

  // A '>' ends the record only as the first character of a line; it stays for the next call.
  for (char next = file.peekchar(); !file.fail() && next != '>'; next = file.peekchar()) {
    if (type != kDna) {
      std::puts("Not implemented.");
      file.set_malformed();
      return;
    }
    read_residue_line(file);
  }
}

void CSequence_Mol::assign(const CSequence_Mol& other) {
  header.assign(other.header.view());
  name.assign(other.name.view());
  description.assign(other.description.view());
  residues.assign(other.residues.view());
}

// The first character that is neither white space nor part of a comment line.
char CSequence_Mol::first_character_of_record(CFile& file) {
  const auto next_visible = [&file] {
    char ch = file.getchar();
    while (!file.fail() && is_space(ch)) ch = file.getchar();
    return ch;
  };
  char ch = next_visible();
  while (!file.fail() && ch == '#') {
    while (file.good() && file.getchar() != '\n') {
    }
    ch = next_visible();
  }
  return ch;
}

// Returns false when the file ends right after the '>': the record then keeps the name of the
// record before it.
bool CSequence_Mol::read_header(CFile& file) {
  for (char ch = file.getchar(); ch != '\n'; ch = file.getchar()) {
    if (file.fail()) {
      if (header.size == 0) return false;
      file.clear_fail();
      return true;
    }
    header.push_back(ch);
  }
  return true;
}

// A header without a blank leaves the description of the record before in place.
void CSequence_Mol::split_header() {
  const std::string_view line = header.view();
  const std::size_t name_end = line.find(' ');
  name.assign(line.substr(0, name_end));
  if (name_end == std::string_view::npos) return;
  const std::size_t description_begin = line.find_first_not_of(' ', name_end);
  description.assign(description_begin == std::string_view::npos ? std::string_view()
                                                                 : line.substr(description_begin));
}

// The bases at the beginning of what is left of a line, in whole pieces; the rest is up to the
// caller.
void CSequence_Mol::read_bases(CFile& file) {
  constexpr std::uint32_t kSize = sizeof(Piece);
  const std::string_view text = file.buffered();
  std::size_t read = 0;
  for (; text.size() - read >= kSize && kMaxResidues - residues.size >= kSize; read += kSize) {
    std::array<char, kSize> bases;
    Piece piece = 0;
    std::memcpy(&piece, text.data() + read, kSize);
    piece &= ~in_each_byte('a' - 'A');
    if (!are_bases(piece)) break;
    std::memcpy(bases.data(), &piece, kSize);
    residues.append({bases.data(), kSize});
  }
  file.skip(read);
}

void CSequence_Mol::read_residue_line(CFile& file) {
  read_bases(file);
  for (char ch = file.getchar(); ch != '\n' && !file.fail(); ch = file.getchar()) {
    const char code = kResidueCodes[static_cast<unsigned char>(ch)];
    if (code == kSkipped) continue;
    too_long = code != kMalformed && residues.size == kMaxResidues;
    if (code == kMalformed || too_long) {
      file.set_malformed();
      return;
    }
    residues.push_back(code == kAmbiguous ? ambiguity_char : code);
  }
}

}  // namespace vorlan
