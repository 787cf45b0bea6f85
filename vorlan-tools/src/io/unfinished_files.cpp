// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/unfinished_files.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstring>

namespace vorlan_tools {

namespace {

constexpr std::array kEndingSignals = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ};

/// A handler may neither allocate nor wait for a lock: names stand in fixed places, and a name is
/// looked at only between `is_set` and `is_taken`.
struct Place {
  std::atomic<bool> is_taken = false;
  std::atomic<bool> is_set = false;
  std::array<char, PATH_MAX> path{};
};

std::array<Place, 16> places;
pid_t owner = 0;

sigset_t ending_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kEndingSignals) sigaddset(&set, signal);
  return set;
}

/// The signal is blocked while this runs, and has its usual effect again: raised once more, it ends
/// the process on return. A child that has not yet become another program must leave our files.
extern "C" void remove_and_end(int signal) {
  if (::getpid() == owner) {
    for (const Place& place : places) {
      if (place.is_set) ::unlink(place.path.data());
    }
  }
  ::raise(signal);
}

}  // namespace

void remove_unfinished_files_at_signals() {
  owner = ::getpid();
  struct sigaction action {};
  action.sa_handler = remove_and_end;
  action.sa_mask = ending_signals();
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : kEndingSignals) {
    struct sigaction before {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_DFL) ::sigaction(signal, &action, nullptr);
  }
}

void add_unfinished_file(const std::string& path) {
  if (path.size() >= PATH_MAX) return;
  for (Place& place : places) {
    if (place.is_taken.exchange(true)) continue;
    std::memcpy(place.path.data(), path.c_str(), path.size() + 1);
    place.is_set = true;
    return;
  }
}

void forget_unfinished_file(const std::string& path) {
  for (Place& place : places) {
    if (!place.is_set || path != place.path.data()) continue;
    place.is_set = false;
    place.is_taken = false;
  }
}

SignalsWait::SignalsWait() {
  const sigset_t set = ending_signals();
  ::pthread_sigmask(SIG_BLOCK, &set, &before_);
}

SignalsWait::~SignalsWait() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace vorlan_tools
