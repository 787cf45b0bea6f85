// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/subcommands.h"

#include "cli/check.h"
#include "cli/compare.h"
#include "cli/consensus.h"
#include "cli/convert.h"
#include "cli/count.h"
#include "cli/mask.h"
#include "cli/merge.h"
#include "cli/monomers.h"
#include "cli/run.h"

namespace vorlan_tools {

void add_subcommands(CLI::App& app, Action& action,
                     const std::vector<std::string>& vorlan_arguments) {
  add_check(app, action);
  add_compare(app, action);
  add_consensus(app, action);
  add_convert(app, action);
  add_count(app, action);
  add_mask(app, action);
  add_merge(app, action);
  add_monomers(app, action);
  add_run(app, action, vorlan_arguments);
}

}  // namespace vorlan_tools
