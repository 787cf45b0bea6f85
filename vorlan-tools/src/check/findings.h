// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "io/output_file.h"

namespace vorlan_tools {

/// What does not hold in a report: one line each, "REPORT:LINE: FACT".
class Findings {
 public:
  /// Lines go to `output`; at most `limit` of them (0: all).
  Findings(OutputFile& output, std::string report, std::uint64_t limit)
      : output_(output), report_(std::move(report)), limit_(limit) {}

  void add(std::uint64_t line, const std::string& fact) {
    if (is_full()) return;
    ++count_;
    output_.write(report_ + ":" + std::to_string(line) + ": " + fact + "\n");
  }

  /// "WHAT is STATED, must be TRUE", unless they are equal.
  template <typename Value>
  void expect(std::uint64_t line, const char* what, const Value& stated, const Value& must) {
    if (stated != must) [[unlikely]]
      add_difference(line, what, stated, must);
  }

  std::uint64_t count() const { return count_; }

  /// Whether no more is wanted.
  bool is_full() const { return limit_ != 0 && count_ >= limit_; }

 private:
  /// Kept out of the callers, which would not be compiled into their loops with this.
  template <typename Value>
  [[gnu::noinline]] void add_difference(std::uint64_t line, const char* what, const Value& stated,
                                        const Value& must) {
    add(line, std::string(what) + " is " + text_of(stated) + ", must be " + text_of(must));
  }

  static std::string text_of(std::int64_t number) { return std::to_string(number); }
  static std::string text_of(const std::string& text) { return "\"" + text + "\""; }

  OutputFile& output_;
  std::string report_;
  std::uint64_t limit_;
  std::uint64_t count_ = 0;
};

}  // namespace vorlan_tools
