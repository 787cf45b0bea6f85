// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/compared_pair.h"

#include "fasta/other_strand.h"

namespace vorlan_tools {

namespace {

/// Whether a border that lies elsewhere than the flank at first sight tells is all the difference.
bool is_border_only(const ComparedLocus& first, const ComparedLocus& second, const LocusPair& pair,
                    std::int64_t difference) {
  const auto reach = static_cast<std::size_t>(first.left.size() + first.right.size());
  const BorderView one = view_borders(first, false, 0);
  const BorderView other = view_borders(second, pair.is_reverse, reach);
  const std::int64_t left = pair.left_shift->bases;
  const std::int64_t right = pair.right_shift->bases;
  return fits_elsewhere(one.left_outside, other.left_outside, other.left_inside, left,
                        left - difference) ||
         fits_elsewhere(one.right_outside, other.right_outside, other.right_inside, right,
                        right - difference);
}

}  // namespace

ComparedPair compare_pair(const ComparedLocus& first, const ComparedLocus& second,
                          const LocusPair& pair) {
  if (first.length() == second.length()) return {};
  const BorderShift left = pair.left_shift.value_or(BorderShift{});
  const BorderShift right = pair.right_shift.value_or(BorderShift{});
  const std::int64_t difference = second.length() + left.bases + right.bases - first.length();
  if (difference == 0) return {};
  const bool is_certain = left.is_certain && right.is_certain && !pair.is_shared;
  if (!is_certain) return {PairStatus::kUnclear, difference};
  if (is_border_only(first, second, pair, difference)) return {};
  return {PairStatus::kChanged, difference};
}

std::string second_allele(const ComparedLocus& second, const LocusPair& pair) {
  const bool is_reverse = pair.is_reverse;
  const std::string left = is_reverse ? other_strand(second.right) : second.left;
  const std::string right = is_reverse ? other_strand(second.left) : second.right;
  const std::string text = left + (is_reverse ? other_strand(second.bases) : second.bases) + right;
  const auto begin = static_cast<std::int64_t>(left.size()) - pair.left_shift->bases;
  const auto end =
      static_cast<std::int64_t>(left.size() + second.bases.size()) + pair.right_shift->bases;
  if (begin < 0 || end < begin || end > static_cast<std::int64_t>(text.size())) return {};
  return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

}  // namespace vorlan_tools
