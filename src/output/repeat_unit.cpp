// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/repeat_unit.h"

#include <algorithm>

#include "config/settings.h"
#include "output/cdnastring.h"
#include "output/prime_factors.h"

namespace vorlan {
namespace {

// A text of n letters is a repetition exactly when it consists of p equal blocks for a prime p of
// n.
bool is_repetition(std::string_view unit) {
  const auto consists_of_equal_blocks = [unit](std::size_t blocks) {
    const std::size_t block_length = unit.size() / blocks;
    return unit.substr(block_length) == unit.substr(0, unit.size() - block_length);
  };
  const std::vector<std::size_t> primes = proper_prime_factors(unit.size());
  return std::any_of(primes.begin(), primes.end(), consists_of_equal_blocks);
}

}  // namespace

std::optional<std::string> reported_unit(std::string_view unit) {
  bool repetition = false;
  CDnaString text(unit);
  CDnaString normal_form;
  switch (global_report_unit_mode) {
    case kUnitAsIs:
      repetition = is_repetition(unit);
      normal_form.assign(unit);
      break;
    case kUnitMinimal:
      repetition = normal_form.setToMinAlphaCyclicPermOf(text);
      break;
    default:
      repetition = normal_form.setToMinAlphaRepModRevCompAndCyclicPermOf(text);
      break;
  }
  if (repetition) return std::nullopt;
  return std::string(normal_form.view());
}

}  // namespace vorlan
