// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/alignment_display.h"

#include <algorithm>
#include <cassert>

#include "config/settings.h"

namespace vorlan {

AlignmentDisplay::AlignmentDisplay(const Csat& sat, const FlankedRepeat& bases) {
  assert(std::is_sorted(sat.missense.begin(), sat.missense.end(), Csat::lessThan_missense));
  const bool has_flanks = global_flanking != 0;
  reserve(static_cast<std::uint32_t>(bases.whole().size()) + sat.deletions + 2);
  if (has_flanks) {
    add_flank(bases.left_flank);
    add_column(':', ' ', ' ');
  }
  add_repeat(sat);
  if (has_flanks) {
    add_column(':', ' ', ' ');
    add_flank(bases.right_flank);
  }
}

void AlignmentDisplay::reserve(std::uint32_t columns) {
  sequence_line.reserve(columns);
  match_line.reserve(columns);
  unit_line.reserve(columns);
}

void AlignmentDisplay::add_column(char base, char match, char unit_base) {
  sequence_line.push_back(base);
  match_line.push_back(match);
  unit_line.push_back(unit_base);
}

void AlignmentDisplay::add_flank(std::string_view flank) {
  for (const char base : flank) add_column(base, ' ', ' ');
}

// Deletions do not consume a base, so several events may stand at one position.
void AlignmentDisplay::add_repeat(const Csat& sat) {
  const Missense* event = sat.missense.begin();
  const char* cursor = sat.next_unit_base(sat.unit_cursor_bwd);
  for (const char* position = sat.pos_left; position != sat.pos_right;) {
    const bool at_event = event != sat.missense.end() && event->first == position;
    const char kind = at_event ? (event++)->second : '\0';
    if (kind == kInsertionEvent) {
      add_column(*position++, ' ', '-');
      continue;
    }
    const char unit_base = *cursor;
    cursor = sat.next_unit_base(cursor);
    if (!at_event) {
      add_column(*position, *position == 'N' ? '*' : '|', unit_base);
      ++position;
    } else if (kind == kMismatchEvent) {
      add_column(*position++, ' ', unit_base);
    } else {
      add_column('-', ' ', unit_base);
    }
  }
}

}  // namespace vorlan
