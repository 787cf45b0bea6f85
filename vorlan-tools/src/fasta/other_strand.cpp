// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/other_strand.h"

#include <algorithm>

namespace vorlan_tools {

namespace {

char partner(char base) {
  switch (base) {
    case 'A':
      return 'T';
    case 'C':
      return 'G';
    case 'G':
      return 'C';
    case 'T':
      return 'A';
    default:
      return base;
  }
}

}  // namespace

std::string other_strand(std::string_view bases) {
  std::string other(bases.rbegin(), bases.rend());
  std::transform(other.begin(), other.end(), other.begin(), partner);
  return other;
}

}  // namespace vorlan_tools
