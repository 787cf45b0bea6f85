// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/windows.h"

#include <algorithm>
#include <string>

namespace vorlan_tools {

namespace {

constexpr std::size_t kShownInWindow = 3;
constexpr std::size_t kColumnsInWindow = 120;

std::size_t windows_needed(std::int64_t length, std::int64_t size) {
  return static_cast<std::size_t>((length + size - 1) / size);
}

/// Two neighbours become one.
void halve(std::vector<Window>& windows) {
  for (std::size_t i = 0; i < windows.size(); i += 2) {
    if (i + 1 < windows.size()) windows[i].merge(std::move(windows[i + 1]));
    if (i > 0) windows[i / 2] = std::move(windows[i]);
  }
  windows.resize((windows.size() + 1) / 2);
}

}  // namespace

Window::Window() : longest(Rank::kLongest, kShownInWindow, kColumnsInWindow) {}

void Window::merge(Window&& next) {
  repeats += next.repeats;
  covered += next.covered;
  longest.merge(std::move(next.longest));
}

void Windows::begin_sequence(std::size_t index) { current_ = {index, 0, {}}; }

void Windows::double_size() {
  size_ *= 2;
  halve(current_.windows);
  for (WindowedSequence& sequence : kept_) halve(sequence.windows);
}

/// The window of a base of the current sequence, counted from 0.
Window& Windows::window_at(std::int64_t base) {
  while (base / size_ >= static_cast<std::int64_t>(kMostInSequence)) double_size();
  const auto index = static_cast<std::size_t>(base / size_);
  if (index >= current_.windows.size()) current_.windows.resize(index + 1);
  return current_.windows[index];
}

void Windows::add(const Repeat& repeat) {
  Window& window = window_at(repeat.start - 1);
  ++window.repeats;
  // Names may be long, and the sequence of a window is known.
  window.longest.offer(repeat, std::string());
}

void Windows::cover(std::int64_t begin, std::int64_t end) {
  // The last window first: the size must not change on the way.
  window_at(end - 1);
  while (begin < end) {
    const std::int64_t border = std::min(end, (begin / size_ + 1) * size_);
    window_at(begin).covered += border - begin;
    begin = border;
  }
}

void Windows::end_sequence(std::int64_t length) {
  if (length > 0) window_at(length - 1);
  current_.length = length;
  current_.windows.resize(windows_needed(length, size_));
  kept_.push_back(std::move(current_));
  current_ = {};
  if (kept_.size() > kMostSequences) drop_shortest();
  while (count() > kMostInAll) double_size();
}

/// Of equally short ones the last one goes.
void Windows::drop_shortest() {
  auto shortest = kept_.begin();
  for (auto i = kept_.begin(); i != kept_.end(); ++i) {
    if (i->length <= shortest->length) shortest = i;
  }
  kept_.erase(shortest);
}

std::size_t Windows::count() const {
  std::size_t result = 0;
  for (const WindowedSequence& sequence : kept_) result += sequence.windows.size();
  return result;
}

}  // namespace vorlan_tools
