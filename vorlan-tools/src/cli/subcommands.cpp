// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/subcommands.h"

#include "cli/check.h"
#include "cli/convert.h"
#include "cli/merge.h"
#include "cli/run.h"

namespace vorlan_tools {

void add_subcommands(CLI::App& app, Action& action) {
  add_check(app, action);
  add_convert(app, action);
  add_merge(app, action);
  add_run(app, action);
}

}  // namespace vorlan_tools
