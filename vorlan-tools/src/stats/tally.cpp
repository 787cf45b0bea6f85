// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/tally.h"

#include <algorithm>

namespace vorlan_tools {

namespace {

constexpr Thousandths kHundredPercent = 100000;

}  // namespace

bool is_perfect(const Repeat& repeat) {
  if (repeat.mismatches) return *repeat.mismatches + *repeat.insertions + *repeat.deletions == 0;
  return repeat.perfection == kHundredPercent;
}

void Tally::add(const Repeat& repeat) {
  ++repeats;
  bases += repeat.bases;
  if (is_perfect(repeat)) {
    ++perfect;
    perfect_bases += repeat.bases;
  }
  copies += repeat.copies;
  mismatches += repeat.mismatches.value_or(0);
  insertions += repeat.insertions.value_or(0);
  deletions += repeat.deletions.value_or(0);
  longest = std::max(longest, repeat.bases);
}

void Tally::add(const Tally& other) {
  repeats += other.repeats;
  perfect += other.perfect;
  bases += other.bases;
  perfect_bases += other.perfect_bases;
  copies += other.copies;
  mismatches += other.mismatches;
  insertions += other.insertions;
  deletions += other.deletions;
  longest = std::max(longest, other.longest);
}

std::size_t copy_class(Thousandths copies) {
  const auto* const above =
      std::upper_bound(kCopyClasses.begin() + 1, kCopyClasses.end(), copies,
                       [](Thousandths value, std::int64_t edge) { return value < 1000 * edge; });
  return static_cast<std::size_t>(above - kCopyClasses.begin()) - 1;
}

std::size_t divergence_class(Thousandths perfection) {
  const Thousandths divergence = std::max<Thousandths>(0, kHundredPercent - perfection);
  const auto percent = static_cast<std::size_t>((divergence + 999) / 1000);
  return std::min(percent, kDivergenceClasses - 1);
}

void UnitLengthStats::add(const Repeat& repeat) {
  tally.add(repeat);
  const Count one{1, repeat.bases};
  by_copies[copy_class(repeat.copies)].add(one);
  by_divergence[divergence_class(repeat.perfection)].add(one);
}

void UnitLengthStats::add(const UnitLengthStats& other) {
  tally.add(other.tally);
  for (std::size_t i = 0; i < by_copies.size(); ++i) by_copies[i].add(other.by_copies[i]);
  for (std::size_t i = 0; i < by_divergence.size(); ++i) {
    by_divergence[i].add(other.by_divergence[i]);
  }
}

}  // namespace vorlan_tools
