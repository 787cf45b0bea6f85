// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/canchorseq.h"

#include <algorithm>

namespace vorlan {

CAnchorSeq::CAnchorSeq(const char* sequence_begin, std::size_t sequence_length)
    : seq_begin(sequence_begin),
      seq_len(sequence_length),
      mark_buf(std::make_unique_for_overwrite<char[]>(sequence_length + 2)),
      marks(mark_buf.get() + 1) {
  reset();
}

void CAnchorSeq::reset() { std::fill_n(mark_buf.get(), seq_len + 2, kOpen); }

void CAnchorSeq::close(const Csat& sat) {
  std::fill(marks + (sat.pos_left - seq_begin), marks + (sat.pos_right - seq_begin), kClosed);
  for (const Missense& event : sat.missense) marks[event.first - seq_begin] = kOpen;
}

}  // namespace vorlan
