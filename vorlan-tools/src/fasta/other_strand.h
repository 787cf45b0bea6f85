// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

namespace vorlan_tools {

/// The other strand of bases as FastaReader delivers them; what is no A, C, G or T stays.
std::string other_strand(std::string_view bases);
void append_other_strand(std::string& text, std::string_view bases);
char other_strand(char base);

}  // namespace vorlan_tools
