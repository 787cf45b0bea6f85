// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Sequences for vorlan_kernels. All are generated from fixed seeds with the raw numbers of
// std::mt19937_64, which are the same with every standard library, unlike those of the
// distributions.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "input/csequence_mol.h"

namespace kernel_inputs {

inline constexpr unsigned kHalf = 128;   ///< Of 256: the share of G and C in random background.
inline constexpr unsigned kAtRich = 51;  ///< 20 %, as in AT-rich genomes.

/// Independent bases, `gc_of_256` out of 256 of them G or C.
std::string background(std::size_t length, unsigned gc_of_256);

/// (AT)n in which 10 % of the bases are edited: 6 % substituted, 2 % preceded by an inserted base,
/// 2 % deleted.
std::string diverged_array(std::size_t length);

/// The residues as FASTA, cut into records of `record_length`.
std::string fasta(std::string_view residues, std::size_t record_length);

/// A file that lasts as long as the object. Throws std::runtime_error.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view text);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* name() const { return name_.c_str(); }

 private:
  std::string name_;
};

/// The residues as the reader of the program delivers them. Throws std::runtime_error.
std::unique_ptr<vorlan::CSequence_Mol> sequence_of(std::string_view residues);

}  // namespace kernel_inputs
