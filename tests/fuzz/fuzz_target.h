// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// What a fuzz target is: one function that libFuzzer calls with bytes, again and again, and that
// the corpus runner calls once for each file of the committed corpus.
//
// A target keeps no state from one call to the next that could change what it finds, so that the
// bytes of a fault are enough to see it again.
#ifndef VORLAN_TESTS_FUZZ_FUZZ_TARGET_H_
#define VORLAN_TESTS_FUZZ_FUZZ_TARGET_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Defined by each target. Returns 0; a fault ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Tells what is wrong with the input at hand and ends the process in the way that libFuzzer and
// CTest take for a failure.
[[noreturn]] inline void report_fault(const std::string& text) {
  std::fprintf(stderr, "FAULT: %s\n", text.c_str());
  std::abort();
}

}  // namespace fuzz

#endif  // VORLAN_TESTS_FUZZ_FUZZ_TARGET_H_
