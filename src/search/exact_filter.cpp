// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/exact_filter.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "config/settings.h"
#include "search/start_block.h"

namespace vorlan {
namespace {

/// Longer runs are asked for only up to this length. It bounds what has to be looked at on either
/// side of a block, and a run of this length is rare enough.
constexpr std::size_t kLongestRun = 256;
constexpr std::size_t kSideWords = kLongestRun / kBitsPerWord;
constexpr std::size_t kWindowWords = StartBlock::kWords + 2 * kSideWords;

/// A block of starts with what lies on either side of it.
using Window = std::array<std::uint64_t, kWindowWords>;

std::uint64_t word_at(const Window& window, std::ptrdiff_t index) {
  return index < 0 || index >= static_cast<std::ptrdiff_t>(kWindowWords)
             ? 0
             : window[static_cast<std::size_t>(index)];
}

/// Bit i of the result is bit i + distance of `window`; distance may be negative.
Window shifted(const Window& window, std::ptrdiff_t distance) {
  const std::ptrdiff_t shift = distance & (kBitsPerWord - 1);
  const std::ptrdiff_t words = (distance - shift) / kBitsPerWord;
  Window result;
  for (std::size_t i = 0; i < kWindowWords; ++i) {
    const std::ptrdiff_t index = static_cast<std::ptrdiff_t>(i) + words;
    result[i] = bits_across(word_at(window, index), word_at(window, index + 1), shift);
  }
  return result;
}

/// The positions at which `length` set bits in a row begin. Doubles the length it knows.
Window run_begins(Window window, std::size_t length) {
  for (std::size_t known = 1; known < length;) {
    const std::size_t more = std::min(known, length - known);
    const Window later = shifted(window, static_cast<std::ptrdiff_t>(more));
    for (std::size_t i = 0; i < kWindowWords; ++i) window[i] &= later[i];
    known += more;
  }
  return window;
}

/// Each set bit and the `length` positions behind it.
Window with_followers(Window window, std::size_t length) {
  for (std::size_t known = 0; known < length;) {
    const std::size_t more = std::min(known + 1, length - known);
    const Window earlier = shifted(window, -static_cast<std::ptrdiff_t>(more));
    for (std::size_t i = 0; i < kWindowWords; ++i) window[i] |= earlier[i];
    known += more;
  }
  return window;
}

bool is_empty(const Window& window) {
  return std::all_of(window.begin(), window.end(), [](std::uint64_t word) { return word == 0; });
}

}  // namespace

ExactFilter::ExactFilter(const BitPlanes& planes, std::size_t unit_length, int min_score)
    : planes_(planes.words()),
      unit_length_(static_cast<std::ptrdiff_t>(unit_length)),
      run_length_(std::min(static_cast<std::size_t>(std::max(min_score, 0)), kLongestRun)),
      bridges_N_(!global_treat_Ns_as_missense && global_Ns_allowed_in_a_row > 0) {
  assert(planes.margin() >= margin(unit_length));
}

std::size_t ExactFilter::margin(std::size_t unit_length) {
  return unit_length + StartBlock::kStarts + kLongestRun + 2 * kBitsPerWord;
}

std::uint64_t ExactFilter::equal_pairs(std::ptrdiff_t word) const {
  const BitPlanes::Bits here{planes_.low[word], planes_.high[word], planes_.no_base[word]};
  const BitPlanes::Bits there = BitPlanes::read(planes_, word * kBitsPerWord + unit_length_);
  return BitPlanes::equal_residues(here, there, bridges_N_);
}

void ExactFilter::keep_survivors(std::ptrdiff_t first_word, std::uint64_t* starts) const {
  if (run_length_ == 0) return;
  Window window;
  for (std::size_t i = 0; i < kWindowWords; ++i) {
    window[i] = equal_pairs(first_word + static_cast<std::ptrdiff_t>(i) -
                            static_cast<std::ptrdiff_t>(kSideWords));
  }
  window = run_begins(window, run_length_);
  if (is_empty(window)) {
    std::fill_n(starts, StartBlock::kWords, std::uint64_t{0});
    return;
  }
  window = with_followers(window, run_length_);
  for (std::size_t i = 0; i < StartBlock::kWords; ++i) starts[i] &= window[kSideWords + i];
}

}  // namespace vorlan
