// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/look_ahead/unit_strip.h"

namespace vorlan {
namespace {

std::uint64_t lowest(std::uint64_t bits, std::ptrdiff_t count) {
  return bits & ~(~std::uint64_t{0} << count);
}

}  // namespace

void UnitStrip::assign(const BitPlanes::Words& planes, std::ptrdiff_t begin,
                       std::ptrdiff_t length) {
  if (begin == begin_ && length == length_) return;
  begin_ = kNoUnit;
  length_ = length;
  write(planes.low, begin, low_);
  write(planes.high, begin, high_);
  begin_ = begin;
}

void UnitStrip::write(const std::uint64_t* plane, std::ptrdiff_t begin,
                      std::vector<std::uint64_t>& words) const {
  // 64 bases from phase length + 64 on, read across the end of a word.
  words.resize(static_cast<std::size_t>((length_ + 2 * kBits) / kBits + 2));
  const bool is_short = length_ < kBits;
  const std::uint64_t first = bits_at(plane, begin);
  const std::uint64_t whole_word = is_short ? repeated(first) : first;
  const std::ptrdiff_t step = kBits % length_;
  std::ptrdiff_t phase = 0;
  for (std::uint64_t& word : words) {
    const std::ptrdiff_t left = length_ - phase;
    word = is_short ? whole_word >> phase : bits_at(plane, begin + phase);
    if (left < kBits) word = lowest(word, left) | whole_word << left;
    phase += step;
    if (phase >= length_) phase -= length_;
  }
}

std::uint64_t UnitStrip::repeated(std::uint64_t bases) const {
  bases = lowest(bases, length_);
  for (std::ptrdiff_t known = length_; known < kBits; known *= 2) bases |= bases << known;
  return bases;
}

}  // namespace vorlan
