// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Which stretches of the residues a scan may try as a unit; shared by the exact and the imperfect
// scan, whose rules for this are the same.
//
// Idea: a stretch is tried unless the marks of its ends say that a repeat already found explains
// it, or it holds an N, or it is one residue repeated (a matter of unit length 1).
//
// Example: residues ACACACGTGT, [0,6) closed by ACACAC, unit length 3. Start 4 (ACG) is closed
// after a closed position: not tried. Start 5 (CGT) likewise. Start 6 (GTG) is open and so is its
// last position 8: tried.
#ifndef VORLAN_TESTS_REFERENCE_PLAIN_SCAN_H_
#define VORLAN_TESTS_REFERENCE_PLAIN_SCAN_H_

#include <cstddef>
#include <string_view>
#include <vector>

#include "plain_search.h"

namespace reference {

// One mark per residue, and one before the first and one after the last: open, or closed because a
// repeat already found covers the position. All marks start open.
class Marks {
 public:
  explicit Marks(std::size_t length) : open_(length + 2, 1) {}

  // Closes the span of the repeat, then opens the places of its edits again.
  void close(const Repeat& repeat);

  // Whether a unit of one residue may start here.
  bool may_start(std::size_t begin) const { return open(begin); }

  // Whether a unit may be the stretch [begin, begin + unit_length).
  // REQUIRES: begin + unit_length is less than the number of residues.
  bool may_span(std::size_t begin, std::size_t unit_length) const {
    const std::size_t end = begin + unit_length;
    return (open(begin) && (open(end - 1) || open(end))) || (open_before(begin) && open(end - 1));
  }

 private:
  bool open(std::size_t position) const { return open_[position + 1] != 0; }
  bool open_before(std::size_t position) const { return open_[position] != 0; }

  std::vector<char> open_;  // the mark of residue i is open_[i + 1]
};

// Tells, for stretches asked in ascending order, whether they hold an N. Linear over a whole scan.
class StretchWithN {
 public:
  explicit StretchWithN(std::string_view residues) : residues_(residues) {}

  // REQUIRES: begin is not less than in the call before.
  bool holds_N(std::size_t begin, std::size_t unit_length);

 private:
  std::string_view residues_;
  std::size_t next_N_ = 0;
  bool searched_ = false;
};

// REQUIRES: unit is not empty.
bool is_one_repeated_residue(std::string_view unit);

// The first position at or after `position` that does not hold N; the length if there is none.
std::size_t skip_Ns(std::string_view residues, std::size_t position);

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_PLAIN_SCAN_H_
