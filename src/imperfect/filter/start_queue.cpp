// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/filter/start_queue.h"

#include <algorithm>
#include <cassert>

namespace vorlan {

StartQueue::StartQueue(const RecordSearch& record, std::ptrdiff_t starts, unsigned unit_length,
                       int min_score, MarkPainter& marks, const Known& known)
    : record_(record),
      starts_(starts),
      unit_length_(unit_length),
      marks_(marks),
      in_series_(known.in_series),
      are_bounded_(known.similar.are_bounded),
      filter_(record.residues(), record.planes(), unit_length, min_score, starts,
              record.accelerations()) {
  if (known.similar.starts != nullptr) similar_.emplace(*known.similar.starts);
}

bool StartQueue::next_block() {
  assert(!has_block_ || blocks_.front().is_empty());
  if (has_block_) blocks_.pop_front();
  while (!has_judged_block()) {
    pass_over_blocks();
    if (filter_.doubts() < filter_.enough_doubts() && next_ < starts_ &&
        blocks_.size() < kMostBlocks) {
      add_block();
      continue;
    }
    if (blocks_.empty()) return has_block_ = false;
    keep(filter_.look_closely());
  }
  blocks_.front().collect(blocks_.front().begin(), marks_.anchors());
  return has_block_ = true;
}

bool StartQueue::has_judged_block() const {
  return !blocks_.empty() &&
         (filter_.doubts() == 0 || filter_.first_doubt() >= blocks_.front().end());
}

void StartQueue::keep(std::span<const std::ptrdiff_t> starts) {
  auto block = blocks_.begin();
  for (const std::ptrdiff_t start : starts) {
    while (start >= block->end()) ++block;
    assert(start >= block->begin());
    block->keep(start);
  }
}

// Blocks in which no start is similar need not be looked at.
void StartQueue::pass_over_blocks() {
  if (!similar_ || next_ >= starts_) return;
  const std::ptrdiff_t word = similar_->next_word(next_);
  next_ = word == SparseStarts::kNone ? starts_ : word - word % StartBlock::kStarts;
}

void StartQueue::add_block() {
  // The last start of the block looks at the mark behind its unit.
  marks_.paint_until(record_.begin() + std::min(next_ + StartBlock::kStarts, starts_) +
                     unit_length_);
  StartBlock& block =
      blocks_.emplace_back(next_, starts_, unit_length_, marks_.anchors(), record_.planes());
  next_ = block.end();
  if (in_series_ != nullptr) {
    block.set_survivors([this](auto start) { return in_series_->survivors(unit_length_, start); });
  } else if (similar_) {
    const auto survivors = [this](auto start) { return similar_->word(start); };
    if (!are_bounded_ && filter_.can_judge()) {
      block.doubt_survivors(survivors, [this](auto start) { filter_.doubt(start); });
    } else {
      block.set_survivors(survivors);
    }
  } else if (block.has_survivors()) {
    filter_.glance(block.first_word(), block.survivors());
  }
}

}  // namespace vorlan
