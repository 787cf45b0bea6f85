// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/head_run.h"

#include <cstdio>

#include "errors.h"
#include "io/line_reader.h"
#include "run/child_process.h"
#include "run/children.h"
#include "run/vorlan_end.h"

namespace vorlan_tools {

int HeadRun::execute() {
  write_small_file(folder_.file("head.fa"), ">");
  Command command{options_.vorlan, options_.settings, folder_.path(), folder_.file("head.report"),
                  folder_.file("head.messages")};
  command.arguments.insert(command.arguments.end(), options_.range.begin(), options_.range.end());
  command.arguments.insert(command.arguments.end(), {"--", "head.fa"});
  const VorlanEnd end(wait_for(start(command)));
  if (end.is_success()) return 0;
  if (!end.is_refusal()) throw DataError(options_.vorlan + " " + end.text() + ".");
  const std::string messages = read_small_file(folder_.file("head.messages"));
  std::fwrite(messages.data(), 1, messages.size(), stderr);
  return end.status();
}

Head HeadRun::head() const {
  LineReader lines(folder_.file("head.report"));
  return read_head(lines);
}

}  // namespace vorlan_tools
