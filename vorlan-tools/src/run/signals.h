// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <optional>

namespace vorlan_tools {

/// Signals that arrive as bytes of a descriptor instead of in the middle of the work: those that
/// ask this process to end, and the news that a child has ended. Writing to a closed pipe becomes
/// an error like any other. To be made before any thread, once.
class Signals {
 public:
  Signals();
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  /// Readable while signals wait.
  int descriptor() const { return descriptor_; }

  /// Takes the signals that wait. Returns one that asks this process to end, if there was one.
  std::optional<int> take();

 private:
  int descriptor_;
};

/// Ends this process as `signal` would have done, so that the caller sees what ended it.
[[noreturn]] void end_by_signal(int signal);

}  // namespace vorlan_tools
