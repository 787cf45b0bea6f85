// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "plain_search.h"
#include "random.h"
#include "settings_exchange.h"

namespace vorlan {

/// A factor of the work of each test: instrumented code does less in the same time.
#ifdef VORLAN_FAST_PATH_REDUCED
inline constexpr int kWorkload = 1;
#else
inline constexpr int kWorkload = 8;
#endif

/// Settings of an extension without a limit of the score reduction.
inline reference::Settings random_unlimited_settings(differential::Random& random) {
  reference::Settings settings;
  settings.mismatch_score = random.between(-9, -2);
  settings.indel_score = random.between(-9, -2);
  settings.maximum_recursion_depth = random.between(1, 5);
  settings.prefer_longer_repeat = random.between(0, 1);
  settings.Ns_allowed_in_a_row = random.one_of({0, 1, 2, 2, 3, 5, 12});
  settings.treat_Ns_as_missense = random.per_cent(15);
  return settings;
}

}  // namespace vorlan
