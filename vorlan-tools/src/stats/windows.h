// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "report/repeat.h"
#include "stats/shown_repeats.h"

namespace vorlan_tools {

/// Repeats and covered bases along sequences, in windows of one size, in constant memory.
///
/// Window i of a sequence holds its bases from i * size to (i + 1) * size, counted from 0 and
/// half-open; the last one ends with the sequence. A repeat counts in the window of its first base;
/// a covered base counts, once, in its own.
///
///     size 4    |0  1  2  3 |4  5  6  7 |8  9
///     repeat          [A--------A]
///     repeats    1           0           0
///     covered    2           2           0
///
/// How long the sequences are is not known beforehand, so windows begin small. When there are too
/// many, the size doubles and two neighbours become one; sums stay exact. Only the longest
/// sequences are kept.
struct Window {
  std::int64_t repeats = 0;
  std::int64_t covered = 0;
  ShownRepeats longest;

  Window();
  void merge(Window&& next);
};

struct WindowedSequence {
  std::size_t index = 0;  ///< of the sequence among all of its genome, from 0
  std::int64_t length = 0;
  std::vector<Window> windows;
};

class Windows {
 public:
  static constexpr std::int64_t kFirstSize = 100;
  static constexpr std::size_t kMostInSequence = 400;
  static constexpr std::size_t kMostInAll = 1000;
  static constexpr std::size_t kMostSequences = 60;

  void begin_sequence(std::size_t index);

  /// A repeat of that sequence, in the order of the report.
  void add(const Repeat& repeat);

  /// Bases that no earlier call has covered; counted from 0, half-open, not empty.
  void cover(std::int64_t begin, std::int64_t end);

  void end_sequence(std::int64_t length);

  std::int64_t size() const { return size_; }

  /// In the order of the genome.
  const std::vector<WindowedSequence>& sequences() const { return kept_; }

  /// What was stored.
  void assign(std::int64_t size, std::vector<WindowedSequence> sequences) {
    size_ = size;
    kept_ = std::move(sequences);
  }

 private:
  Window& window_at(std::int64_t base);
  void double_size();
  void drop_shortest();
  std::size_t count() const;

  std::int64_t size_ = kFirstSize;
  WindowedSequence current_;
  std::vector<WindowedSequence> kept_;
};

}  // namespace vorlan_tools
