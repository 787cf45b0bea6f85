// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorlan {

/// Residues as numbers of which two match when they share a bit: a bit for each base, all of them
/// for an N that an extension may bridge, none for other N and outside the sequence.
class ResidueCodes {
 public:
  /// `longest_N_run` is the longest that is bridged, 0 for none. `residues` must outlive this.
  ResidueCodes(std::string_view residues, std::ptrdiff_t longest_N_run)
      : residues_(residues), longest_N_run_(longest_N_run) {}

  std::int16_t operator[](std::ptrdiff_t position) const;

 private:
  bool is_bridged(std::size_t position) const;

  std::string_view residues_;
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
