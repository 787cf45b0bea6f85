// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "compare/compared_locus.h"

namespace vorlan_tools {

/// What identifies a locus. Keys are sorted and compared by a number made from their text; loci are
/// paired only if the texts are equal, too.
struct Key {
  std::uint64_t number;
  std::size_t locus;
  bool is_second;
  bool is_reverse;  ///< read on the other strand
};

enum class KeyKind { kBothFlanks, kOneFlank };

/// Sets `text` to the flank that is read first, the unit, and, in keys with both flanks, the other
/// flank.
void set_key_text(const ComparedLocus& locus, KeyKind kind, bool is_reverse, std::string& text);

/// Whether the text with both flanks comes first in the alphabet as it is read on the other strand.
bool reads_first_on_other_strand(const ComparedLocus& locus);

/// The number of a text, the same on every machine.
std::uint64_t number_of(const std::string& text);

}  // namespace vorlan_tools
