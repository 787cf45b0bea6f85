// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "io/output_file.h"

namespace vorlan_tools {

/// bgzip for names that end in .gz, .bgz or .bgzf, as its readers expect: the rule of all outputs.
Compression compression_by_name(const std::string& name);

}  // namespace vorlan_tools
