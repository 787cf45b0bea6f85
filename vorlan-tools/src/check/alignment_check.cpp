// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/alignment_check.h"

#include <algorithm>

#include "convert/text_append.h"
#include "fasta/bases.h"
#include "report/field_cursor.h"

namespace vorlan_tools {

namespace {

enum class Column { kMatch, kBridgedN, kMismatch, kInsertion, kDeletion, kImpossible };

/// Nearly all columns show a match.
bool is_match(char base, char sign, char expected) {
  return sign == '|' && base == expected && is_base(base);
}

/// Whether all columns show a match, as in most repeats: many columns are looked at at once.
bool matches_everywhere(const Repeat& repeat) {
  return repeat.sequence_line == repeat.unit_line && holds_only<'|'>(repeat.match_line) &&
         holds_only_bases(repeat.sequence_line);
}

/// What a column shows; kImpossible for what none can show.
Column column_of(char base, char sign, char expected) {
  if (is_match(base, sign, expected)) return Column::kMatch;
  if (base == '-')
    return sign == ' ' && is_base(expected) ? Column::kDeletion : Column::kImpossible;
  if (!is_base(base) && base != 'N') return Column::kImpossible;
  if (expected == '-') return sign == ' ' ? Column::kInsertion : Column::kImpossible;
  if (!is_base(expected)) return Column::kImpossible;
  if (sign == '*') return base == 'N' ? Column::kBridgedN : Column::kImpossible;
  return sign == ' ' && base != expected ? Column::kMismatch : Column::kImpossible;
}

void append_event(std::string& events, std::int64_t position, char kind) {
  append_number(events += '(', position);
  (events += ',') += kind;
  events += "),";
}

/// The alignment lines follow the entry, in format 1 behind the list of events.
std::uint64_t first_alignment_line(const Repeat& repeat) { return repeat.last_line - 2; }

/// An N that is bridged is never edited.
bool edits_an_n(Column column, char base, const Settings& settings) {
  return base == 'N' && bridges_ns(settings) &&
         (column == Column::kMismatch || column == Column::kInsertion);
}

void count_column(Column column, AlignmentFacts& facts) {
  switch (column) {
    case Column::kBridgedN:
      ++facts.counts.ns;
      break;
    case Column::kMismatch:
      append_event(facts.events, facts.bases + 1, 'M');
      ++facts.counts.mismatches;
      break;
    case Column::kInsertion:
      append_event(facts.events, facts.bases + 1, 'I');
      ++facts.counts.insertions;
      break;
    case Column::kDeletion:
      append_event(facts.events, facts.bases + 1, 'D');
      ++facts.counts.deletions;
      break;
    default:
      break;
  }
  if (column != Column::kDeletion) ++facts.bases;
  if (column != Column::kInsertion) ++facts.length;
}

/// The unit line must repeat after a unit; its first copy is the motif.
void find_period(const Repeat& repeat, AlignmentFacts& facts, Findings& findings) {
  std::string ungapped;
  const std::string_view unrolled = without_gaps(repeat.unit_line, ungapped);
  const auto unit_length = static_cast<std::size_t>(repeat.unit_length);
  if (unrolled.size() < unit_length) {
    findings.add(first_alignment_line(repeat) + 2, "the unit line is shorter than one unit");
    return;
  }
  if (unrolled.substr(unit_length) != unrolled.substr(0, unrolled.size() - unit_length)) {
    findings.add(first_alignment_line(repeat) + 2,
                 "the unit line does not repeat after " + std::to_string(unit_length) + " bases");
    return;
  }
  facts.motif = unrolled.substr(0, unit_length);
}

/// Puts the unit of a repeat together from bases and events.
class EventReader {
 public:
  EventReader(const Repeat& repeat, std::string_view bases, const Settings& settings,
              Findings& findings)
      : repeat_(repeat),
        bases_(bases),
        settings_(settings),
        findings_(findings),
        fields_(repeat.events) {}

  std::optional<AlignmentFacts> read() {
    facts_.motif.assign(bases_.empty() ? 0 : static_cast<std::size_t>(repeat_.unit_length), '?');
    next_event();
    for (std::int64_t position = 1; is_good_ && position <= repeat_.bases; ++position) {
      if (bases_.empty()) skip_matches(position);
      if (position <= repeat_.bases) read_position(position);
    }
    if (is_good_ && kind_ != 0) refuse("an event lies outside the repeat or out of order");
    if (!is_good_) return std::nullopt;
    facts_.bases = repeat_.bases;
    facts_.length = phase_;
    if (facts_.motif.find('?') != std::string::npos) facts_.motif.clear();
    return facts_;
  }

