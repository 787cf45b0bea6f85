// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/vorlan_end.h"

#include <sys/wait.h>

#include "run/child_process.h"

namespace vorlan_tools {

bool VorlanEnd::has_status(int status) const {
  return WIFEXITED(wait_status_) && WEXITSTATUS(wait_status_) == status;
}

bool VorlanEnd::is_success() const { return has_status(0); }

bool VorlanEnd::is_malformed_input() const { return has_status(kMalformedInput); }

bool VorlanEnd::is_refusal() const {
  return has_status(kNotParsed) || has_status(kSettingsRefused) || has_status(kChoiceUnknown);
}

int VorlanEnd::status() const { return WIFEXITED(wait_status_) ? WEXITSTATUS(wait_status_) : 1; }

std::string VorlanEnd::text() const {
  if (WIFSIGNALED(wait_status_)) {
    return "was ended by signal " + std::to_string(WTERMSIG(wait_status_));
  }
  switch (const int status = WEXITSTATUS(wait_status_)) {
    case kNotEnoughMemory:
      return "had not enough memory";
    case kOutputNotWritten:
      return "could not write its output";
    case kCannotExecute:
      return "could not be executed";
    default:
      return "ended with status " + std::to_string(status);
  }
}

}  // namespace vorlan_tools
