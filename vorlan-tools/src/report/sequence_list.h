// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "io/rereadable_input.h"

namespace vorlan_tools {

/// A sequence of which a report tells the length.
struct ListedSequence {
  std::string name;
  std::int64_t length;
};

/// All sequences of a report in its order, also those without repeats: for targets that want them
/// before the first repeat. Formats 0 and 1, and 2 and 3 with comments, tell them; for others the
/// list is empty. Reads the whole report. Throws LineError where its lines cannot stand.
std::vector<ListedSequence> list_sequences(const RereadableInput& input);

}  // namespace vorlan_tools
