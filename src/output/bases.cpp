// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/bases.h"

#include <algorithm>

#include "config/settings.h"

namespace vorlan {

FlankedRepeat::FlankedRepeat(const Csat& sat, const CSequence_Mol& sequence) {
  const std::string_view residues = sequence.residues.view();
  const auto begin = static_cast<std::size_t>(sat.pos_left - residues.data());
  const auto end = static_cast<std::size_t>(sat.pos_right - residues.data());
  const auto flanking = static_cast<std::size_t>(global_flanking);
  const std::size_t left = begin - std::min(begin, flanking);
  left_flank = residues.substr(left, begin - left);
  repeat = residues.substr(begin, end - begin);
  right_flank = residues.substr(end, flanking);
}

}  // namespace vorlan
