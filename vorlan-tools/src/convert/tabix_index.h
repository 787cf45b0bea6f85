// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <htslib/tbx.h>

#include <cstdint>
#include <string>

#include "io/output_file.h"

namespace vorlan_tools {

/// Finishes a table that is compressed with bgzip, together with its index. `name` is the final one
/// of the table, to which .tbi is added, or .csi if rows end, at `longest_end`, behind what a plain
/// index holds. Neither file has its final name before both are whole. Throws DataError.
void finish_with_index(OutputFile& table, const std::string& name, std::int64_t longest_end,
                       const tbx_conf_t& layout, int threads);

}  // namespace vorlan_tools
