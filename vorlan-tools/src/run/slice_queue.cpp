// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/slice_queue.h"

#include <utility>

namespace vorlan_tools {

SliceQueue::SliceQueue(const std::string& name, const std::string& folder, std::uint64_t slice_size,
                       std::size_t ahead)
    : input_(name, stop_.descriptor()),
      cutter_(input_, folder, slice_size),
      knows_size_(input_.knows_size()),
      ahead_(ahead),
      thread_([this] { cut_all(); }) {}

SliceQueue::~SliceQueue() {
  {
    const std::lock_guard lock(mutex_);
    is_stopped_ = true;
  }
  stop_.set();
  room_.notify_one();
  thread_.join();
}

void SliceQueue::cut_all() {
  std::exception_ptr failure;
  try {
    for (std::optional<Slice> slice; (slice = cutter_.next());) {
      if (!add(std::move(*slice))) break;
    }
  } catch (...) {
    failure = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  failure_ = failure;
  is_finished_ = true;
  changed_.set();
}

// Returns false when nobody wants slices any more.
bool SliceQueue::add(Slice slice) {
  std::unique_lock lock(mutex_);
  room_.wait(lock, [this] { return is_stopped_ || ready_.size() < ahead_; });
  if (is_stopped_) return false;
  ready_.push_back(std::move(slice));
  changed_.set();
  return true;
}

std::optional<Slice> SliceQueue::take() {
  const std::lock_guard lock(mutex_);
  if (ready_.empty()) return std::nullopt;
  Slice slice = std::move(ready_.front());
  ready_.pop_front();
  room_.notify_one();
  return slice;
}

bool SliceQueue::is_exhausted() {
  const std::lock_guard lock(mutex_);
  return is_finished_ && ready_.empty();
}

void SliceQueue::rethrow_failure() {
  const std::lock_guard lock(mutex_);
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

}  // namespace vorlan_tools
