// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace vorlan_tools {

/// A flag that threads set and that poll() can wait for.
class Event {
 public:
  Event() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category());
  }
  ~Event() { ::close(descriptor_); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  void set() { ::eventfd_write(descriptor_, 1); }

  void reset() {
    eventfd_t count = 0;
    ::eventfd_read(descriptor_, &count);
  }

  /// Readable while the flag is set.
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace vorlan_tools
