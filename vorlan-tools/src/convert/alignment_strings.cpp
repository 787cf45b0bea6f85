// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"

#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

/// Calls run(operation, length) for every stretch of columns with one operation.
template <typename Run>
void for_each_run(const Repeat& repeat, Run run) {
  const std::string& sequence = repeat.sequence_line;
  const std::string& unit = repeat.unit_line;
  std::size_t begin = 0;
  while (begin < sequence.size()) {
    const Operation operation = operation_of(sequence[begin], unit[begin]);
    std::size_t end = begin + 1;
    while (end < sequence.size() && operation_of(sequence[end], unit[end]) == operation) ++end;
    run(operation, begin, end);
    begin = end;
  }
}

bool is_aligned(Operation operation) {
  return operation == Operation::kEqual || operation == Operation::kDifferent;
}

void append_gap_run(std::string& text, char letter, std::size_t length) {
  if (length == 0) return;
  if (!text.empty() && text.back() != '=') text += ' ';
  text += letter;
  append_number(text, static_cast<std::int64_t>(length));
}

}  // namespace

AlignmentCounts count_operations(const Repeat& repeat) {
  AlignmentCounts counts;
  for (std::size_t i = 0; i < repeat.sequence_line.size(); ++i) {
    switch (operation_of(repeat.sequence_line[i], repeat.unit_line[i])) {
      case Operation::kEqual:
        ++counts.equal;
        break;
      case Operation::kDifferent:
        ++counts.different;
        break;
      case Operation::kInsertion:
        ++counts.inserted;
        break;
      case Operation::kDeletion:
        ++counts.deleted;
        break;
    }
  }
  return counts;
}

void append_cigar(std::string& text, const Repeat& repeat) {
  for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
    append_number(text, static_cast<std::int64_t>(end - begin));
    text += static_cast<char>(operation);
  });
}

void append_gap(std::string& text, const Repeat& repeat) {
  std::size_t aligned = 0;
  for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
    if (is_aligned(operation)) {
      aligned += end - begin;
      return;
    }
    append_gap_run(text, 'M', aligned);
    aligned = 0;
    append_gap_run(text, static_cast<char>(operation), end - begin);
  });
  append_gap_run(text, 'M', aligned);
}

void append_md(std::string& text, const Repeat& repeat) {
  std::int64_t equal = 0;
  for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
    const std::string_view bases =
        std::string_view(repeat.sequence_line).substr(begin, end - begin);
    if (operation == Operation::kEqual) {
      equal += static_cast<std::int64_t>(bases.size());
    } else if (operation == Operation::kDeletion) {
      append_number(text, equal);
      (text += '^') += bases;
      equal = 0;
    } else if (operation == Operation::kDifferent) {
      for (const char base : bases) {
        append_number(text, equal);
        text += base;
        equal = 0;
      }
    }
  });
  append_number(text, equal);
}

void append_query(std::string& text, const Repeat& repeat) {
  for (const char base : repeat.unit_line) {
    if (base != '-') text += base;
  }
}

}  // namespace vorlan_tools
