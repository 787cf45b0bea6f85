// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vorlan_tools {

/// How an array repeats above its unit.
struct HigherOrder {
  std::size_t order = 1;       ///< copies after which the array repeats itself; 1: no higher order
  std::int64_t places = 0;     ///< compared between copies and the order-th next
  std::int64_t differing = 0;  ///< of these
};

/// `copies` are rows of one length, a letter for each place of the unit: a base, '-' for none, '.'
/// where the copy does not reach. Time: all letters times kLargestOrder.
HigherOrder find_higher_order(const std::vector<std::string>& copies);

constexpr std::size_t kLargestOrder = 40;

/// An order is seen only if the array shows it twice, so that fewer copies have none, and nothing
/// is compared.
constexpr std::size_t kFewestCopies = 4;

}  // namespace vorlan_tools
