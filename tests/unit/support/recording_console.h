// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "search/search_console.h"

namespace vorlan {

/// A console that writes down what a search tells it. A progress line is always due, or never.
class RecordingConsole {
 public:
  struct ProgressLine {
    unsigned sequence_number;
    std::string name;
    unsigned unit_length;
    char mode;

    bool operator==(const ProgressLine&) const = default;
  };

  explicit RecordingConsole(bool is_due) {
    due = is_due;
    questions = 0;
    lines.clear();
    announcements.clear();
  }

  /// The hooks. They are plain functions, so all consoles share one record.
  SearchConsole hooks() const {
    return {[] {
              ++questions;
              return due;
            },
            [](unsigned number, const char* name, unsigned unit_length, char mode) {
              lines.push_back({number, name, unit_length, mode});
            },
            [](const char* text) { announcements.emplace_back(text); }};
  }

  /// The unit lengths of the progress lines, in order.
  static std::vector<unsigned> unit_lengths() {
    std::vector<unsigned> result;
    for (const ProgressLine& line : lines) result.push_back(line.unit_length);
    return result;
  }

  static inline bool due = false;
  static inline int questions = 0;
  static inline std::vector<ProgressLine> lines;
  static inline std::vector<std::string> announcements;
};

inline std::ostream& operator<<(std::ostream& out, const RecordingConsole::ProgressLine& line) {
  return out << '#' << line.sequence_number << ' ' << line.name << ' ' << line.unit_length << "bp "
             << line.mode;
}

}  // namespace vorlan
