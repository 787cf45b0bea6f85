// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Writes out all rotations as strings and compares them. Idea and example: see the header.

#include "normal_form.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace reference {
namespace {

// The rotations that start at letters 0, 1, ..., n - 1.
std::vector<std::string> rotations(const std::string& unit) {
  std::vector<std::string> all;
  for (std::size_t i = 0; i < unit.size(); ++i) all.push_back(unit.substr(i) + unit.substr(0, i));
  return all;
}

// std::string compares its letters as unsigned bytes.
std::string smallest_rotation(const std::string& unit) {
  const std::vector<std::string> all = rotations(unit);
  return *std::min_element(all.begin(), all.end());
}

bool is_repetition(const std::string& unit) {
  const std::vector<std::string> all = rotations(unit);
  return std::count(all.begin(), all.end(), unit) > 1;
}

bool is_prime(std::size_t n) {
  for (std::size_t divisor = 2; divisor < n; ++divisor) {
    if (n % divisor == 0) return false;
  }
  return n >= 2;
}

char complement(char letter) {
  constexpr std::string_view kLetters = "ATCGBVDHKMRYN";
  constexpr std::string_view kPartners = "TAGCVBHDMKYRN";
  const std::size_t place = kLetters.find(letter);
  return place == std::string_view::npos ? '?' : kPartners[place];
}

}  // namespace

std::string reverse_complement(std::string_view unit) {
  std::string other_strand(unit.rbegin(), unit.rend());
  std::transform(other_strand.begin(), other_strand.end(), other_strand.begin(), complement);
  return other_strand;
}

UnitForm unit_normal_form(std::string_view unit, UnitMode mode) {
  const std::string given(unit);
  if (mode == UnitMode::kAsIs) {
    return {given, is_prime(given.size()) || !is_repetition(given)};
  }
  if (mode == UnitMode::kAlphabetical) {
    return {smallest_rotation(given), !is_repetition(given)};
  }
  const std::string other_strand = reverse_complement(unit);
  return {std::min(smallest_rotation(other_strand), smallest_rotation(given)),
          !is_repetition(other_strand)};
}

}  // namespace reference
