// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace vorlan {

/// The largest number in the table `primeFactors`.
inline constexpr std::size_t kLargestFactoredNumber = 10'000;

/// Distinct prime factors in ascending order, followed by zeros. Six places: no number up to 10000
/// has more than five (2 * 3 * 5 * 7 * 11 = 2310), so the last is always 0 and ends the row.
using PrimeFactorRow = std::array<int, 6>;

/// Row n lists the distinct prime factors of n that are smaller than n. The rows of 0, 1 and the
/// primes hold only zeros. Computed once, at the first call.
const std::array<PrimeFactorRow, kLargestFactoredNumber + 1>& primeFactors();

/// The distinct prime factors of n that are smaller than n, for any n; from the table where it
/// reaches. Cost beyond the table: square root of n.
std::vector<std::size_t> proper_prime_factors(std::size_t n);

}  // namespace vorlan
