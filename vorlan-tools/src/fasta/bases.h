// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vorlan_tools {

/// A, C, G or T; FastaReader delivers nothing else but N.
constexpr bool is_base(char c) { return c == 'A' || c == 'C' || c == 'G' || c == 'T'; }

/// 0 if `c` is one of the letters, else how far the nearest of them is. A loop over such numbers is
/// compiled into one over 16 letters at once, which one over comparisons with several letters is
/// not.
template <char... kLetters>
constexpr unsigned char distance_from(char c) {
  unsigned char nearest = UINT8_MAX;
  ((nearest = std::min(nearest, static_cast<unsigned char>(c ^ kLetters))), ...);
  return nearest;
}

/// Whether no other letters stand in a text. Nearly all texts have none, so that the loop has no
/// way out.
template <char... kLetters>
constexpr bool holds_only(std::string_view text) {
  unsigned char farthest = 0;
  for (const char c : text) farthest = std::max(farthest, distance_from<kLetters...>(c));
  return farthest == 0;
}

constexpr bool holds_only_bases(std::string_view text) {
  return holds_only<'A', 'C', 'G', 'T'>(text);
}

constexpr bool holds_only_bases_or_ns(std::string_view text) {
  return holds_only<'A', 'C', 'G', 'T', 'N'>(text);
}

constexpr char kCaseBit = 0x20;

/// Of a letter; a line feed stays one.
constexpr char upper_case(char letter) { return static_cast<char>(letter & ~kCaseBit); }

/// Whether nothing but A, C, G, T and N, in upper or lower case, and line feeds stand there, as in
/// nearly all of a genome.
constexpr bool holds_only_plain_lines(std::string_view text) {
  unsigned char farthest = 0;
  for (const char c : text) {
    const unsigned char distance = distance_from<'A', 'C', 'G', 'T', 'N'>(upper_case(c));
    farthest = std::max(farthest, std::min(distance, distance_from<'\n'>(c)));
  }
  return farthest == 0;
}

}  // namespace vorlan_tools
