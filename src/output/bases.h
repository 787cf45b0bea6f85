// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdio>
#include <string_view>

#include "input/csequence_mol.h"
#include "search/csat.h"

namespace vorlan {

/// Writes bases as they are. Not through printf: a whole chromosome is longer than what it writes.
inline void write_bases(std::FILE* stream, std::string_view bases) {
  std::fwrite(bases.data(), 1, bases.size(), stream);
}

/// A repeat and the `global_flanking` bases on either side of it. Flanks are cut at the ends of the
/// sequence, never padded. The texts point into the residues.
struct FlankedRepeat {
  FlankedRepeat(const Csat& sat, const CSequence_Mol& sequence);

  std::string_view left_flank;
  std::string_view repeat;
  std::string_view right_flank;

  /// All three as one stretch.
  std::string_view whole() const {
    return {left_flank.data(), left_flank.size() + repeat.size() + right_flank.size()};
  }
};

}  // namespace vorlan
