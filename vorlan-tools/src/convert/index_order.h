// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

namespace vorlan_tools {

/// Whether rows can be indexed as they come: all of a sequence together, in the order of their
/// starts. Also tells which kind of index holds them.
class IndexOrder {
 public:
  /// Throws DataError, with advice, if the row cannot follow the one before.
  void add(std::string_view name, std::int64_t start, std::int64_t end);

  /// Plain tabix and BAI indexes end at this many bases; CSI goes on.
  bool needs_csi() const { return longest_end_ > kPlainIndexLimit; }

  static constexpr std::int64_t kPlainIndexLimit = std::int64_t{1} << 29;

 private:
  std::unordered_set<std::string> names_;
  std::string name_;
  std::int64_t last_start_ = 0;
  std::int64_t longest_end_ = 0;
};

/// The levels of a CSI index that htslib advises; 0 stands for a plain index.
constexpr int kPlainIndexShift = 0;
constexpr int kCsiShift = 14;

}  // namespace vorlan_tools
