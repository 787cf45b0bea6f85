// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string_view>

namespace vorlan_tools {

/// The texts that a page is made of, put into the program when it is built: page/page.html with all
/// styles and scripts in place. @@data@@ stands where the numbers go.
std::string_view page_template();

}  // namespace vorlan_tools
