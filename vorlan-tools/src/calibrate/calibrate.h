// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// How far a repeat of some unit length and score can be trusted: a genome against shuffled copies
/// of itself.
///
///     genome  --vorlan-->  repeats found, by unit length and score
///        |                        | long ones
///        +-- without these -------+
///        |
///        +-- shuffled, window by window, words of k bases kept: copy 1 .. R
///                 --vorlan-->  repeats of chance, by unit length and score
///
/// What is assumed: that the genome, but for its long repeats, is as a random text with the same
/// words of k bases in each window. Short true repeats that stay in the windows add their words to
/// the copies, which makes the shares too high rather than too low; structure of other kinds
/// (genes, isochores within a window) is not copied.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "calibrate/calibration.h"

namespace vorlan_tools {

struct CalibrationRequest {
  std::string fasta;                  ///< "-" is standard input
  std::string vorlan;                 ///< absolute path of the program
  std::vector<std::string> settings;  ///< options of the search
  unsigned k = 3;
  std::int64_t copies = 10;
  std::uint64_t seed = 1;
  std::int64_t window = 10000;    ///< 0: whole sequences
  std::int64_t mask_length = 30;  ///< repeats with so many bases are left out of copies; 0: none
  std::size_t jobs = 1;           ///< processes at a time
};

/// Runs vorlan on the genome and its copies, in a folder for temporary files: twice the size of the
/// genome, and a copy more for each job. Memory: one sequence. Throws DataError; ends the process
/// if a signal asks for that. The same request gives the same numbers.
Calibration calibrate(const CalibrationRequest& request);

}  // namespace vorlan_tools
