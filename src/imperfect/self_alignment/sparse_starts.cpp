// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/self_alignment/sparse_starts.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>
#include <utility>

namespace vorlan {
namespace {

/// Bits from an unaligned position on, as parts of two words.
struct TwoWords {
  std::uint32_t index;
  std::uint64_t low;
  std::uint64_t high;
};

TwoWords aligned(std::ptrdiff_t first, std::uint64_t bits) {
  if (first < 0) {
    bits = first > -kBitsPerWord ? bits >> -first : 0;
    first = 0;
  }
  const std::ptrdiff_t shift = first % kBitsPerWord;
  return {static_cast<std::uint32_t>(first / kBitsPerWord), bits << shift,
          (bits >> 1) >> (kBitsPerWord - 1 - shift)};
}

}  // namespace

void SparseStarts::add_word(std::uint32_t index, std::uint64_t bits) {
  if (bits == 0) return;
  if (!indices_.empty() && indices_.back() == index) {
    bits_.back() |= bits;
    return;
  }
  indices_.push_back(index);
  bits_.push_back(bits);
}

void SparseStarts::add_rising(std::ptrdiff_t first, std::uint64_t bits) {
  const TwoWords words = aligned(first, bits);
  add_word(words.index, words.low);
  add_word(words.index + 1, words.high);
}

void SparseStarts::add_falling(std::ptrdiff_t first, std::uint64_t bits) {
  const TwoWords words = aligned(first, bits);
  add_word(words.index + 1, words.high);
  add_word(words.index, words.low);
}

void SparseStarts::reverse() {
  std::reverse(indices_.begin(), indices_.end());
  std::reverse(bits_.begin(), bits_.end());
}

void SparseStarts::unite(const SparseStarts& other) {
  SparseStarts united;
  std::size_t i = 0;
  for (std::size_t j = 0; j < other.words(); ++j) {
    while (i < words() && indices_[i] < other.indices_[j]) {
      united.add_word(indices_[i], bits_[i]);
      ++i;
    }
    united.add_word(other.indices_[j], other.bits_[j]);
    if (i < words() && indices_[i] == other.indices_[j]) {
      united.add_word(indices_[i], bits_[i]);
      ++i;
    }
  }
  for (; i < words(); ++i) united.add_word(indices_[i], bits_[i]);
  *this = std::move(united);
}

void SparseStarts::subtract(const SparseStarts& other) {
  Reader reader(other);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < words(); ++i) {
    const std::uint64_t bits = bits_[i] & ~reader.word(indices_[i] * kBitsPerWord);
    if (bits == 0) continue;
    indices_[kept] = indices_[i];
    bits_[kept++] = bits;
  }
  indices_.resize(kept);
  bits_.resize(kept);
}

std::size_t SparseStarts::count() const {
  return std::transform_reduce(
      bits_.begin(), bits_.end(), std::size_t{0}, std::plus(),
      [](std::uint64_t word) { return static_cast<std::size_t>(std::popcount(word)); });
}

std::ptrdiff_t SparseStarts::Reader::next_word(std::ptrdiff_t position) {
  while (next_ < starts_->words() && starts_->indices_[next_] * kBitsPerWord < position) ++next_;
  return next_ < starts_->words() ? starts_->indices_[next_] * kBitsPerWord : kNone;
}

}  // namespace vorlan
