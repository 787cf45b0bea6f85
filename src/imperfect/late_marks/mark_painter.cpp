// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/late_marks/mark_painter.h"

#include <algorithm>
#include <utility>

#include "imperfect/moves.h"

namespace vorlan {
namespace {

// Whether all edits made before the way arrives at `place` lie before the stretch [begin, end).
bool is_before(Forward, const char* place, const char* begin, const char*) { return place < begin; }
bool is_before(Backward, const char* place, const char*, const char* end) { return place > end; }

// Whether all edits made from `place` on lie behind the stretch.
bool is_behind(Forward, const char* place, const char*, const char* end) { return place >= end; }
bool is_behind(Backward, const char* place, const char* begin, const char*) {
  return place < begin;
}

// The first node from `id` on that can have an edit in [begin, end), or one a little before it.
template <class Direction>
NodeId skip_to(const StoredWays& ways, NodeId id, const char* begin, const char* end) {
  const WayForest& forest = ways.forest(Direction{});
  const auto lies_before = [&](NodeId node) {
    return is_before(Direction{}, ways.place_of(forest[node]), begin, end);
  };
  for (;;) {
    const NodeId jump = forest.jump(id);
    const NodeId next = forest.after(id);
    if (next == kNoNode) return id;
    if (jump != id && lies_before(jump)) {
      id = jump;
    } else if (lies_before(next)) {
      id = next;
    } else {
      return id;
    }
  }
}

}  // namespace

void MarkPainter::paint_until(const char* end) {
  if (end <= painted_until_) return;
  paint(painted_until_, end);
  painted_until_ = end;
}

void MarkPainter::accept(AcceptedRepeat repeat, const char* scan_position) {
  const char* begin = repeat.sat->pos_left;
  const char* end = repeat.sat->pos_right;
  if (!is_late_) {
    paint_stretch(repeat, begin, end);
    return repeat.sat->release_pending_events();
  }
  waiting_events_ += repeat.sat->missense.size;
  repeats_.push_back(std::move(repeat));
  cover(begin, end, repeats_.size() - 1);
  // The scan goes on with the next start and looks at one mark before it.
  const char* first = std::max(begin, scan_position);
  const char* last = std::min(end, painted_until_);
  if (first < last) paint_stretch(repeats_.back(), first, last);
}

void MarkPainter::make_room() {
  if (!ways_.is_full() && waiting_events_ <= kMostEventsToWait) return;
  finish();
  if (ways_.is_full()) ways_.forget();
}

void MarkPainter::finish() {
  for (const auto& [begin, stretch] : stretches_) {
    paint_stretch(repeats_[stretch.repeat], begin, stretch.end);
  }
  for (const AcceptedRepeat& repeat : repeats_) repeat.sat->release_pending_events();
  stretches_.clear();
  repeats_.clear();
  waiting_events_ = 0;
}

MarkPainter::Stretches::iterator MarkPainter::split_at(const char* position) {
  auto behind = stretches_.lower_bound(position);
  if (behind == stretches_.begin()) return behind;
  auto& [begin, stretch] = *std::prev(behind);
  if (stretch.end <= position) return behind;
  const Stretch second = stretch;
  stretch.end = position;
  return stretches_.emplace_hint(behind, position, second);
}

void MarkPainter::cover(const char* begin, const char* end, std::size_t repeat) {
  split_at(end);
  const auto first = split_at(begin);
  stretches_.erase(first, stretches_.lower_bound(end));
  stretches_.emplace(begin, Stretch{end, repeat});
}

void MarkPainter::paint(const char* begin, const char* end) {
  auto stretch = stretches_.upper_bound(begin);
  if (stretch != stretches_.begin()) --stretch;
  for (; stretch != stretches_.end() && stretch->first < end; ++stretch) {
    const char* first = std::max(begin, stretch->first);
    const char* last = std::min(end, stretch->second.end);
    if (first < last) paint_stretch(repeats_[stretch->second.repeat], first, last);
  }
}

void MarkPainter::paint_stretch(const AcceptedRepeat& repeat, const char* begin, const char* end) {
  anchors_.close(begin, end);
  for (const Missense& event : repeat.sat->missense) {
    if (event.first >= begin && event.first < end) anchors_.open(event.first);
  }
  for (const WaySegment& segment : repeat.passed_over.forward)
    open_edits<Forward>(segment, begin, end);
  for (const WaySegment& segment : repeat.passed_over.backward)
    open_edits<Backward>(segment, begin, end);
}

template <class Direction>
void MarkPainter::open_edits(const WaySegment& segment, const char* begin, const char* end) {
  const WayForest& forest = ways_.forest(Direction{});
  // Nodes behind the segment are not on the way of this repeat.
  if (is_before(Direction{}, ways_.place_of(forest[segment.to]), begin, end)) return;
  const NodeId first = skip_to<Direction>(ways_, segment.from, begin, end);
  for (NodeId id = first; id != segment.to; id = forest.after(id)) {
    const char* place = ways_.place_of(forest[id]);
    if (is_behind(Direction{}, place, begin, end)) break;
    const char* position = event_of<Direction>(forest[id].move, place).first;
    if (position >= begin && position < end) anchors_.open(position);
  }
}

}  // namespace vorlan
