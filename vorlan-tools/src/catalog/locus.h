// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/genotyper.h"

namespace vorlan_tools {

/// A repeat as genotypers want it: where its copies lie, and one copy as it stands there.
struct Locus {
  std::int64_t start = 0;  ///< from 0
  std::int64_t end = 0;    ///< excluded
  std::string motif;       ///< on the strand of the sequence, in the phase of the base at start

  std::int64_t length() const { return end - start; }
};

/// Appends the line of a locus of the sequence `name`, or for ExpansionHunter the lines of one
/// object, without what stands between objects. Coordinates are those that the genotyper expects.
void append_locus(std::string& text, Genotyper genotyper, std::string_view name,
                  const Locus& locus);

/// What stands before the first locus, between two loci, and behind the last.
std::string_view catalog_opening(Genotyper genotyper);
std::string_view catalog_separator(Genotyper genotyper);
std::string_view catalog_ending(Genotyper genotyper);

}  // namespace vorlan_tools
