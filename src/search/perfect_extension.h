// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <string_view>

#include "config/settings.h"
#include "search/walk.h"

namespace vorlan {

/// Extends a candidate to the maximal perfect repeat around it, over N runs that may be bridged.
class PerfectExtension {
 public:
  /// Within `residues`, with the N runs that the settings allow.
  explicit PerfectExtension(std::string_view residues)
      : residues_(residues),
        longest_N_run_(global_treat_Ns_as_missense ? 0 : global_Ns_allowed_in_a_row) {}

  /// To the right, then to the left; then trims N. Cost: linear in what is added.
  void extend(Csat& sat) const {
    extend<Forward>(sat, residues_.data() + residues_.size());
    extend<Backward>(sat, residues_.data());
    sat.trim_Ns();
  }

 private:
  template <class Direction>
  void extend(Csat& sat, const char* stop) const {
    Front front = Direction::front(sat);
    Steps steps;
    walk<Direction>(front, {sat.unit_begin, sat.unit_end}, stop, longest_N_run_, steps);
    Direction::set_front(sat, front);
    sat.score += static_cast<int>(steps.matches);
    sat.num_Ns += steps.Ns;
  }

  std::string_view residues_;
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
