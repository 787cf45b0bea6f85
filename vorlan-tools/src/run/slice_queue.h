// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "run/event.h"
#include "run/input_text.h"
#include "run/slice.h"
#include "run/slice_cutter.h"

namespace vorlan_tools {

/// Slices that are ready to be searched. A thread of its own cuts them, a few ahead, so that
/// neither slow input nor decompression keeps a core waiting.
class SliceQueue {
 public:
  /// Begins to cut the input `name` in `folder`, at most `ahead` slices ahead. Throws DataError if
  /// the input cannot be opened.
  SliceQueue(const std::string& name, const std::string& folder, std::uint64_t slice_size,
             std::size_t ahead);

  /// Ends the thread, also when it waits for input.
  ~SliceQueue();
  SliceQueue(const SliceQueue&) = delete;
  SliceQueue& operator=(const SliceQueue&) = delete;

  /// The next slice if one is ready.
  std::optional<Slice> take();

  /// Whether no more slices come: all were taken, or the input failed.
  bool is_exhausted();

  /// Throws what went wrong with the input, if anything, once the queue is exhausted.
  void rethrow_failure();

  /// Whether slices tell what share of the input they are.
  bool knows_size() const { return knows_size_; }

  /// Readable when something has changed; the one who waits resets it.
  Event& changed() { return changed_; }

 private:
  void cut_all();
  bool add(Slice slice);

  Event stop_;
  Event changed_;
  InputText input_;
  SliceCutter cutter_;
  bool knows_size_;
  std::size_t ahead_;
  std::mutex mutex_;
  std::condition_variable room_;
  std::deque<Slice> ready_;
  bool is_stopped_ = false;
  bool is_finished_ = false;
  std::exception_ptr failure_;
  std::thread thread_;  ///< Last: it uses all others.
};

}  // namespace vorlan_tools