 private:
  void refuse(const std::string& fact) {
    findings_.add(repeat_.line + (repeat_.events.empty() ? 0 : 1), fact);
    is_good_ = false;
  }

  void next_event() {
    kind_ = 0;
    if (fields_.at_end()) return;
    fields_.literal("(").number(event_position_).literal(",");
    const std::string_view rest = fields_.rest();
    const char kind = rest.empty() ? '?' : rest[0];
    fields_.literal(std::string_view(&kind, 1)).literal("),");
    if (!fields_.ok() || (kind != 'M' && kind != 'I' && kind != 'D')) {
      refuse("the list of events cannot be read");
      return;
    }
    kind_ = kind;
  }

  /// Without bases, matches have nothing to say: on to the next event, or behind the repeat.
  void skip_matches(std::int64_t& position) {
    const bool has_event =
        kind_ != 0 && event_position_ >= position && event_position_ <= repeat_.bases;
    const std::int64_t next = has_event ? event_position_ : repeat_.bases + 1;
    phase_ += next - position;
    position = next;
  }

  bool is_here(std::int64_t position, char kind) const {
    return kind_ == kind && event_position_ == position;
  }

  void read_position(std::int64_t position) {
    while (is_good_ && is_here(position, 'D')) {
      ++facts_.counts.deletions;
      ++phase_;
      next_event();
    }
    if (is_here(position, 'I')) {
      ++facts_.counts.insertions;
      next_event();
    } else if (is_here(position, 'M')) {
      ++facts_.counts.mismatches;
      ++phase_;
      next_event();
    } else {
      take_base(position);
      ++phase_;
    }
  }

  void take_base(std::int64_t position) {
    if (bases_.empty()) return;
    const char base = bases_[static_cast<std::size_t>(position - 1)];
    if (base == 'N' && bridges_ns(settings_)) {
      ++facts_.counts.ns;
      return;
    }
    char& expected = facts_.motif[static_cast<std::size_t>(phase_ % repeat_.unit_length)];
    if (expected == '?') expected = base;
    if (expected != base || !is_base(base))
      refuse("base " + std::to_string(position) + " of the repeat does not fit");
  }

  const Repeat& repeat_;
  std::string_view bases_;
  const Settings& settings_;
  Findings& findings_;
  FieldCursor fields_;
  AlignmentFacts facts_;
  std::int64_t event_position_ = 0;
  std::int64_t phase_ = 0;
  char kind_ = 0;
  bool is_good_ = true;
};

}  // namespace

std::string_view without_gaps(std::string_view line, std::string& ungapped) {
  if (line.find('-') == std::string_view::npos) return line;
  ungapped = line;
  ungapped.erase(std::remove(ungapped.begin(), ungapped.end(), '-'), ungapped.end());
  return ungapped;
}

std::optional<AlignmentFacts> read_alignment(const Repeat& repeat, const Settings& settings,
                                             Findings& findings) {
  AlignmentFacts facts;
  if (matches_everywhere(repeat)) {
    facts.bases = facts.length = static_cast<std::int64_t>(repeat.sequence_line.size());
    find_period(repeat, facts, findings);
    return facts;
  }
  const std::uint64_t line = first_alignment_line(repeat);
  Column column = Column::kMatch;
  for (std::size_t i = 0; i < repeat.sequence_line.size(); ++i) {
    const char base = repeat.sequence_line[i];
    column = column_of(base, repeat.match_line[i], repeat.unit_line[i]);
    const bool is_at_end = i == 0 || i + 1 == repeat.sequence_line.size();
    if (column == Column::kImpossible || edits_an_n(column, base, settings)) {
      findings.add(line + 1, "column " + std::to_string(i + 1) + " of the alignment is impossible");
      return std::nullopt;
    }
    if (column == Column::kBridgedN && !bridges_ns(settings)) {
      findings.add(line + 1, "an N is bridged, which the settings do not allow");
    }
    if (is_at_end && column != Column::kMatch)
      findings.add(line + 1, "the alignment begins or ends with no match");
    count_column(column, facts);
  }
  find_period(repeat, facts, findings);
  return facts;
}

std::optional<AlignmentFacts> read_events(const Repeat& repeat, std::string_view bases,
                                          const Settings& settings, Findings& findings) {
  const auto events = static_cast<std::int64_t>(repeat.events.size());
  if (repeat.unit_length > repeat.bases + events) {
    findings.add(repeat.line, "the unit is longer than the repeat");
    return std::nullopt;
  }
  return EventReader(repeat, bases, settings, findings).read();
}

}  // namespace vorlan_tools
