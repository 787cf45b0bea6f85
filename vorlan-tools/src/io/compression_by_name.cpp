// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/compression_by_name.h"

#include <array>
#include <string_view>

namespace vorlan_tools {

Compression compression_by_name(const std::string& name) {
  constexpr std::array<std::string_view, 3> kEndings{".gz", ".bgz", ".bgzf"};
  for (const std::string_view ending : kEndings) {
    if (std::string_view(name).ends_with(ending)) return Compression::kBgzip;
  }
  return Compression::kPlain;
}

}  // namespace vorlan_tools
