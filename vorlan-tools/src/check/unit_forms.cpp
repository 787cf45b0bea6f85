// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_forms.h"

#include <algorithm>
#include <cstddef>

#include "fasta/bases.h"
#include "fasta/other_strand.h"

// The smallest rotation is found with two candidates, first and second, that are compared byte by
// byte. Where they differ at distance k, the larger one is beaten, and so are the k rotations
// behind it: each of them has a rival behind the other candidate that is smaller in the same place.
// So every comparison moves one of three numbers on that never exceed the length together, and the
// cost is linear.
//
//     CACAAC   first 0 "CA..", second 1 "AC..": A is smaller, first moves behind second, and so on
//              until 3 "AACCAC" wins
//
// If the two agree over the whole length, they are equal rotations: the text repeats with their
// distance. Then it is a repetition of a shorter text, and only then.

namespace vorlan_tools {

namespace {

struct Rotation {
  std::size_t start;
  bool is_repetition;
};

/// `place` modulo `length`, without a division; requires place < 2 * length.
std::size_t round(std::size_t place, std::size_t length) {
  return place < length ? place : place - length;
}

Rotation find_smallest(std::string_view text) {
  const std::size_t length = text.size();
  std::size_t first = 0;
  std::size_t second = 1;
  std::size_t agreed = 0;
  while (first < length && second < length && agreed < length) {
    const auto a = static_cast<unsigned char>(text[round(first + agreed, length)]);
    const auto b = static_cast<unsigned char>(text[round(second + agreed, length)]);
    if (a == b) {
      ++agreed;
      continue;
    }
    std::size_t& beaten = a > b ? first : second;
    beaten += agreed + 1;
    if (first == second) ++second;
    agreed = 0;
  }
  return {std::min(first, second), agreed == length && length > 1};
}

}  // namespace

std::string smallest_rotation(std::string_view text) {
  const std::size_t start = find_smallest(text).start;
  std::string rotated;
  rotated.reserve(text.size());
  rotated.append(text, start).append(text, 0, start);
  return rotated;
}

bool is_primitive(std::string_view text) { return !find_smallest(text).is_repetition; }

std::string reverse_complement(std::string_view bases) {
  std::string other = other_strand(bases);
  if (holds_only_bases(other)) return other;
  for (char& base : other) base = is_base(base) ? base : '?';
  return other;
}

std::string shown_unit(std::string_view motif, UnitMode mode) {
  if (mode == UnitMode::kAsIs) return std::string(motif);
  std::string smallest = smallest_rotation(motif);
  if (mode == UnitMode::kAlphabetical) return smallest;
  std::string other = smallest_rotation(reverse_complement(motif));
  return other < smallest ? other : smallest;
}

bool fits_motif(std::string_view unit, std::string_view motif, UnitMode mode) {
  if (mode == UnitMode::kAsIs) return smallest_rotation(unit) == smallest_rotation(motif);
  return unit == shown_unit(motif, mode);
}

}  // namespace vorlan_tools
