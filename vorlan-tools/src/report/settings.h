// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vorlan_tools {

/// The layout of the entries of a report, numbered as the option --outputFormat numbers them.
enum class Format { kPlain = 0, kExtended = 1, kGff = 2, kTable = 3, kFasta = 4 };

/// The values below are numbered as the options of vorlan number them.
enum class SearchMode { kExact = 0, kExtendExact = 1, kImperfect = 2 };
enum class NPerfectionMode { kAsMismatch = 0, kAsNeutral = 1, kAsMatch = 2 };
enum class UnitMode { kAsIs = 0, kAlphabetical = 1, kReverseComplement = 2 };
enum class SequenceMode { kNone = 0, kBases = 1, kAlignment = 2 };

/// A threshold: the larger of `constant` and intercept + slope * unit length, rounded up.
struct ThresholdRule {
  std::int32_t constant = 0;
  std::int32_t intercept = 0;
  float slope = 0;
};

/// The settings of a run, as the head of its report states them. Floats were printed with six
/// digits.
struct Settings {
  Format format = Format::kExtended;
  std::uint32_t first_sequence = 1;
  std::optional<std::uint32_t> last_sequence;  ///< absent: up to the last one
  SearchMode search_mode = SearchMode::kImperfect;
  std::optional<std::int32_t> recursion_depth;      ///< absent in exact mode
  std::optional<std::int32_t> max_score_reduction;  ///< absent: no limit, or exact mode
  std::uint32_t min_unit_length = 1;
  std::uint32_t max_unit_length = 10;
  ThresholdRule min_score;
  ThresholdRule min_length;
  float min_perfection = 0;
  float max_perfection = 100;
  bool ns_as_missense = false;
  std::int32_t ns_in_a_row = 2;
  std::optional<std::int32_t> mismatch_score;  ///< absent in exact mode
  std::optional<std::int32_t> indel_score;     ///< absent in exact mode
  bool prefer_shorter = false;
  std::int32_t flanking = 0;
  bool remove_overlapping = true;
  bool masked_file = false;
  NPerfectionMode n_perfection_mode = NPerfectionMode::kAsMismatch;
  UnitMode unit_mode = UnitMode::kReverseComplement;
  SequenceMode sequence_mode = SequenceMode::kAlignment;
  bool sequence_info_as_comment = false;  ///< stated for formats 2 and 3 only, else false
};

}  // namespace vorlan_tools
