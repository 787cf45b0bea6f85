// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

#include "report/settings.h"

namespace vorlan_tools {

/// The alphabetically smallest rotation of `text`. Linear.
std::string smallest_rotation(std::string_view text);

/// Whether `text` is no repetition of a shorter text. Linear.
bool is_primitive(std::string_view text);

/// The other strand of a unit, as reports show it: what is no A, C, G or T becomes '?'.
std::string reverse_complement(std::string_view bases);

/// The unit that a report shows for a repeat with this motif: itself, its smallest rotation, or the
/// smallest of its rotations and those of its reverse complement.
std::string shown_unit(std::string_view motif, UnitMode mode);

/// Whether `unit` can be shown for a repeat with this motif. As found, it may begin at any phase.
bool fits_motif(std::string_view unit, std::string_view motif, UnitMode mode);

}  // namespace vorlan_tools
