// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "search/accelerations.h"

namespace vorlan {

/// One run of the program, from the banner to the closing words. Takes the arguments of main and
/// returns its result: see driver/exit_status.h. Without `accelerations` it prints the same bytes,
/// later.
int run(int argc, const char* const* argv, const Accelerations& accelerations = {});

}  // namespace vorlan
