// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/other_strand.h"

#include <array>
#include <cstddef>

namespace vorlan_tools {

namespace {

constexpr std::array<char, 256> make_partners() {
  std::array<char, 256> partners{};
  for (std::size_t byte = 0; byte < partners.size(); ++byte) {
    partners[byte] = static_cast<char>(byte);
  }
  partners['A'] = 'T';
  partners['C'] = 'G';
  partners['G'] = 'C';
  partners['T'] = 'A';
  return partners;
}

constexpr std::array<char, 256> kPartners = make_partners();

}  // namespace

char other_strand(char base) { return kPartners[static_cast<unsigned char>(base)]; }

std::string other_strand(std::string_view bases) {
  std::string other;
  append_other_strand(other, bases);
  return other;
}

void append_other_strand(std::string& text, std::string_view bases) {
  const std::size_t size = text.size();
  text.append(bases.rbegin(), bases.rend());
  for (std::size_t i = size; i < text.size(); ++i) text[i] = other_strand(text[i]);
}

}  // namespace vorlan_tools
