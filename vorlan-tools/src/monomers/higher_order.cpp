// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Higher-order repeats: copies that resemble the k-th next more than the next.
//
// Idea. For each lag k, the share of places that differ between copies i and i + k, over all i. In
// an array of one kind of copies all lags give about the same share. If copies A B C follow each
// other again and again, lag 3 gives little, and so do its multiples 6, 9, ...:
//
//     copies  ACGT ATGT ACGA ACGT ATGT ACGA     lag 1: 1, 2, 1, 1, 2 of 4 places, 7/20
//                                               lag 2: 1, 1, 1, 1             4/16
//                                               lag 3: 0, 0, 0                0: the order is 3
//     copies  ACGT ACGT ACGA ACGT ATGT ACGT     no lag is much below lag 1: no higher order
//
// The order is the smallest lag that is nearly as good as the best one, if the difference to lag 1
// is both large (a quarter) and no accident: more than kDeviations standard deviations of the
// difference of two shares.
//
// Limits. An order that only a part of the array has is weakened by the rest of the array. Copies
// lost or doubled within the array shift the phase there, which costs only the pairs across.

#include "monomers/higher_order.h"

#include <algorithm>
#include <cmath>

namespace vorlan_tools {

namespace {

constexpr double kLargestShareOfLagOne = 0.75;
constexpr double kNearBest = 0.2;
constexpr double kDeviations = 3;
constexpr char kNotReached = '.';

struct Lag {
  std::int64_t places = 0;
  std::int64_t differing = 0;

  double share() const {
    return places > 0 ? static_cast<double>(differing) / static_cast<double>(places) : 1;
  }
};

Lag compare_at(const std::vector<std::string>& copies, std::size_t lag) {
  Lag result;
  for (std::size_t i = 0; i + lag < copies.size(); ++i) {
    const std::string& one = copies[i];
    const std::string& other = copies[i + lag];
    for (std::size_t j = 0; j < one.size(); ++j) {
      const bool is_compared = one[j] != kNotReached && other[j] != kNotReached;
      result.places += is_compared ? 1 : 0;
      result.differing += is_compared && one[j] != other[j] ? 1 : 0;
    }
  }
  return result;
}

bool is_below(const Lag& lag, const Lag& first) {
  if (lag.share() > kLargestShareOfLagOne * first.share()) return false;
  const auto places = static_cast<double>(lag.places);
  const auto first_places = static_cast<double>(first.places);
  const double all = static_cast<double>(lag.differing + first.differing) / (places + first_places);
  const double deviation = std::sqrt(all * (1 - all) * (1 / places + 1 / first_places));
  return first.share() - lag.share() > kDeviations * deviation;
}

}  // namespace

HigherOrder find_higher_order(const std::vector<std::string>& copies) {
  if (copies.size() < kFewestCopies) return {};
  const std::size_t largest = std::min(kLargestOrder, copies.size() / 2);
  std::vector<Lag> lags;
  for (std::size_t lag = 1; lag <= largest; ++lag) lags.push_back(compare_at(copies, lag));
  const Lag& first = lags.front();
  const Lag& best = *std::min_element(
      lags.begin(), lags.end(), [](const Lag& a, const Lag& b) { return a.share() < b.share(); });
  if (!is_below(best, first)) return {1, first.places, first.differing};
  const double limit = best.share() + kNearBest * (first.share() - best.share());
  for (std::size_t lag = 2; lag <= largest; ++lag) {
    const Lag& seen = lags[lag - 1];
    if (seen.share() <= limit && is_below(seen, first)) return {lag, seen.places, seen.differing};
  }
  return {1, first.places, first.differing};
}

}  // namespace vorlan_tools
