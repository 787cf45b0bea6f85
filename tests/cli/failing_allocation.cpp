// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Preloaded into the program, makes chosen allocations fail:
//   VORLAN_FAIL_ALLOCATION=7   the seventh
//   VORLAN_FAIL_ALLOCATION=7+  the seventh and all behind it
//   VORLAN_COUNT_ALLOCATIONS=FILE  none fails; FILE says how many there were

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

unsigned long allocations = 0;
unsigned long first_to_fail = 0;
bool later_ones_fail = false;
bool settings_read = false;

void read_settings() {
  settings_read = true;
  const char* text = std::getenv("VORLAN_FAIL_ALLOCATION");
  if (text == nullptr) return;
  char* end = nullptr;
  first_to_fail = std::strtoul(text, &end, 10);
  later_ones_fail = *end == '+';
}

bool fails() {
  if (!settings_read) read_settings();
  ++allocations;
  const bool chosen = later_ones_fail ? allocations >= first_to_fail : allocations == first_to_fail;
  if (chosen) errno = ENOMEM;
  return chosen;
}

[[gnu::destructor]] void write_count() {
  const char* name = std::getenv("VORLAN_COUNT_ALLOCATIONS");
  if (name == nullptr) return;
  const int file = ::open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || ::dprintf(file, "%lu\n", allocations) < 0) std::abort();
  ::close(file);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return fails() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, std::size_t size) { return fails() ? nullptr : __libc_realloc(old, size); }

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

}  // extern "C"
