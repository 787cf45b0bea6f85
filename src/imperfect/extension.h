// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "imperfect/record_search.h"
#include "imperfect/ways/stored_ways.h"
#include "search/csat.h"

namespace vorlan {

/// Extends `sat` in one direction, up to `stop`, the end of the record or its first residue, and
/// leaves the best alignment found in `sat`, its events unsorted.
///
/// Stretches of stored ways are passed over: their edits are counted, but stand in `passed_over`,
/// which must be empty, instead of in the events of `sat`.
///
/// An alignment that ends with less than `least_score` need not be the best one: only that its
/// score is less is right then.
template <class Direction>
void extend(Csat& sat, const char* stop, RecordSearch& record, std::vector<WaySegment>& passed_over,
            std::int64_t least_score = std::numeric_limits<std::int64_t>::min());

}  // namespace vorlan
