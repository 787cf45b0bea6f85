// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The FASTA reader against the one that takes a file as lines: the bytes are a file. Records, and
// the line of a malformed one, must be the same.
//
// Limit: files of this size fit into the buffer of the reader. What stands across the end of the
// buffer is compared in fasta_reader_test.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "fasta_adapter.h"
#include "fuzz_target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Costs a megabyte, and opening a file makes it as new.
  static differential::ProductFastaReader product;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const std::optional<std::string> found = difference(product, bytes)) {
    fuzz::report_fault(*found);
  }
  return 0;
}
