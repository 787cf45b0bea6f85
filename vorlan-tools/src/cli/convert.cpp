// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/convert.h"

#include <memory>
#include <string>

#include "errors.h"

namespace vorlan_tools {

void add_convert(CLI::App& app, Action& action) {
  CLI::App* command =
      app.add_subcommand("convert", "Write the repeats of a report for other programs");
  const auto report = std::make_shared<std::string>();
  command->add_option("report", *report, "Report to convert; - is standard input")->required();
  command->callback([&action, report] {
    action = []() -> int { throw UsageError("convert knows no target yet"); };
  });
}

}  // namespace vorlan_tools
