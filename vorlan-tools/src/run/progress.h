// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorlan_tools {

/// How far a run has come.
struct ProgressState {
  std::uint64_t bases = 0;
  std::uint64_t records = 0;
  std::optional<double> share;      ///< of the input, from 0 to 1, if known
  double seconds = 0;               ///< since the beginning
  std::uint64_t resumed_bases = 0;  ///< of `bases`, those that an earlier run has searched
};

/// One line, e.g. "43 %, 12.3 Mbp, 17 records, 1.64 Mbp/s, 0:12 left". The rate counts what this
/// run has searched; without a known share there is no percentage and no time left.
std::string progress_text(const ProgressState& state);

/// Tells on standard error how far a run is: a bar that moves on a terminal, a line now and then
/// elsewhere, nothing at all if quiet.
class Progress {
 public:
  Progress(std::string input, bool is_quiet);

  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Tells the state if it is time to.
  void tell(ProgressState state);

  /// Removes the bar, so that a message can be written.
  void clear();

  /// Tells the last state.
  void finish(ProgressState state);

 private:
  using Clock = std::chrono::steady_clock;

  double seconds() const;
  void draw(const ProgressState& state);

  std::string input_;
  bool is_quiet_;
  bool is_terminal_;
  Clock::time_point begin_ = Clock::now();
  double next_ = 0;  ///< seconds at which to tell next
  bool is_drawn_ = false;
};

}  // namespace vorlan_tools
