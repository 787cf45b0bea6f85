// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string_view>

namespace vorlan_tools {

/// Programs that measure repeats in reads and want to be told where.
enum class Genotyper { kTrgt, kHipStr, kGangStr, kExpansionHunter, kLongTr, kAtarva, kStraglr };

/// A bound that no locus reaches.
constexpr std::int64_t kNoBound = INT64_MAX;

/// What a genotyper can take. A locus outside of these bounds ends its run, is skipped without a
/// word, or is measured wrongly, so that none is written.
struct GenotyperRules {
  std::string_view title;
  bool counts_from_one = false;  ///< both ends from 1; otherwise from 0, the end excluded
  std::int64_t min_period = 1;
  std::int64_t max_period = kNoBound;
  std::int64_t min_length = 1;  ///< in bases of the reference
  std::int64_t max_length = kNoBound;
  std::int64_t flank = 0;                      ///< bases that must follow on both sides
  std::int64_t max_ns_in_flanks = kNoBound;    ///< of both flanks together
  bool needs_whole_units = false;              ///< the length must be a multiple of the period
  std::string_view not_in_names = "\t\r\v\f";  ///< bytes that a name of a sequence must not hold
  std::string_view not_ahead_of_names = "#";   ///< bytes that a name must not begin with
};

const GenotyperRules& rules_of(Genotyper genotyper);

}  // namespace vorlan_tools
