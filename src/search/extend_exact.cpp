// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/csearchcontroller.h"

namespace vorlan {

void CSearchController::search_exact_and_extend_to_imperfect_repeats() {
  console_.announce("  Searching for exact repeats.\n");
  minScores = &*minScores_intern;
  minLengths = &*minLengths_intern;
  exact_search_2();
  minScores = &*minScores_user;
  minLengths = &*minLengths_user;

  console_.announce("  Extend exact to imperfect repeats.\n");
  while (!exact_sats.empty()) {
    const auto seed = exact_sats.begin();
    Csat& sat = **seed;
    extend_imperfect_forward(sat, seq_end());
    extend_imperfect_backward(sat, seq_begin());
    sat.trim_Ns();
    const unsigned unit_length = sat.unit_length();
    if (sat.reaches((*minScores)[unit_length], (*minLengths)[unit_length])) {
      sat.sort_missense();
      imperfect_sats.splice(imperfect_sats.end(), exact_sats, seed);
    } else {
      exact_sats.recycle(seed);
    }
  }
  imperfect_sats.sort(lessThan_sat);
}

}  // namespace vorlan
