// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/canchorseq.h"

#include <algorithm>

namespace vorlan {
namespace {

constexpr std::uint64_t kAllOpen = ~std::uint64_t{0};

/// The last start with room may be the first of its word, and the word is read whole.
constexpr std::size_t kWordsBehind = 3;

}  // namespace

CAnchorSeq::CAnchorSeq(const char* seq_begin, std::size_t seq_len)
    : seq_begin_(seq_begin),
      words_(kWordsBefore + seq_len / kBitsPerWord + kWordsBehind, kAllOpen) {}

void CAnchorSeq::reset() { std::fill(words_.begin(), words_.end(), kAllOpen); }

void CAnchorSeq::close(const char* begin, const char* end) {
  if (begin == end) return;
  const std::size_t first = bit_of(begin);
  const std::size_t last = bit_of(end) - 1;
  const std::uint64_t open_before = ~(kAllOpen << first % kBitsPerWord);
  const std::uint64_t open_behind = (kAllOpen << 1) << last % kBitsPerWord;
  const std::size_t first_word = first / kBitsPerWord;
  const std::size_t last_word = last / kBitsPerWord;
  if (first_word == last_word) {
    words_[first_word] &= open_before | open_behind;
    return;
  }
  words_[first_word] &= open_before;
  std::fill(words_.begin() + static_cast<std::ptrdiff_t>(first_word) + 1,
            words_.begin() + static_cast<std::ptrdiff_t>(last_word), std::uint64_t{0});
  words_[last_word] &= open_behind;
}

void CAnchorSeq::close(const Csat& sat) {
  close(sat.pos_left, sat.pos_right);
  for (const Missense& event : sat.missense) open(event.first);
}

}  // namespace vorlan
