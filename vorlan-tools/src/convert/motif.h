// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "report/repeat.h"

namespace vorlan_tools {

/// One copy of the unit on the strand of the sequence, in the phase of the repeat's first base. The
/// unit that a report prints is a normal form over all rotations and both strands; other programs
/// want this one.
///
/// The unit line of an alignment repeats the unit from the first base on, so its first bases are
/// the motif:
///
///     sequence   GTGTTTGT-TG
///     match      |||| ||| ||
///     unit       GTGTGTGTGTG      unit length 2: GT, although the report prints AC
///
/// Without alignment, bases of a perfect repeat serve as well, unless an N stands in their first
/// copy. Sets `motif`, to nothing if the report does not tell.
void find_motif(const Repeat& repeat, std::string& motif);

}  // namespace vorlan_tools
