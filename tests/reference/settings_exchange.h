// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The settings of the slow twins and those of the product: one list of pairs for both directions.
#ifndef VORLAN_TESTS_REFERENCE_SETTINGS_EXCHANGE_H_
#define VORLAN_TESTS_REFERENCE_SETTINGS_EXCHANGE_H_

#include "config/settings.h"
#include "plain_search.h"

namespace reference {

// Calls exchange(a setting of the twins, that of the product) for each that both have.
template <class Exchange>
void for_each_setting(Settings& settings, const Exchange& exchange) {
  exchange(settings.min_unit_length, vorlan::global_min_unit_length);
  exchange(settings.max_unit_length, vorlan::global_max_unit_length);
  exchange(settings.mismatch_score, vorlan::global_mismatch_score);
  exchange(settings.indel_score, vorlan::global_indel_score);
  exchange(settings.maximum_recursion_depth, vorlan::global_maximum_recursion_depth);
  exchange(settings.maximum_scorereduction, vorlan::global_maximum_scorereduction);
  exchange(settings.Ns_allowed_in_a_row, vorlan::global_Ns_allowed_in_a_row);
  exchange(settings.treat_Ns_as_missense, vorlan::global_treat_Ns_as_missense);
  exchange(settings.prefer_longer_repeat, vorlan::global_prefer_longer_repeat);
  exchange(settings.min_score, vorlan::global_min_score);
  exchange(settings.min_score_a, vorlan::global_min_score_a);
  exchange(settings.min_score_bx, vorlan::global_min_score_bx);
  exchange(settings.min_length, vorlan::global_min_length);
  exchange(settings.min_length_a, vorlan::global_min_length_a);
  exchange(settings.min_length_bx, vorlan::global_min_length_bx);
  exchange(settings.N_and_perfection_mode, vorlan::global_N_and_perfection_mode);
  exchange(settings.min_perfection, vorlan::global_min_perfection);
  exchange(settings.max_perfection, vorlan::global_max_perfection);
  exchange(settings.remove_mostly_hidden, vorlan::global_remove_mostly_hidden);
}

// The settings of the product become these.
inline void set_settings_of_the_product(Settings settings) {
  for_each_setting(settings,
                   [](auto& of_the_twins, auto& of_the_product) { of_the_product = of_the_twins; });
}

inline Settings settings_of_the_product() {
  Settings settings;
  for_each_setting(settings,
                   [](auto& of_the_twins, auto& of_the_product) { of_the_twins = of_the_product; });
  return settings;
}

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_SETTINGS_EXCHANGE_H_
