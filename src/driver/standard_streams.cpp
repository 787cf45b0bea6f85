// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace vorlan {

// A new descriptor is always the lowest that is free. A folder stands in for the closed stream: it
// can be written to neither through the descriptor nor when it is opened again by its device name.
void keep_output_descriptors() {
  const bool input_is_closed = ::fcntl(STDIN_FILENO, F_GETFD) < 0;
  int descriptor = 0;
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/", O_RDONLY);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
  if (input_is_closed) ::close(STDIN_FILENO);
}

void let_writes_fail_at_a_size_limit() { std::signal(SIGXFSZ, SIG_IGN); }

}  // namespace vorlan
