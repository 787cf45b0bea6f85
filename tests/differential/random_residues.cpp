// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Generators of residues; see the header.

#include "random_residues.h"

#include <algorithm>

namespace differential {
namespace {

constexpr std::string_view kBases = "ACGT";

std::string random_unit(Random& random) {
  const auto length = static_cast<std::size_t>(random.between(1, 14));
  return random_residues(random, length, random.per_cent(30) ? "AT" : kBases);
}

// Some copies of a short unit and a few residues more: the unit of an array of arrays.
std::string unit_with_repeats_inside(Random& random) {
  const std::string inner = random_residues(random, 1 + random.below(4), kBases);
  return array_of(inner, inner.size() * (2 + random.below(3))) +
         random_residues(random, 1 + random.below(3), kBases);
}

std::string random_array(Random& random) {
  const std::string unit =
      random.per_cent(15) ? unit_with_repeats_inside(random) : random_unit(random);
  // From a bit more than one copy, which no search may take for a repeat, to long arrays.
  const std::size_t copies_times_4 = 5 + random.below(random.per_cent(20) ? 120 : 28);
  const std::string perfect =
      array_of(unit, std::max<std::size_t>(unit.size() * copies_times_4 / 4, 4));
  return random.per_cent(40) ? perfect : diverged(random, perfect, random.between(10, 200));
}

std::string random_background(Random& random) {
  const std::string_view alphabet =
      random.one_of<std::string_view>({"ACGT", "ACGT", "AAATTTCG", "AT", "ACG", "AAAAAC"});
  return random_residues(random, random.below(60), alphabet);
}

}  // namespace

std::string random_residues(Random& random, std::size_t length, std::string_view alphabet) {
  std::string residues(length, ' ');
  for (char& residue : residues) residue = alphabet[random.below(alphabet.size())];
  return residues;
}

std::string array_of(std::string_view unit, std::size_t length) {
  std::string residues(length, ' ');
  for (std::size_t i = 0; i < length; ++i) residues[i] = unit[i % unit.size()];
  return residues;
}

std::string diverged(Random& random, std::string_view residues, int per_mille) {
  std::string copy;
  for (const char residue : residues) {
    if (!random.per_mille(per_mille)) {
      copy += residue;
      continue;
    }
    const int edit = random.between(0, 2);
    if (edit == 1) copy += residue;
    if (edit != 2) copy += random_residues(random, 1, kBases);
  }
  return copy;
}

void overwrite_with_Ns(Random& random, std::string& residues, int runs, int longest) {
  for (int run = 0; run < runs && !residues.empty(); ++run) {
    const std::size_t begin = random.below(residues.size());
    const auto length = static_cast<std::size_t>(random.between(1, longest));
    const std::size_t end = std::min(begin + length, residues.size());
    std::fill(residues.begin() + static_cast<std::ptrdiff_t>(begin),
              residues.begin() + static_cast<std::ptrdiff_t>(end), 'N');
  }
}

std::string random_record(Random& random, std::size_t length) {
  std::string residues;
  bool array_next = random.per_cent(50);
  const std::size_t cut = random.below(8);
  while (residues.size() < length + cut) {
    residues += array_next ? random_array(random) : random_background(random);
    array_next = random.per_cent(60);
  }
  residues = residues.substr(cut, length);
  if (random.per_cent(40)) {
    overwrite_with_Ns(random, residues, random.between(1, 6), random.one_of({1, 2, 4, 12}));
  }
  return residues;
}

}  // namespace differential
