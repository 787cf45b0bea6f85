// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_check.h"

#include "check/unit_forms.h"
#include "fasta/bases.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kMostPairs = 10'000;
constexpr std::size_t kLongestPair = 40;

bool has_unit_length(const Repeat& repeat) {
  return static_cast<std::int64_t>(repeat.unit.size()) == repeat.unit_length;
}

}  // namespace

void UnitCheck::run(const Repeat& repeat, std::string_view motif) {
  check_length(repeat);
  ((pair_ = repeat.unit) += ' ') += motif;
  if (has_unit_length(repeat) && right_pairs_.contains(pair_)) return;
  const std::uint64_t count = findings_.count();
  check_pair(repeat, motif);
  const bool is_right = findings_.count() == count;
  if (is_right && pair_.size() <= kLongestPair && right_pairs_.size() < kMostPairs) {
    right_pairs_.insert(pair_);
  }
}

void UnitCheck::check_length(const Repeat& repeat) {
  const std::int64_t length = repeat.unit_length;
  if (length < settings_.min_unit_length || length > settings_.max_unit_length) {
    findings_.add(repeat.line, "the unit length " + std::to_string(length) +
                                   " lies outside the range of the run");
  }
  constexpr std::int64_t kLongestUnitInGff = 50;
  if (settings_.format == Format::kGff && repeat.unit.empty() != (length > kLongestUnitInGff)) {
    findings_.add(repeat.line,
                  "the unit is shown as '.' for units of more than 50 bases, and only for them");
  }
}

void UnitCheck::check_pair(const Repeat& repeat, std::string_view motif) {
  const std::string& unit = repeat.unit;
  if (!motif.empty() && !is_primitive(motif))
    findings_.add(repeat.line, "the unit is a repetition of a shorter one");
  if (unit.empty()) return;
  if (!has_unit_length(repeat) || !holds_only_bases(unit)) {
    findings_.add(repeat.line, "the unit \"" + unit + "\" is no stretch of " +
                                   std::to_string(repeat.unit_length) + " bases");
    return;
  }
  if (!is_primitive(unit))
    findings_.add(repeat.line, "the unit " + unit + " is a repetition of a shorter one");
  const std::string_view source = motif.empty() ? std::string_view(unit) : motif;
  if (!fits_motif(unit, source, settings_.unit_mode)) {
    findings_.add(repeat.line,
                  "the unit is " + unit + ", must be " + shown_unit(source, settings_.unit_mode));
  }
}

}  // namespace vorlan_tools
