// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/catalog.h"
#include "catalog/locus.h"
#include "io/output_file.h"

namespace vorlan_tools {

/// A catalogue that appears when it is whole, with its tabix index if asked.
class LocusFile {
 public:
  /// Throws UsageError if there can be no index, DataError if the file cannot be made.
  explicit LocusFile(const CatalogRequest& request);

  /// Loci come in the order of their sequences and starts.
  void write(std::string_view name, const Locus& locus);

  void finish();

  std::uint64_t count() const { return count_; }

 private:
  const CatalogRequest& request_;
  OutputFile file_;
  std::uint64_t count_ = 0;
  std::int64_t longest_end_ = 0;
  std::string text_;
};

}  // namespace vorlan_tools
