// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "calibrate/shuffled_copy.h"

#include <algorithm>

namespace vorlan_tools {

namespace {

void shuffle_part(std::string& residues, std::size_t begin, std::size_t end, KmerShuffle& shuffle,
                  RandomNumbers& random) {
  std::string bases;
  for (std::size_t i = begin; i < end; ++i) {
    if (residues[i] != 'N') bases += residues[i];
  }
  shuffle.shuffle(bases, random);
  std::size_t taken = 0;
  for (std::size_t i = begin; i < end; ++i) {
    if (residues[i] != 'N') residues[i] = bases[taken++];
  }
}

}  // namespace

std::string without_spans(const std::string& residues, const std::vector<Span>& spans) {
  std::string kept;
  std::size_t at = 0;
  for (const Span& span : spans) {
    const auto begin = static_cast<std::size_t>(span.first);
    if (begin > at) kept.append(residues, at, begin - at);
    at = std::max(at, static_cast<std::size_t>(span.second));
  }
  if (at < residues.size()) kept.append(residues, at);
  return kept;
}

void shuffle_windows(std::string& residues, std::size_t window, KmerShuffle& shuffle,
                     RandomNumbers& random) {
  if (window == 0) window = std::max<std::size_t>(residues.size(), 1);
  for (std::size_t begin = 0; begin < residues.size();) {
    const std::size_t left = residues.size() - begin;
    const std::size_t size = left < window + window / 2 ? left : window;
    shuffle_part(residues, begin, begin + size, shuffle, random);
    begin += size;
  }
}

}  // namespace vorlan_tools
