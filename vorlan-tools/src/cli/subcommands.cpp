// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/subcommands.h"

#include "cli/calibrate.h"
#include "cli/catalog.h"
#include "cli/check.h"
#include "cli/compare.h"
#include "cli/consensus.h"
#include "cli/convert.h"
#include "cli/count.h"
#include "cli/mask.h"
#include "cli/merge.h"
#include "cli/monomers.h"
#include "cli/page.h"
#include "cli/resolve.h"
#include "cli/run.h"
#include "cli/ssr.h"
#include "cli/stats.h"

namespace vorlan_tools {

void add_subcommands(CLI::App& app, Action& action,
                     const std::vector<std::string>& vorlan_arguments) {
  add_calibrate(app, action, vorlan_arguments);
  add_catalog(app, action);
  add_check(app, action);
  add_compare(app, action);
  add_consensus(app, action);
  add_convert(app, action);
  add_count(app, action);
  add_mask(app, action);
  add_merge(app, action);
  add_monomers(app, action);
  add_page(app, action);
  add_resolve(app, action);
  add_run(app, action, vorlan_arguments);
  add_ssr(app, action);
  add_stats(app, action);
}

}  // namespace vorlan_tools
