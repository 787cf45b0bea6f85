// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The normal form of a repeat unit and its primitivity, by writing out all rotations.
//
// Idea: the rotations of a unit are the ways to read the same repeat from another start; reading
// the other strand gives the rotations of the reverse complement. The normal form is the smallest
// text among them. A unit is a repetition of a shorter one exactly when a rotation by less than its
// length gives the unit itself.
//
// Example: CTT rotates to CTT, TTC, TCT; its reverse complement AAG to AAG, AGA, GAA. The smallest
// rotation is CTT, the smallest of both strands AAG.
#ifndef VORLAN_TESTS_REFERENCE_NORMAL_FORM_H_
#define VORLAN_TESTS_REFERENCE_NORMAL_FORM_H_

#include <string>
#include <string_view>

namespace reference {

enum class UnitMode {
  kAsIs = 0,                // as found
  kAlphabetical = 1,        // smallest rotation
  kAlphabeticalStrand = 2,  // smallest rotation of the unit and of its reverse complement
};

struct UnitForm {
  std::string text;        // the unit as reported
  bool primitive = false;  // false: a repeat with this unit is not reported
  bool operator==(const UnitForm&) const = default;
};

// Letters are compared as unsigned bytes.
//
// primitive is false when the unit is a repetition of a shorter unit, with two peculiarities:
//  - kAsIs takes every unit of prime length for primitive (AA is);
//  - kAlphabeticalStrand judges the reverse complement, in which letters without a complement are
//    all '?' (SW is not primitive).
//
// REQUIRES: unit is not empty.
UnitForm unit_normal_form(std::string_view unit, UnitMode mode);

// From the last letter to the first, A and T, C and G, B and V, D and H, K and M, R and Y
// exchanged, N kept, every other byte '?'.
std::string reverse_complement(std::string_view unit);

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_NORMAL_FORM_H_
