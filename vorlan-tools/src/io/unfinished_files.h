// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <csignal>
#include <string>

namespace vorlan_tools {

/// Files of this process that are to go when a signal ends it: no destructor runs then.

/// From now on SIGINT, SIGTERM and the other signals that end a process remove such files first;
/// the process then ends by the signal as it would have. A signal that is ignored stays so. To be
/// called once, before any file is made.
void remove_unfinished_files_at_signals();

/// Adds and takes away a file. A process can have up to 16 such files; more are not removed.
void add_unfinished_file(const std::string& path);
void forget_unfinished_file(const std::string& path);

/// While this lives, those signals wait: a file that is made meanwhile is there and known, or
/// neither.
class SignalsWait {
 public:
  SignalsWait();
  ~SignalsWait();
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;

 private:
  sigset_t before_;
};

}  // namespace vorlan_tools
