// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "compare/locus_pairs.h"

namespace vorlan_tools {

/// Finds, among loci without a partner, those that lie where the other report has a locus of the
/// same unit, or the same bases in a locus of another unit, and sets their fate to kReread. If the
/// locus of the same unit has a partner, their pair is shared. Where a locus would lie is told by
/// the nearest paired locus beside it. Time: a few steps for each locus without a partner.
void mark_reread_loci(const ComparedReport& first, const ComparedReport& second, Pairing& pairing);

}  // namespace vorlan_tools
