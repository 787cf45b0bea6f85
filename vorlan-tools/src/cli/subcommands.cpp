// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/subcommands.h"

#include "cli/check.h"
#include "cli/convert.h"

namespace vorlan_tools {

void add_subcommands(CLI::App& app, Action& action) {
  add_check(app, action);
  add_convert(app, action);
}

}  // namespace vorlan_tools
