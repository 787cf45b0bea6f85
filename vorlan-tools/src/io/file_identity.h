// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

namespace vorlan_tools {

/// Whether both names lead to one file, by whatever path, link or second name. "-" as `input` is
/// what standard input reads from, as `output` what standard output writes to. False if one of them
/// does not exist, or is no regular file: a device holds nothing that could be overwritten.
bool is_same_file(const std::string& input, const std::string& output);

/// Throws UsageError if `output` is the same file as one of the inputs.
void refuse_input_as_output(const std::vector<std::string>& inputs, const std::string& output);

}  // namespace vorlan_tools
