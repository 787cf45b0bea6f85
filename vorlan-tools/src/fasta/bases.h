// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string_view>

namespace vorlan_tools {

/// A, C, G or T; FastaReader delivers nothing else but N.
constexpr bool is_base(char c) { return c == 'A' || c == 'C' || c == 'G' || c == 'T'; }

/// Whether all letters are bases. Nearly all texts are, so that the loop has no way out: it looks
/// at many letters at once.
constexpr bool holds_only_bases(std::string_view text) {
  bool is_so = true;
  for (const char c : text) is_so &= is_base(c);
  return is_so;
}

}  // namespace vorlan_tools
