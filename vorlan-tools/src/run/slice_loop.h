// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "io/output_file.h"
#include "run/children.h"
#include "run/destructive_calls.h"
#include "run/parts.h"
#include "run/progress.h"
#include "run/run.h"
#include "run/signals.h"
#include "run/slice.h"
#include "run/slice_queue.h"
#include "run/work_folder.h"

namespace vorlan_tools {

/// Ended because a signal asked for that.
struct Interrupted {
  int signal;
};

/// Keeps a number of processes at work until every slice is searched, and puts their reports
/// together.
class SliceLoop {
 public:
  /// Begins to cut the input. All that is handed in must outlive this object.
  SliceLoop(const RunFiles& files, const RunOptions& options, Signals& signals, WorkFolder& folder,
            const Parts& parts, OutputFile& report);

  /// Returns whether the input was well formed to its end: `report` holds all bodies then, or those
  /// up to the malformed record. Throws DataError, VorlanFailed and Interrupted.
  bool execute();

  /// The slices in order, up to a malformed one: all if masked files are made, else the malformed
  /// one only.
  const std::vector<Slice>& appended() const { return appended_; }

 private:
  struct Part {
    Slice slice;
    bool is_searched = false;
  };

  bool is_done();
  void start_slices();
  void start_search(const Slice& slice);
  void count(const Slice& slice);
  void take_ended();
  void stop_behind(std::size_t index);
  void append_finished();
  void wait();

  const RunOptions& options_;
  Signals& signals_;
  WorkFolder& folder_;
  const Parts& parts_;
  OutputFile& report_;
  bool masks_;
  Progress progress_;
  ProgressState state_;
  std::map<std::size_t, Part> waiting_;  ///< taken, not yet appended
  std::size_t taken_ = 0;                ///< slices from the queue
  std::size_t next_ = 0;                 ///< slice to append next
  std::optional<std::size_t> malformed_;
  std::vector<Slice> appended_;
  SliceQueue queue_;
  Children children_;
};

}  // namespace vorlan_tools
