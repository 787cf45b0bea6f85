// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/motif.h"

namespace vorlan_tools {

namespace {

constexpr Thousandths kPerfect = 100000;

bool is_perfect(const Repeat& repeat) {
  if (repeat.mismatches) return *repeat.mismatches + *repeat.insertions + *repeat.deletions == 0;
  return repeat.perfection == kPerfect;
}

}  // namespace

void find_motif(const Repeat& repeat, std::string& motif) {
  motif.clear();
  const auto unit_length = static_cast<std::size_t>(repeat.unit_length);
  for (const char base : repeat.unit_line) {
    if (motif.size() == unit_length) break;
    if (base != '-') motif += base;
  }
  if (!repeat.has_alignment() && repeat.residues.size() >= unit_length && is_perfect(repeat)) {
    motif.assign(repeat.residues, 0, unit_length);
  }
  const bool is_whole =
      motif.size() == unit_length && motif.find_first_not_of("ACGT") == std::string::npos;
  if (!is_whole) motif.clear();
}

}  // namespace vorlan_tools
