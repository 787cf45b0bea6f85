// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/children.h"

#include <sys/wait.h>

#include <cerrno>
#include <csignal>

namespace vorlan_tools {

int wait_for(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

Children::~Children() {
  for (const auto& [child, slice] : slices_) ::kill(child, SIGTERM);
  for (const auto& [child, slice] : slices_) wait_for(child);
}

void Children::start(std::size_t slice, const Command& command) {
  slices_.emplace(vorlan_tools::start(command), slice);
}

std::optional<std::pair<std::size_t, int>> Children::take_ended() {
  for (auto at = slices_.begin(); at != slices_.end(); ++at) {
    int status = 0;
    if (::waitpid(at->first, &status, WNOHANG) != at->first) continue;
    const std::size_t slice = at->second;
    slices_.erase(at);
    return std::pair(slice, status);
  }
  return std::nullopt;
}

void Children::end_behind(std::size_t slice) {
  for (auto at = slices_.begin(); at != slices_.end();) {
    if (at->second <= slice) {
      ++at;
      continue;
    }
    ::kill(at->first, SIGTERM);
    wait_for(at->first);
    at = slices_.erase(at);
  }
}

}  // namespace vorlan_tools
