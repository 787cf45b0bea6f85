// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// How the wraparound kernel reads residues. Compiled once for each instruction set, each time into
// the namespace VORLAN_FILTER_LEVEL, and without the library, like the kernel.

#pragma once

#include <cstddef>
#include <cstdint>

// Each kernel has definitions of its own: inline ones could be shared between instruction sets.
// NOLINTBEGIN(misc-definitions-in-headers)
namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

/// Matches no base and is no N.
constexpr unsigned char kNothing = 0;

/// Residues that are read at once for each start.
constexpr std::size_t kReadAhead = 16;

/// Residues in a row, of one start or for several starts.
using Residues __attribute__((vector_size(kReadAhead))) = unsigned char;

Residues load(const char* first) {
  Residues residues;
  __builtin_memcpy(&residues, first, sizeof residues);
  return residues;
}

Residues reversed(Residues r) {
  return __builtin_shufflevector(r, r, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
}

// Makes columns of rows: each round takes one bit of the row's number to the column's.
void transpose(Residues* rows) {
  for (int round = 0; round < 4; ++round) {
    Residues next[kReadAhead];
    for (std::size_t i = 0; i < kReadAhead / 2; ++i) {
      const Residues a = rows[i];
      const Residues b = rows[i + kReadAhead / 2];
      next[2 * i] =
          __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
      next[2 * i + 1] = __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29,
                                                14, 30, 15, 31);
    }
    __builtin_memcpy(rows, next, sizeof next);
  }
}

/// Reads the residues ahead of one start, to the right (step 1) or to the left (-1). A place is the
/// boundary between two residues.
template <std::ptrdiff_t step>
class Reader {
 public:
  Reader() = default;
  Reader(const char* place, const char* end, std::ptrdiff_t longest_N_run)
      : place_(place), end_(end), longest_N_run_(longest_N_run) {}

  /// The next ones; kNothing from where the extension stops. Sets `has_N` if some are bridged.
  Residues read(bool& has_N) {
    if (step * (end_ - place_) >= static_cast<std::ptrdiff_t>(kReadAhead)) {
      const Residues residues = step > 0 ? load(place_) : reversed(load(place_ - kReadAhead));
      if (longest_N_run_ == 0 || !holds_N(residues)) {
        place_ += step * static_cast<std::ptrdiff_t>(kReadAhead);
        Ns_in_a_row_ = 0;
        return residues;
      }
    }
    Residues residues;
    for (std::size_t i = 0; i < kReadAhead; ++i) residues[i] = read_one(has_N);
    return residues;
  }

 private:
  static bool holds_N(Residues residues) {
    std::uint64_t words[2];
    __builtin_memcpy(words, &residues, sizeof words);
    // Of the five letters only N has bit 3.
    return ((words[0] | words[1]) & 0x0808080808080808) != 0;
  }

  unsigned char read_one(bool& has_N) {
    if (place_ == end_) return kNothing;
    const char residue = step > 0 ? *place_ : place_[-1];
    place_ += step;
    if (residue != 'N' || longest_N_run_ == 0) {
      Ns_in_a_row_ = 0;
    } else if (Ns_in_a_row_ == longest_N_run_) {
      end_ = place_;
      return kNothing;
    } else {
      ++Ns_in_a_row_;
      has_N = true;
    }
    return static_cast<unsigned char>(residue);
  }

  const char* place_ = nullptr;
  const char* end_ = nullptr;
  std::ptrdiff_t longest_N_run_ = 0;
  std::ptrdiff_t Ns_in_a_row_ = 0;
};

}  // namespace
}  // namespace vorlan::VORLAN_FILTER_LEVEL
// NOLINTEND(misc-definitions-in-headers)
