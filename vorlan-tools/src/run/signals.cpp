// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/signals.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace vorlan_tools {

namespace {

constexpr int kShellBase = 128;

sigset_t taken_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) sigaddset(&set, signal);
  return set;
}

}  // namespace

Signals::Signals() {
  const sigset_t set = taken_signals();
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGCHLD, SIG_DFL);  // a parent that ignores it would hide how children end
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  descriptor_ = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category());
}

Signals::~Signals() {
  ::close(descriptor_);
  const sigset_t set = taken_signals();
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

std::optional<int> Signals::take() {
  std::optional<int> end;
  signalfd_siginfo info{};
  while (::read(descriptor_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    if (info.ssi_signo != SIGCHLD) end = static_cast<int>(info.ssi_signo);
  }
  return end;
}

void end_by_signal(int signal) {
  ::signal(signal, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  ::raise(signal);
  std::_Exit(kShellBase + signal);
}

}  // namespace vorlan_tools
