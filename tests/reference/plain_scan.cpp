// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Marks, N and homopolymer tests of a scan. Idea and example: see the header.

#include "plain_scan.h"

#include <algorithm>

namespace reference {

void Marks::close(const Repeat& repeat) {
  for (std::size_t i = repeat.begin; i < repeat.end; ++i) open_[i + 1] = 0;
  for (const Event& event : repeat.events) open_[event.position + 1] = 1;
}

bool StretchWithN::holds_N(std::size_t begin, std::size_t unit_length) {
  if (!searched_ || next_N_ < begin) {
    next_N_ = std::min(residues_.find('N', begin), residues_.size());
    searched_ = true;
  }
  return begin + unit_length > next_N_;
}

bool is_one_repeated_residue(std::string_view unit) {
  return unit.find_first_not_of(unit.front()) == std::string_view::npos;
}

std::size_t skip_Ns(std::string_view residues, std::size_t position) {
  while (position < residues.size() && residues[position] == 'N') ++position;
  return position;
}

}  // namespace reference
