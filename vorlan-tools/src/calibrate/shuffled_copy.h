// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calibrate/kmer_shuffle.h"

namespace vorlan_tools {

/// Bases from `first` up to `second`, counted from 0, half-open.
using Span = std::pair<std::int64_t, std::int64_t>;

/// `residues` without the bases of `spans`, which are in order and may overlap.
std::string without_spans(const std::string& residues, const std::vector<Span>& spans);

/// Shuffles the A, C, G and T of each window of so many residues (0: of the whole) among each
/// other, with words kept; each N stays in its place, and words are those of the window without its
/// N. A last window of less than half the size belongs to the one before.
void shuffle_windows(std::string& residues, std::size_t window, KmerShuffle& shuffle,
                     RandomNumbers& random);

}  // namespace vorlan_tools
