// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// A whole search against its slow twin: the same repeats with the same scores, counts and events,
// with and without overlap removal.

#include <cstddef>
#include <optional>
#include <string>

#include "fuzz_target.h"
#include "search_adapter.h"
#include "search_input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::InputBytes bytes(data, size);
  const fuzz::SearchInput input = fuzz::read_search_input(bytes);
  const fuzz::PoolOfOneInput pool;
  differential::ProductSearch product;
  const std::optional<std::string> found = difference(
      product, input.mode, input.residues, input.settings, differential::Engines::kApart);
  if (found) fuzz::report_fault(*found);
  return 0;
}
