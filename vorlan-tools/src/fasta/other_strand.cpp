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

std::string other_strand(std::string_view bases) {
  std::string other(bases.rbegin(), bases.rend());
  for (char& base : other) base = kPartners[static_cast<unsigned char>(base)];
  return other;
}

}  // namespace vorlan_tools
