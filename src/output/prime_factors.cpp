// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/prime_factors.h"

namespace vorlan {
namespace {

using PrimeFactorTable = std::array<PrimeFactorRow, kLargestFactoredNumber + 1>;

// A sieve: each prime, in ascending order, is appended to the rows of its proper multiples.
PrimeFactorTable sieved_table() {
  PrimeFactorTable table{};
  for (std::size_t p = 2; p <= kLargestFactoredNumber; ++p) {
    const bool is_prime = table[p][0] == 0;
    if (!is_prime) continue;
    for (std::size_t n = 2 * p; n <= kLargestFactoredNumber; n += p) {
      std::size_t place = 0;
      while (table[n][place] != 0) ++place;
      table[n][place] = static_cast<int>(p);
    }
  }
  return table;
}

std::vector<std::size_t> factors_by_division(std::size_t n) {
  std::vector<std::size_t> factors;
  std::size_t rest = n;
  for (std::size_t p = 2; p * p <= rest; ++p) {
    if (rest % p != 0) continue;
    factors.push_back(p);
    while (rest % p == 0) rest /= p;
  }
  if (rest > 1 && rest < n) factors.push_back(rest);
  return factors;
}

}  // namespace

const PrimeFactorTable& primeFactors() {
  static const PrimeFactorTable table = sieved_table();
  return table;
}

std::vector<std::size_t> proper_prime_factors(std::size_t n) {
  if (n > kLargestFactoredNumber) return factors_by_division(n);
  std::vector<std::size_t> factors;
  for (const int p : primeFactors()[n]) {
    if (p == 0) break;
    factors.push_back(static_cast<std::size_t>(p));
  }
  return factors;
}

}  // namespace vorlan
