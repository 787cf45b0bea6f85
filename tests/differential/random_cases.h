// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Random cases for the comparison of the searches with their slow twins: settings over everything
// that a search reads, and a record that fits them.
//
// Idea: the look-ahead costs up to 3 to the power of its depth for each residue and unit length, so
// free combinations of settings would mostly be too slow to try many. The cost of a case is
// estimated first, and as long as it is too high a random one of its causes is reduced: the depth,
// the range of unit lengths, the allowed score reduction or the length of the record. So each
// setting still takes all its values, only not all extremes at once.
#ifndef VORLAN_TESTS_DIFFERENTIAL_RANDOM_CASES_H_
#define VORLAN_TESTS_DIFFERENTIAL_RANDOM_CASES_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "plain_search.h"
#include "random.h"

namespace differential {

struct SearchCase {
  reference::Settings settings;
  std::string residues;
};

// Settings at random over their whole ranges, also the ends of 32 bits, and much more often near
// the defaults. Their look-ahead may be very expensive.
reference::Settings random_settings(Random& random);

// An estimate of the look-ahead calls that a slow twin needs for a record of this length, half of
// it arrays. Good to a factor of ten.
double estimated_cost(const reference::Settings& settings, std::size_t length);

// The case of this number in the series of this seed. Any one can be made again alone.
SearchCase random_case(std::uint64_t seed, std::uint64_t number);

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_RANDOM_CASES_H_
