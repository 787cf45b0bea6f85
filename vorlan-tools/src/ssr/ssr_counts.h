// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorlan_tools {

/// Loci and the bases in them; a base in several loci counts once. Loci of a sequence come in the
/// order of their starts.
class SsrCount {
 public:
  void begin_sequence() { covered_to_ = 0; }

  /// `start` and `end` from 1, both included.
  void add(std::int64_t start, std::int64_t end) {
    ++loci_;
    bases_ += std::max<std::int64_t>(end - std::max(start - 1, covered_to_), 0);
    covered_to_ = std::max(covered_to_, end);
    longest_ = std::max(longest_, end - start + 1);
  }

  std::int64_t loci() const { return loci_; }
  std::int64_t bases() const { return bases_; }
  std::int64_t longest() const { return longest_; }

 private:
  std::int64_t loci_ = 0;
  std::int64_t bases_ = 0;
  std::int64_t longest_ = 0;
  std::int64_t covered_to_ = 0;
};

/// Appends tab and `count` for a million of `bases`, with three decimals; a full stop if their
/// number is not known (negative) or 0.
void append_per_megabase(std::string& text, std::int64_t count, std::int64_t bases);

/// Loci, bases, both for a million of `of_bases`, and the longest, each behind a tab.
void append_count(std::string& text, const SsrCount& count, std::int64_t of_bases);

}  // namespace vorlan_tools
