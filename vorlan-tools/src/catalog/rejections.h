// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "catalog/catalog.h"
#include "io/output_file.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// Why a repeat became no locus. A repeat that several reasons exclude has the first of them.
enum class Reason { kFilter, kName, kMotif, kPeriod, kShort, kLong, kFlank, kNs, kOverlap, kTwin };
constexpr std::size_t kReasonCount = 10;

/// A repeat of the report that has been looked at: what a table of rejections tells of it.
struct Judged {
  std::int64_t start = 0;  ///< this one and `end` as in the report: from 1, both ends included
  std::int64_t end = 0;
  std::int64_t unit_length = 0;
  std::string unit;
  std::string motif;
};

/// Counts the repeats that became no loci, and writes them to a table if asked.
class Rejections {
 public:
  /// `file` is the name of the table; empty: none. Throws DataError if it cannot be made.
  Rejections(const std::string& file, const CatalogRequest& request, const GenotyperRules& rules);

  /// `name` is the name of the sequence in the report.
  void add(std::string_view name, const Judged& repeat, Reason reason);

  /// Writes what is left; nothing may be added afterwards.
  void close();

  /// Gives the closed table its name.
  void commit();

  std::uint64_t count() const;

  /// "12 longer than 100 bases, 3 overlapping a better locus"; empty if nothing was rejected.
  std::string summary() const;

 private:
  const std::string& text_of(Reason reason) const {
    return texts_[static_cast<std::size_t>(reason)];
  }

  std::array<std::string, kReasonCount> texts_;
  std::array<std::uint64_t, kReasonCount> counts_{};
  std::optional<OutputFile> table_;
  std::string row_;
};

}  // namespace vorlan_tools
