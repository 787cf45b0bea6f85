// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/locus_keys.h"

#include "fasta/other_strand.h"

namespace vorlan_tools {

void set_key_text(const ComparedLocus& locus, KeyKind kind, bool is_reverse, std::string& text) {
  text = is_reverse ? other_strand(locus.right) : locus.left;
  text += '|';
  text += locus.unit;
  if (kind == KeyKind::kOneFlank) return;
  text += '|';
  text += is_reverse ? other_strand(locus.left) : locus.right;
}

// FNV-1a: one pass, no tables.
std::uint64_t number_of(const std::string& text) {
  std::uint64_t number = 14695981039346656037U;
  for (const char byte : text) {
    number = (number ^ static_cast<unsigned char>(byte)) * 1099511628211U;
  }
  return number;
}

}  // namespace vorlan_tools
