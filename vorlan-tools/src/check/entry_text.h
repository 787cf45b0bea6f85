// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "convert/row_text.h"
#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// Appends the entry as vorlan lays it out, paddings included, from the fields of `repeat`: the
/// first line in formats 0, 1 and 4, the row in 2 and 3. Requires the fields that the format
/// states.
void append_entry_text(RowText& text, const Repeat& repeat, const Settings& settings,
                       const std::string& name);

}  // namespace vorlan_tools
