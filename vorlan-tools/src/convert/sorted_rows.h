// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "io/output_file.h"

namespace vorlan_tools {

/// Rows ordered by the bytes of a sequence's name, then start, then end, then the order of their
/// arrival.
///
/// Rows are gathered in memory. Whenever they fill it, they are sorted and written to a file
/// without a name; at the end all such runs are merged. Memory is constant, the order does not
/// depend on its size, and the disk holds each row at most once.
class SortedRows {
 public:
  explicit SortedRows(std::size_t memory = kDefaultMemory);
  ~SortedRows();
  SortedRows(const SortedRows&) = delete;
  SortedRows& operator=(const SortedRows&) = delete;

  /// Throws DataError if a temporary file cannot be written.
  void add(std::string_view name, std::int64_t start, std::int64_t end, std::string_view row);

  /// Writes all rows in order. To be called once.
  void write_to(OutputFile& output);

  static constexpr std::size_t kDefaultMemory = std::size_t{64} * 1024 * 1024;

 private:
  /// Where a row lies in text_: its name, then the row itself.
  struct Entry {
    std::size_t offset;
    std::size_t name_size;
    std::size_t row_size;
    std::int64_t start;
    std::int64_t end;
  };

  std::string_view name_of(const Entry& entry) const {
    return {text_.data() + entry.offset, entry.name_size};
  }
  std::string_view row_of(const Entry& entry) const {
    return {text_.data() + entry.offset + entry.name_size, entry.row_size};
  }
  void sort();
  void spill();

  std::size_t memory_;
  std::string text_;
  std::vector<Entry> entries_;
  std::vector<int> runs_;
};

}  // namespace vorlan_tools
