// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <optional>
#include <utility>

#include "run/child_process.h"

namespace vorlan_tools {

/// The processes at work, each with the number of its slice. None outlives this object.
class Children {
 public:
  Children() = default;
  ~Children();
  Children(const Children&) = delete;
  Children& operator=(const Children&) = delete;

  std::size_t size() const { return slices_.size(); }

  /// Starts a process for a slice. Throws DataError.
  void start(std::size_t slice, const Command& command);

  /// The slice of a process that has ended, and how, as waitpid tells; absent if all are at work.
  std::optional<std::pair<std::size_t, int>> take_ended();

  /// Ends the processes of all slices behind `slice` and waits for them.
  void end_behind(std::size_t slice);

 private:
  std::map<pid_t, std::size_t> slices_;
};

/// Waits for a process; the result is that of waitpid.
int wait_for(pid_t child);

}  // namespace vorlan_tools
