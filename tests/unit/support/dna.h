// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "input/csequence_mol.h"

namespace vorlan {

/// A sequence made from texts. The residues have no spare memory behind them, so that a sanitizer
/// sees a read behind the last base.
class Dna : public CSequence_Mol {
 public:
  explicit Dna(std::string_view bases, std::string_view header_line = "seq")
      : CSequence_Mol(kDna, std::max(1U, static_cast<std::uint32_t>(bases.size()))) {
    for (const char base : bases) residues.push_back(base);
    header.assign(header_line);
    name.assign(header_line.substr(0, header_line.find(' ')));
  }

  /// The base with this offset, counted from 0.
  const char* at(std::ptrdiff_t offset) const { return residues.buf + offset; }
  const char* end() const { return at(residues.size); }
};

/// `text` written `copies` times.
inline std::string repeated(std::string_view text, int copies) {
  std::string result;
  for (int i = 0; i < copies; ++i) result += text;
  return result;
}

}  // namespace vorlan
