// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdio>
#include <list>

#include "input/csequence_mol.h"
#include "search/csat.h"

namespace vorlan {

/// Overwrites the residues of all `sats` with 'X'. The repeats must have been reported before:
/// their texts are the same residues.
void mask_repeats(const std::list<Csat*>& sats, CSequence_Mol& sequence);

/// Writes the whole header and the residues of `sequence` as FASTA, 80 residues a line.
void write_masked_record(std::FILE* stream, CSequence_Mol& sequence);

}  // namespace vorlan
