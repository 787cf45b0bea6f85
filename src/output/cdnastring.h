// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string_view>

#include "input/faststring.h"

namespace vorlan {

/// A string of DNA letters that can be brought into the normal form of repeat units.
class CDnaString : public faststring {
 public:
  CDnaString() = default;
  explicit CDnaString(std::string_view letters) { assign(letters); }

  /// Sets this string to the alphabetically smallest of all cyclic permutations of `source`.
  /// Returns whether `source` is a repetition of a shorter unit.
  /// Compares bytes as unsigned values. Cost: quadratic in the length, linear on the average.
  bool setToMinAlphaCyclicPermOf(const CDnaString& source);

  /// Sets this string to the alphabetically smallest of all cyclic permutations of `source` and of
  /// its reverse complement. Returns whether the reverse complement is a repetition of a shorter
  /// unit; letters without a complement become '?' in it, so that can be true where `source` itself
  /// is none. Requires that `source` is another object.
  bool setToMinAlphaRepModRevCompAndCyclicPermOf(const CDnaString& source);

  /// Sets this string to the reverse complement of `source`. A and T, C and G, B and V, D and H, K
  /// and M, R and Y are complements, N is its own; every other byte becomes '?', also W and S.
  void setToRevCompOf(const CDnaString& source);
};

}  // namespace vorlan
