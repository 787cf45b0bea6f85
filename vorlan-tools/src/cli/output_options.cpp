// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/output_options.h"

#include <CLI/CLI.hpp>

#include "io/compression_by_name.h"

namespace vorlan_tools {

void add_output_options(CLI::App& command, std::string& output, std::string& type) {
  command.add_option("-o,--output", output, "File to write; - is standard output (default)");
  command
      .add_option(
          "-O,--output-type", type,
          "z: compress with bgzip, u: do not (default: z if the output ends in .gz, .bgz or "
          ".bgzf)")
      ->check(CLI::IsMember({"z", "u"}));
}

void add_thread_option(CLI::App& command, int& threads) {
  constexpr int kMostThreads = 256;
  command.add_option("-@,--threads", threads, "Threads that compress (default 1)")
      ->check(CLI::Range(1, kMostThreads));
}

Compression compression_of(const std::string& output, const std::string& type) {
  if (type.empty()) return compression_by_name(output);
  return type == "z" ? Compression::kBgzip : Compression::kPlain;
}

}  // namespace vorlan_tools
