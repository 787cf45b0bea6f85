// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Bytes as a search: a mode, settings, and residues in which repeats are frequent.
//
// Idea: random residues hold hardly any repeat, and a change of one of them hardly ever makes one.
// So the bytes are steps of a writer that copies a unit and makes edits on the way: three bits say
// what to do, five how much of it. Whatever the bytes are, they are a search.
//
// Example: the steps "ACAC, unit of the last 2, copy 6, delete 1, copy 5" write
// ACAC ACACAC CACAC, an array of AC with one deletion.
#ifndef VORLAN_TESTS_FUZZ_SEARCH_INPUT_H_
#define VORLAN_TESTS_FUZZ_SEARCH_INPUT_H_

#include <string>

#include "input_bytes.h"
#include "plain_search.h"
#include "search_adapter.h"

namespace fuzz {

struct SearchInput {
  differential::Mode mode = differential::Mode::kImperfect;
  reference::Settings settings;
  std::string residues;
};

// Takes all bytes. At most some hundred residues, unit lengths to 40, look-ahead depth to 6; the
// range of unit lengths, the depth and the length are cut down until a slow twin needs some
// milliseconds at most.
SearchInput read_search_input(InputBytes& bytes);

// Frees the pool of repeat records at the end of an input. A run of the product keeps it, with the
// memory of all events that its records ever held; here each input must begin alike.
class PoolOfOneInput {
 public:
  PoolOfOneInput() = default;
  ~PoolOfOneInput();
  PoolOfOneInput(const PoolOfOneInput&) = delete;
  PoolOfOneInput& operator=(const PoolOfOneInput&) = delete;
};

}  // namespace fuzz

#endif  // VORLAN_TESTS_FUZZ_SEARCH_INPUT_H_
