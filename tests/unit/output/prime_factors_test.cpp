// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/prime_factors.h"

#include <gmock/gmock.h>

namespace vorlan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// By trial division with every number below n.
PrimeFactorRow row_by_trial_division(int n) {
  PrimeFactorRow row{};
  std::size_t place = 0;
  int rest = n;
  for (int p = 2; p < n; ++p) {
    if (rest % p != 0) continue;
    row[place++] = p;
    while (rest % p == 0) rest /= p;
  }
  return row;
}

TEST(PrimeFactors, EveryRowIsWhatTrialDivisionFinds) {
  ASSERT_EQ(primeFactors().size(), 10001U);
  EXPECT_THAT(primeFactors()[0], ElementsAre(0, 0, 0, 0, 0, 0));
  for (int n = 1; n <= 10000; ++n) {
    ASSERT_EQ(primeFactors()[static_cast<std::size_t>(n)], row_by_trial_division(n)) << n;
  }
}

TEST(PrimeFactors, TheRowsThatUsersAskAboutAreTheseNumbers) {
  EXPECT_THAT(primeFactors()[1], ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_THAT(primeFactors()[4], ElementsAre(2, 0, 0, 0, 0, 0));
  EXPECT_THAT(primeFactors()[12], ElementsAre(2, 3, 0, 0, 0, 0));
  EXPECT_THAT(primeFactors()[30], ElementsAre(2, 3, 5, 0, 0, 0));
  EXPECT_THAT(primeFactors()[2310], ElementsAre(2, 3, 5, 7, 11, 0));
  EXPECT_THAT(primeFactors()[9973], ElementsAre(0, 0, 0, 0, 0, 0));  // a prime
  EXPECT_THAT(primeFactors()[10000], ElementsAre(2, 5, 0, 0, 0, 0));
}

TEST(PrimeFactors, TheLastColumnEndsEveryRow) {
  for (const PrimeFactorRow& row : primeFactors()) EXPECT_EQ(row.back(), 0);
}

TEST(PrimeFactors, AreFoundBeyondTheTable) {
  EXPECT_THAT(proper_prime_factors(12), ElementsAre(2, 3));
  EXPECT_THAT(proper_prime_factors(10007), IsEmpty());  // a prime
  EXPECT_THAT(proper_prime_factors(10010), ElementsAre(2, 5, 7, 11, 13));
  EXPECT_THAT(proper_prime_factors(10201), ElementsAre(101));  // 101 * 101
  EXPECT_THAT(proper_prime_factors(20014), ElementsAre(2, 10007));
  EXPECT_THAT(proper_prime_factors(65536), ElementsAre(2));
}

}  // namespace
}  // namespace vorlan
