// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// All strings of one length over an alphabet, in the order of an odometer.
//
// Example: over "AC", length 2: AA, CA, AC, CC.
#ifndef VORLAN_TESTS_DIFFERENTIAL_ALL_STRINGS_H_
#define VORLAN_TESTS_DIFFERENTIAL_ALL_STRINGS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace differential {

// Calls visit(text) for each of them and stops at the first call that returns false.
// Returns whether all were visited.
template <class Visit>
bool for_each_string(std::string_view alphabet, std::size_t length, Visit visit) {
  std::vector<std::size_t> letters(length, 0);
  std::string text(length, alphabet[0]);
  for (;;) {
    if (!visit(text)) return false;
    std::size_t place = 0;
    for (; place < length; ++place) {
      letters[place] = (letters[place] + 1) % alphabet.size();
      text[place] = alphabet[letters[place]];
      if (letters[place] != 0) break;
    }
    if (place == length) return true;
  }
}

// The same for all lengths from 0 to max_length, short ones first.
template <class Visit>
bool for_each_string_up_to(std::string_view alphabet, std::size_t max_length, Visit visit) {
  for (std::size_t length = 0; length <= max_length; ++length) {
    if (!for_each_string(alphabet, length, visit)) return false;
  }
  return true;
}

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_ALL_STRINGS_H_
