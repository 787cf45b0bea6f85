// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string_view>

#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// The functions below read one line each and set the fields of `repeat` that the line states; the
/// others keep what they hold. They return false if the line is not what vorlan writes there.
/// Paddings are not compared. No function allocates once the strings of `repeat` have grown.

/// An entry of format 0 or 1 without the lines that follow.
bool read_own_entry(std::string_view line, const Settings& settings, Repeat& repeat);

/// The line of events of format 1, "Missense: ".
bool read_events_line(std::string_view line, Repeat& repeat);

/// A row of format 2 or 3; `name` becomes the name of the sequence, a part of `line`.
bool read_gff_row(std::string_view line, Repeat& repeat, std::string_view& name);
bool read_table_row(std::string_view line, const Settings& settings, Repeat& repeat,
                    std::string_view& name);

/// The first line of an entry of format 4, and the second, the fragment.
bool read_fasta_header(std::string_view line, Repeat& repeat, std::string_view& name);
bool read_fragment(std::string_view line, const Settings& settings, Repeat& repeat);

/// The line with the bases of formats 0 and 1 (SequenceMode::kBases).
bool read_bases_line(std::string_view line, const Settings& settings, Repeat& repeat);

/// The lines of an alignment, in their order; the flanks are taken off.
bool read_sequence_line(std::string_view line, const Settings& settings, Repeat& repeat);
bool read_match_line(std::string_view line, const Settings& settings, Repeat& repeat);
bool read_unit_line(std::string_view line, const Settings& settings, Repeat& repeat);

}  // namespace vorlan_tools
