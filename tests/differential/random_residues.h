// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Residues with known kinds of repeats in them, at random.
#ifndef VORLAN_TESTS_DIFFERENTIAL_RANDOM_RESIDUES_H_
#define VORLAN_TESTS_DIFFERENTIAL_RANDOM_RESIDUES_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "random.h"

namespace differential {

// Independent letters of the alphabet; a letter that occurs twice in it is twice as frequent.
std::string random_residues(Random& random, std::size_t length, std::string_view alphabet);

// The unit again and again, cut to this length.
// REQUIRES: unit is not empty.
std::string array_of(std::string_view unit, std::size_t length);

// A copy in which this share of the residues was hit by an edit: in equal parts replaced, followed
// by an inserted residue, or deleted.
std::string diverged(Random& random, std::string_view residues, int per_mille);

// Overwrites the residues with this many runs of 1 to longest N, which may meet and be cut by the
// end.
void overwrite_with_Ns(Random& random, std::string& residues, int runs, int longest);

// One sequence of exactly this length, of background and arrays in a random mixture: perfect and
// diverged arrays of units of 1 to 14 residues, arrays whose unit is an array itself, AT-rich
// stretches, few-letter stretches, N runs. Arrays often stand at the very begin or end, or are cut
// by it.
std::string random_record(Random& random, std::size_t length);

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_RANDOM_RESIDUES_H_
