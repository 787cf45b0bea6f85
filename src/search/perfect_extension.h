// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "config/settings.h"
#include "search/csat.h"

namespace vorlan {

/// Extends a candidate to the maximal perfect repeat around it, over N runs that may be bridged.
class PerfectExtension {
 public:
  /// Within [seq_begin, seq_end), with the N runs that the settings allow.
  PerfectExtension(const char* seq_begin, const char* seq_end)
      : seq_begin_(seq_begin),
        seq_end_(seq_end),
        longest_N_run_(global_treat_Ns_as_missense ? 0 : global_Ns_allowed_in_a_row) {}

  /// To the right, then to the left; then trims N. Cost: linear in what is added.
  void extend(Csat& sat) const {
    while (extend_right(sat)) {
    }
    while (extend_left(sat)) {
    }
    sat.trim_Ns();
  }

 private:
  bool extend_right(Csat& sat) const {
    if (sat.pos_right == seq_end_) return false;
    if (*sat.pos_right == *sat.unit_cursor_fwd) {
      advance_right(sat);
      ++sat.score;
      return true;
    }
    const char* run_end = std::find_if_not(sat.pos_right, seq_end_, is_N);
    return bridge(sat, run_end - sat.pos_right, advance_right);
  }

  bool extend_left(Csat& sat) const {
    if (sat.pos_left == seq_begin_) return false;
    if (sat.pos_left[-1] == *sat.unit_cursor_bwd) {
      advance_left(sat);
      ++sat.score;
      return true;
    }
    const char* run_begin = sat.pos_left;
    while (run_begin != seq_begin_ && is_N(run_begin[-1])) --run_begin;
    return bridge(sat, sat.pos_left - run_begin, advance_left);
  }

  bool bridge(Csat& sat, std::ptrdiff_t run_length, void (*advance)(Csat&)) const {
    if (run_length == 0 || run_length > longest_N_run_) return false;
    for (std::ptrdiff_t i = 0; i < run_length; ++i) advance(sat);
    sat.num_Ns += static_cast<std::uint32_t>(run_length);
    return true;
  }

  static bool is_N(char residue) { return residue == 'N'; }

  static void advance_right(Csat& sat) {
    ++sat.pos_right;
    sat.unit_cursor_fwd = sat.next_unit_base(sat.unit_cursor_fwd);
  }

  static void advance_left(Csat& sat) {
    --sat.pos_left;
    sat.unit_cursor_bwd = sat.previous_unit_base(sat.unit_cursor_bwd);
  }

  const char* seq_begin_;
  const char* seq_end_;
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
