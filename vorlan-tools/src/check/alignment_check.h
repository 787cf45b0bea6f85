// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/edit_counts.h"
#include "check/findings.h"
#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// What an alignment, or a list of events, says about a repeat.
struct AlignmentFacts {
  EditCounts counts;
  std::int64_t bases = 0;   ///< of the sequence
  std::int64_t length = 0;  ///< of the perfect repeat
  std::string motif;        ///< its first unit; empty if it cannot be told
  std::string events;       ///< as format 1 lists them
};

/// A line of an alignment without its '-', which is put into `ungapped` unless it is the same.
std::string_view without_gaps(std::string_view line, std::string& ungapped);

/// Reads the three lines of an alignment column by column. What no alignment can show becomes a
/// finding at its line; nothing is returned then, since nothing else can be trusted. Requires
/// has_alignment().
std::optional<AlignmentFacts> read_alignment(const Repeat& repeat, const Settings& settings,
                                             Findings& findings);

/// The same from the list of events of format 1 and the bases of the repeat, without flanks.
/// Without events, `repeat` is taken for a perfect one, with Ns that are bridged. The unit is put
/// together from the bases at equal phases, which must agree. `bases` may be empty (not known): the
/// motif is empty then.
std::optional<AlignmentFacts> read_events(const Repeat& repeat, std::string_view bases,
                                          const Settings& settings, Findings& findings);

}  // namespace vorlan_tools
