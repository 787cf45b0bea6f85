// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/repeat.h"

namespace vorlan_tools {

/// A repeat that is shown with its alignment.
struct ShownRepeat {
  std::string sequence;
  std::int64_t start = 0;  ///< from 1, inclusive, as in the report
  std::int64_t end = 0;
  std::int64_t unit_length = 0;
  std::string unit;
  std::int64_t bases = 0;
  Thousandths copies = 0;
  Thousandths perfection = 0;
  std::optional<std::int64_t> score;
  std::int64_t columns = 0;  ///< of the whole alignment; `rows` may be shorter
  /// Sequence, matches, perfect repeat; the bases alone, or nothing, where that is all the report
  /// has.
  std::vector<std::string> rows;
};

/// Takes over what is shown of a repeat, with at most `columns` columns of its alignment.
ShownRepeat shown(const Repeat& repeat, const std::string& sequence, std::size_t columns);

/// Which of two repeats comes first in a list.
enum class Rank {
  kLongest,       ///< more bases
  kMostDiverged,  ///< less perfection, then more bases
};

/// The first few of all repeats that were offered, in order. Of equals the one offered first wins.
class ShownRepeats {
 public:
  ShownRepeats(Rank rank, std::size_t size, std::size_t columns)
      : rank_(rank), size_(size), columns_(columns) {}

  void offer(const Repeat& repeat, const std::string& sequence);

  /// Takes those of another list in, as if they had been offered after these.
  void merge(ShownRepeats&& other);

  const std::vector<ShownRepeat>& list() const { return list_; }

  /// For lists that were stored: in their order.
  void assign(std::vector<ShownRepeat> list) { list_ = std::move(list); }

 private:
  template <typename Candidate>
  std::vector<ShownRepeat>::iterator place_of(const Candidate& candidate);

  Rank rank_;
  std::size_t size_;
  std::size_t columns_;
  std::vector<ShownRepeat> list_;
};

}  // namespace vorlan_tools
