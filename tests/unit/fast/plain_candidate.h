// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <string_view>

#include "plain_search.h"

namespace vorlan {

/// Whether the stretch can be a unit, as far as N is concerned.
inline bool holds_only_bases(std::string_view stretch) {
  return stretch.find('N') == std::string_view::npos;
}

/// What the slow twin makes of the candidate at `start`, its events in the order of the extension.
/// Requires a unit without N.
inline reference::Repeat extended_plainly(std::string_view residues,
                                          const reference::Settings& settings, std::size_t start,
                                          std::size_t unit_length) {
  reference::Repeat repeat;
  reference::become_one_copy(repeat, start, start + unit_length);
  reference::extend_forward(residues, settings, repeat);
  reference::extend_backward(residues, settings, repeat);
  reference::trim_Ns(residues, repeat);
  return repeat;
}

}  // namespace vorlan
