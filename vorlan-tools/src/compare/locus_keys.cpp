// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/locus_keys.h"

#include <algorithm>

#include "fasta/other_strand.h"

namespace vorlan_tools {

namespace {

void append_flank(const ComparedLocus& locus, bool is_left, bool is_reverse, std::string& text) {
  const std::string& flank = is_left ? locus.left : locus.right;
  if (is_reverse) {
    append_other_strand(text, flank);
  } else {
    text += flank;
  }
}

}  // namespace

bool reads_first_on_other_strand(const ComparedLocus& locus) {
  // Nearly always the first few bases tell.
  const std::size_t both = std::min(locus.left.size(), locus.right.size());
  for (std::size_t i = 0; i < both; ++i) {
    const char turned = other_strand(locus.right[locus.right.size() - 1 - i]);
    if (turned != locus.left[i]) return turned < locus.left[i];
  }
  std::string text;
  std::string turned;
  set_key_text(locus, KeyKind::kBothFlanks, false, text);
  set_key_text(locus, KeyKind::kBothFlanks, true, turned);
  return turned < text;
}

void set_key_text(const ComparedLocus& locus, KeyKind kind, bool is_reverse, std::string& text) {
  text.clear();
  append_flank(locus, !is_reverse, is_reverse, text);
  text += '|';
  text += locus.unit;
  if (kind == KeyKind::kOneFlank) return;
  text += '|';
  append_flank(locus, is_reverse, is_reverse, text);
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
