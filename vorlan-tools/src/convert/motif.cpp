// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/motif.h"

#include "fasta/bases.h"

namespace vorlan_tools {

namespace {

constexpr Thousandths kPerfect = 100000;

bool is_perfect(const Repeat& repeat) {
  if (repeat.mismatches) return *repeat.mismatches + *repeat.insertions + *repeat.deletions == 0;
  return repeat.perfection == kPerfect;
}

/// The first `count` letters of `line` that are no gap, or all there are. Nearly always no gap
/// stands among them.
void take_bases(const std::string& line, std::size_t count, std::string& bases) {
  bases.assign(line, 0, count);
  if (bases.find('-') == std::string::npos) return;
  bases.clear();
  for (const char base : line) {
    if (bases.size() == count) break;
    if (base != '-') bases += base;
  }
}

}  // namespace

void find_motif(const Repeat& repeat, std::string& motif) {
  const auto unit_length = static_cast<std::size_t>(repeat.unit_length);
  take_bases(repeat.unit_line, unit_length, motif);
  if (!repeat.has_alignment() && repeat.residues.size() >= unit_length && is_perfect(repeat)) {
    motif.assign(repeat.residues, 0, unit_length);
  }
  if (motif.size() != unit_length || !holds_only_bases(motif)) motif.clear();
}

}  // namespace vorlan_tools
