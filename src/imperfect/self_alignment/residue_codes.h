// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorlan {

/// Residues as numbers of which two match when they share a bit: a bit for each base, all of them
/// for an N that an extension may bridge, none for other N and outside the sequence.
class ResidueCodes {
 public:
  /// `longest_N_run` is the longest that is bridged, 0 for none. `residues` must outlive this.
  ResidueCodes(std::string_view residues, std::ptrdiff_t longest_N_run)
      : residues_(residues), longest_N_run_(longest_N_run) {}

  /// Writes the codes of the residues from `first` on, which may lie outside the sequence.
  void read(std::ptrdiff_t first, std::span<std::int16_t> codes) const;

 private:
  bool is_bridged(std::size_t position) const;

  std::string_view residues_;
  std::ptrdiff_t longest_N_run_;
};

}  // namespace vorlan
