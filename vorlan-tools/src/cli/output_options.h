// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <string>

#include "io/output_file.h"

namespace vorlan_tools {

/// Adds -o and -O. Both strings must live as long as `command`; `type` becomes z, u, or stays empty
/// if -O is not given.
void add_output_options(CLI::App& command, std::string& output, std::string& type);

/// Adds -@. `threads`, as it stands, is the default.
void add_thread_option(CLI::App& command, int& threads);

/// -O decides; without it, the name decides (compression_by_name()).
Compression compression_of(const std::string& output, const std::string& type);

}  // namespace vorlan_tools
