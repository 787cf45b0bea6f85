// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/faststring.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace vorlan {
namespace {

constexpr std::uint32_t kFirstCapacity = 4;
constexpr std::uint64_t kLargestCapacity = std::numeric_limits<std::uint32_t>::max();

std::uint32_t checked_capacity(std::uint64_t wanted) {
  if (wanted > kLargestCapacity) throw std::bad_alloc();
  return static_cast<std::uint32_t>(wanted);
}

}  // namespace

faststring::~faststring() { std::free(buf); }

void faststring::reserve(std::uint32_t wanted) {
  if (wanted <= capacity) return;
  char* grown = static_cast<char*>(std::realloc(buf, wanted));
  if (grown == nullptr) throw std::bad_alloc();
  buf = grown;
  capacity = wanted;
}

void faststring::grow() {
  const std::uint64_t doubled = std::min(std::uint64_t{capacity} * 2,
                                         std::max(kLargestCapacity, std::uint64_t{capacity} + 1));
  reserve(capacity == 0 ? kFirstCapacity : checked_capacity(doubled));
}

void faststring::assign(std::string_view text) {
  assert(text.empty() || text.data() + text.size() <= buf || text.data() >= buf + capacity);
  reserve(checked_capacity(std::uint64_t{text.size()} + 1));
  if (!text.empty()) std::memcpy(buf, text.data(), text.size());
  size = static_cast<std::uint32_t>(text.size());
}

const char* faststring::terminate() {
  reserve(checked_capacity(std::uint64_t{size} + 1));
  buf[size] = '\0';
  return buf;
}

}  // namespace vorlan
