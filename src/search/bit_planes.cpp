// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/bit_planes.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vorlan {
namespace {

static_assert(std::endian::native == std::endian::little, "eight letters are loaded as one number");

constexpr std::uint64_t kAll = ~std::uint64_t{0};
constexpr std::size_t kLettersPerLoad = 8;

// Bit `bit` of each of eight letters, the first letter lowest.
std::uint64_t gather_bits(std::uint64_t letters, int bit) {
  constexpr std::uint64_t kLowestBits = 0x0101010101010101;
  // Moves the lowest bit of byte i to bit 56 + i.
  constexpr std::uint64_t kToTopByte = 0x0102040810204080;
  return ((letters >> bit & kLowestBits) * kToTopByte) >> 56;
}

}  // namespace

BitPlanes::BitPlanes(const char* seq_begin, std::size_t seq_len, std::size_t margin)
    : margin_words_(margin / kBitsPerWord + 1) {
  const std::size_t words = seq_len / kBitsPerWord + 1;
  const std::size_t all_words = words + 2 * margin_words_;
  low_.assign(all_words, kAll);
  high_.assign(all_words, 0);
  no_base_.assign(all_words, kAll);
  for (std::size_t word = 0; word < words; ++word) {
    const std::size_t first = word * kBitsPerWord;
    fill_word(margin_words_ + word, seq_begin + first,
              std::min<std::size_t>(kBitsPerWord, seq_len - first));
  }
}

// Of the five letters only N has bit 3; its bits 1 and 2 are cleared.
void BitPlanes::fill_word(std::size_t word, const char* letters, std::size_t count) {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
  std::uint64_t no_base = 0;
  for (std::size_t i = 0; i < count; i += kLettersPerLoad) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, letters + i, std::min(kLettersPerLoad, count - i));
    low |= gather_bits(eight, 1) << i;
    high |= gather_bits(eight, 2) << i;
    no_base |= gather_bits(eight, 3) << i;
  }
  const std::uint64_t outside = count == kBitsPerWord ? 0 : kAll << count;
  low_[word] = (low & ~no_base) | outside;
  high_[word] = high & ~no_base;
  no_base_[word] = no_base | outside;
}

}  // namespace vorlan
