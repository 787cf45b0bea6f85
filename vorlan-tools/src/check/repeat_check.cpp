// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/repeat_check.h"

#include <algorithm>
#include <cmath>

#include "check/entry_text.h"
#include "check/unit_distance.h"
#include "check/unit_forms.h"
#include "fasta/bases.h"
#include "report/field_cursor.h"

namespace vorlan_tools {

namespace {

constexpr Thousandths kPerfect = 100000;

bool is_own(Format format) { return format == Format::kPlain || format == Format::kExtended; }

bool shows_flanks(const Settings& settings) {
  if (is_own(settings.format)) return settings.sequence_mode != SequenceMode::kNone;
  return settings.format != Format::kGff;
}

std::int64_t size_of(std::string_view text) { return static_cast<std::int64_t>(text.size()); }

std::int64_t count_ns(std::string_view bases) {
  return std::count(bases.begin(), bases.end(), 'N');
}

std::int64_t longest_n_run(std::string_view bases) {
  std::int64_t longest = 0;
  std::int64_t run = 0;
  for (const char base : bases) {
    run = base == 'N' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

/// Where the length is not stated, the number of copies tells.
std::int64_t length_of(const Repeat& repeat) {
  if (repeat.length) return *repeat.length;
  return std::llround(static_cast<double>(repeat.copies) * static_cast<double>(repeat.unit_length) /
                      1000.0);
}

/// How many bases of a length do not fit at a perfection, at most.
std::int64_t misfits_of(std::int64_t length, Thousandths perfection) {
  return std::llround(static_cast<double>(length) * (1.0 - static_cast<double>(perfection) / 1e5));
}

std::string percent(Thousandths value) {
  return std::to_string(static_cast<double>(value) / 1000.0);
}

}  // namespace

void RepeatCheck::run(const Sequence& sequence, const Repeat& repeat,
                      const std::optional<std::string_view>& residues) {
  if (!check_place(sequence, repeat, residues)) return;
  check_flanks(sequence, repeat);
  if (residues) check_residues(repeat, *residues);
  const std::string_view bases = bases_of(repeat, residues);
  check_ns(repeat, bases);
  check_shares(repeat);
  const std::optional<AlignmentFacts> facts = facts_of(repeat, bases);
  if (facts) {
    check_facts(repeat, *facts);
  } else {
    check_stated(repeat, bases);
    check_unit_by_distance(repeat, bases);
  }
  unit_check_.run(repeat, facts ? std::string_view(facts->motif) : std::string_view());
  check_selection(repeat);
  check_layout(sequence, repeat);
}

bool RepeatCheck::check_place(const Sequence& sequence, const Repeat& repeat,
                              const std::optional<std::string_view>& residues) {
  findings_.expect(repeat.line, "bp", repeat.bases, repeat.end - repeat.start + 1);
  std::optional<std::int64_t> length = sequence.length;
  if (residues) length = size_of(*residues);
  if (!length || repeat.end <= *length) return repeat.bases == repeat.end - repeat.start + 1;
  add(repeat, "the repeat ends at " + std::to_string(repeat.end) + ", the sequence has " +
                  std::to_string(*length) + " bases");
  return false;
}

void RepeatCheck::check_flanks(const Sequence& sequence, const Repeat& repeat) {
  if (!shows_flanks(settings_)) return;
  const std::int64_t flanking = settings_.flanking;
  findings_.expect(repeat.line, "length of the left flank", size_of(repeat.left_flank),
                   std::min(flanking, repeat.start - 1));
  if (sequence.length) {
    findings_.expect(repeat.line, "length of the right flank", size_of(repeat.right_flank),
                     std::min(flanking, *sequence.length - repeat.end));
  }
  if (!holds_only_bases_or_ns(repeat.left_flank) || !holds_only_bases_or_ns(repeat.right_flank)) {
    add(repeat, "a flank holds something else than bases");
  }
}

std::string_view RepeatCheck::bases_of(const Repeat& repeat,
                                       const std::optional<std::string_view>& residues) {
  if (residues) {
    return residues->substr(static_cast<std::size_t>(repeat.start - 1),
                            static_cast<std::size_t>(repeat.bases));
  }
  if (!repeat.has_alignment()) return repeat.residues;
  return without_gaps(repeat.sequence_line, ungapped_);
}

bool RepeatCheck::fits_residues(const Repeat& repeat, std::string_view residues) {
  if (repeat.end > size_of(residues)) return false;
  const std::string_view shown = bases_of(repeat, std::nullopt);
  const auto start = static_cast<std::size_t>(repeat.start - 1);
  const auto end = static_cast<std::size_t>(repeat.end);
  const std::string_view left = repeat.left_flank;
  const std::string_view right = repeat.right_flank;
  return (shown.empty() || residues.substr(start, end - start) == shown) && left.size() <= start &&
         residues.substr(start - left.size(), left.size()) == left &&
         residues.substr(end, right.size()) == right;
}

void RepeatCheck::check_residues(const Repeat& repeat, std::string_view residues) {
  if (!fits_residues(repeat, residues)) {
    findings_.add(repeat.last_line, "the bases shown are not those of the sequence at this place");
  }
  if (!shows_flanks(settings_)) return;
  const std::int64_t beyond = size_of(residues) - repeat.end;
  findings_.expect(repeat.line, "length of the right flank", size_of(repeat.right_flank),
                   std::min<std::int64_t>(settings_.flanking, beyond));
}

/// The alignment, else the events, else a repeat without edits is as good as a list of none.
std::optional<AlignmentFacts> RepeatCheck::facts_of(const Repeat& repeat, std::string_view bases) {
  if (repeat.has_alignment()) return read_alignment(repeat, settings_, findings_);
  if (size_of(bases) != repeat.bases) bases = {};
  if (settings_.format == Format::kExtended)
    return read_events(repeat, bases, settings_, findings_);
  const bool has_no_edits = repeat.mismatches
                                ? *repeat.mismatches + *repeat.insertions + *repeat.deletions == 0
                                : repeat.perfection == kPerfect;
  if (!has_no_edits || bases.empty()) return std::nullopt;
  return read_events(repeat, bases, settings_, findings_);
}

void RepeatCheck::check_facts(const Repeat& repeat, const AlignmentFacts& facts) {
  findings_.expect(repeat.line, "bp", repeat.bases, facts.bases);
  if (repeat.length) findings_.expect(repeat.line, "BP", *repeat.length, facts.length);
  EditCounts counts = facts.counts;
  const bool knows_ns = repeat.has_alignment() || !facts.motif.empty();
  if (!knows_ns) counts.ns = repeat.ns.value_or(0);
  check_counts(repeat, counts, facts.length);
  if (repeat.has_alignment() && settings_.format == Format::kExtended) {
    findings_.expect(repeat.line + 1, "the list of events", repeat.events, facts.events);
  }
}

void RepeatCheck::check_counts(const Repeat& repeat, const EditCounts& counts,
                               std::int64_t length) {
  const std::uint64_t line = repeat.line;
  if (repeat.mismatches)
    findings_.expect(line, "the number of mismatches", *repeat.mismatches, counts.mismatches);
  if (repeat.insertions)
    findings_.expect(line, "the number of insertions", *repeat.insertions, counts.insertions);
  if (repeat.deletions)
    findings_.expect(line, "the number of deletions", *repeat.deletions, counts.deletions);
  if (repeat.ns) findings_.expect(line, "the number of Ns", *repeat.ns, counts.ns);
  if (repeat.score) {
    findings_.expect(line, "the score", *repeat.score,
                     score_of(counts, repeat.bases, repeat.unit_length, settings_));
  }
  const float percentage = perfection_of(counts, length, settings_);
  const Thousandths perfection = thousandths_of(percentage);
  if (repeat.perfection != perfection) {
    add(repeat,
        "the perfection is " + percent(repeat.perfection) + ", must be " + percent(perfection));
  }
  if (settings_.search_mode == SearchMode::kExact && counts.edits() > 0) {
    add(repeat, "the repeat has edits, although only perfect ones were searched for");
  }
}

/// Numbers without alignment or events must agree among themselves.
void RepeatCheck::check_stated(const Repeat& repeat, std::string_view bases) {
  const bool has_counts = repeat.mismatches && settings_.format != Format::kExtended;
  if (!has_counts) return;
  EditCounts counts{*repeat.mismatches, *repeat.insertions, *repeat.deletions,
                    repeat.ns.value_or(0)};
  const bool is_possible =
      std::min({counts.mismatches, counts.insertions, counts.deletions, counts.ns}) >= 0 &&
      counts.mismatches + counts.insertions + counts.ns <= repeat.bases;
  if (!is_possible) {
    add(repeat, "a repeat of so many bases cannot have these edits");
    return;
  }
  const bool ns_are_counted_elsewhere = settings_.format == Format::kFasta && bridges_ns(settings_);
  if (ns_are_counted_elsewhere) counts.ns = count_ns(bases);
  check_counts(repeat, counts, *repeat.length);
}

/// Without alignment, the unit must at least explain the bases with as few edits as are stated.
void RepeatCheck::check_unit_by_distance(const Repeat& repeat, std::string_view bases) {
  constexpr std::int64_t kLargestTable = 100'000'000;
  const bool is_known =
      !repeat.has_alignment() && !repeat.unit.empty() && size_of(bases) == repeat.bases;
  if (!is_known || repeat.bases * size_of(repeat.unit) > kLargestTable) return;
  const std::int64_t edits = repeat.mismatches
                                 ? *repeat.mismatches + *repeat.insertions + *repeat.deletions
                                 : misfits_of(length_of(repeat), repeat.perfection);
  const bool ns_fit = bridges_ns(settings_);
  std::int64_t distance = distance_from_unit(bases, repeat.unit, ns_fit);
  if (distance > edits && settings_.unit_mode == UnitMode::kReverseComplement) {
    distance = distance_from_unit(bases, reverse_complement(repeat.unit), ns_fit);
  }
  if (distance <= edits) return;
  add(repeat, "the unit " + repeat.unit + " does not explain the bases with " +
                  std::to_string(edits) + " edits");
}

/// Copies follow from the length. Where only copies and perfection are stated, some whole length
/// and some whole number of bases that do not fit must give them.
void RepeatCheck::check_shares(const Repeat& repeat) {
  const auto unit_length = static_cast<float>(repeat.unit_length);
  const std::int64_t length = length_of(repeat);
  if (thousandths_of(static_cast<float>(length) / unit_length) != repeat.copies) {
    add(repeat, "the number of copies does not fit the length");
  }
  constexpr Thousandths kHundredth = 10;
  if (repeat.perfection_of_score &&
      std::abs(*repeat.perfection_of_score - repeat.perfection) > kHundredth / 2) {
    add(repeat, "the column of the score and the perfection differ");
  }
  if (repeat.mismatches || settings_.n_perfection_mode == NPerfectionMode::kAsNeutral ||
      length <= 0)
    return;
  const EditCounts counts{misfits_of(length, repeat.perfection), 0, 0, 0};
  if (thousandths_of(perfection_of(counts, length, settings_)) != repeat.perfection) {
    add(repeat, "no number of edits gives this perfection");
  }
}

void RepeatCheck::check_ns(const Repeat& repeat, std::string_view bases) {
  if (!holds_only_bases_or_ns(bases)) add(repeat, "the repeat holds something else than bases");
  const bool shows_bases = repeat.has_alignment() || !repeat.residues.empty();
  if (shows_bases && size_of(bases) != repeat.bases) {
    findings_.add(repeat.last_line, "the number of bases shown is " + std::to_string(bases.size()) +
                                        ", must be " + std::to_string(repeat.bases));
  }
  if (!bridges_ns(settings_)) {
    if (repeat.ns.value_or(0) != 0) add(repeat, "Ns are bridged, which the settings do not allow");
    return;
  }
  const bool has_ns = bases.find('N') != std::string_view::npos;
  if (has_ns && longest_n_run(bases) > settings_.ns_in_a_row) {
    add(repeat, "more than " + std::to_string(settings_.ns_in_a_row) + " Ns in a row are bridged");
  }
  if (repeat.ns && !bases.empty())
    findings_.expect(repeat.line, "the number of Ns", *repeat.ns, has_ns ? count_ns(bases) : 0);
}

void RepeatCheck::check_selection(const Repeat& repeat) {
  const std::int64_t unit_length = repeat.unit_length;
  if (repeat.score && *repeat.score < least_allowed(settings_.min_score, unit_length)) {
    add(repeat, "the score is below the least allowed for this unit length");
  }
  if (repeat.length && *repeat.length < least_allowed(settings_.min_length, unit_length)) {
    add(repeat, "the length is below the least allowed for this unit length");
  }
  // Half a thousandth: what is stated has been rounded.
  const double lowest = (static_cast<double>(repeat.perfection) + 0.5) / 1000.0;
  const double highest = (static_cast<double>(repeat.perfection) - 0.5) / 1000.0;
  if (lowest < lowest_meant(settings_.min_perfection) ||
      highest > highest_meant(settings_.max_perfection)) {
    add(repeat, "the perfection lies outside the range of the run");
  }
}

void RepeatCheck::check_layout(const Sequence& sequence, const Repeat& repeat) {
  layout_.clear();
  append_entry_text(layout_, repeat, settings_, sequence.name);
  if (layout_.view() != repeat.entry) {
    add(repeat, "the entry is not laid out as \"" + std::string(layout_.view()) + "\"");
  }
}

}  // namespace vorlan_tools
