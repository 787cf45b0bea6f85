// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/filter/start_queue.h"

#include <algorithm>
#include <cassert>

namespace vorlan {

StartQueue::StartQueue(const RecordSearch& record, std::ptrdiff_t starts, unsigned unit_length,
                       int min_score, MarkPainter& marks, const SeriesSurvivors* known)
    : record_(record),
      starts_(starts),
      unit_length_(unit_length),
      marks_(marks),
      known_(known),
      filter_(record.residues(), record.planes(), unit_length, min_score, starts,
              record.accelerations()) {}

bool StartQueue::next_block() {
  assert(!has_block_ || blocks_.front().is_empty());
  if (has_block_) blocks_.pop_front();
  while (!has_judged_block()) {
    if (filter_.doubts() < filter_.enough_doubts() && next_ < starts_ &&
        blocks_.size() < kMostBlocks) {
      add_block();
      continue;
    }
    if (blocks_.empty()) return has_block_ = false;
    for (const std::ptrdiff_t start : filter_.look_closely()) block_of(start).keep(start);
  }
  blocks_.front().collect(blocks_.front().begin(), marks_.anchors());
  return has_block_ = true;
}

bool StartQueue::has_judged_block() const {
  return !blocks_.empty() &&
         (filter_.doubts() == 0 || filter_.first_doubt() >= blocks_.front().end());
}

StartBlock& StartQueue::block_of(std::ptrdiff_t start) {
  assert(start >= blocks_.front().begin() && start < blocks_.back().end());
  return blocks_[static_cast<std::size_t>((start - blocks_.front().begin()) / StartBlock::kStarts)];
}

void StartQueue::add_block() {
  // The last start of the block looks at the mark behind its unit.
  marks_.paint_until(record_.begin() + std::min(next_ + StartBlock::kStarts, starts_) +
                     unit_length_);
  StartBlock& block =
      blocks_.emplace_back(next_, starts_, unit_length_, marks_.anchors(), record_.planes());
  next_ = block.end();
  if (known_ != nullptr) {
    block.set_survivors([this](auto start) { return known_->survivors(unit_length_, start); });
  } else if (block.has_survivors()) {
    filter_.glance(block.first_word(), block.survivors());
  }
}

}  // namespace vorlan
