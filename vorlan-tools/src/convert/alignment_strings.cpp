// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"

#include <algorithm>
#include <string_view>

#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

std::int64_t& count_of(Operation operation, AlignmentCounts& counts) {
  switch (operation) {
    case Operation::kEqual:
      return counts.equal;
    case Operation::kDifferent:
      return counts.different;
    case Operation::kInsertion:
      return counts.inserted;
    default:
      return counts.deleted;
  }
}

bool is_aligned(Operation operation) {
  return operation == Operation::kEqual || operation == Operation::kDifferent;
}

void append_gap_run(RowText& text, char letter, std::size_t length) {
  if (length == 0) return;
  if (!text.empty() && text.back() != '=') text += ' ';
  text += letter;
  append_number(text, static_cast<std::int64_t>(length));
}

}  // namespace

AlignmentCounts count_operations(const Repeat& repeat) {
  AlignmentCounts counts;
  for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
    count_of(operation, counts) += static_cast<std::int64_t>(end - begin);
  });
  return counts;
}

void append_cigar(RowText& text, const Repeat& repeat) {
  for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
    append_number(text, static_cast<std::int64_t>(end - begin));
    text += static_cast<char>(operation);
  });
}

void append_gap(RowText& text, const Repeat& repeat) {
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

void append_md(RowText& text, const Repeat& repeat) {
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

void append_query(RowText& text, const Repeat& repeat) {
  std::string_view rest = repeat.unit_line;
  while (!rest.empty()) {
    const std::string_view bases = rest.substr(0, rest.find('-'));
    text += bases;
    rest.remove_prefix(std::min(rest.size(), bases.size() + 1));
  }
}

}  // namespace vorlan_tools
