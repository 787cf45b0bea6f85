// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// An upper bound on what the extension of a candidate can reach: the best score over all paths,
// not only over the one that the look-ahead would choose.
//
// Idea: align the residues ahead with the unit written round and round. A row of cells, one for
// each unit base, holds the best score of all paths that have consumed so many residues and for
// which that base is due next; a step over one residue makes the next row. Behind the last base
// the row goes on with the first. This is wraparound dynamic programming: V. A. Fischetti,
// G. M. Landau, P. H. Sellers, J. P. Schmidt, "Identifying periodic occurrences of a template with
// applications to protein structure", Information Processing Letters 45, 1993. Here paths end where
// an extension ends: no edit is made that leads down to the floor.
//
// A candidate whose best score, first forward and then backward from there, is less than what is
// accepted is hopeless, since every path of the extension is a path here, with the same score:
//   - the extension makes an edit only where the residue differs from the base that is due, and
//     only if the score behind it is above the floor. A limited score reduction only raises that
//     threshold; the look-ahead, of whatever depth, only chooses among these edits;
//   - a bridged N moves both ends and scores nothing. The extension stops before a run of N that is
//     too long; here as many as allowed are passed, which gains nothing, and then nothing matches;
//   - outside the sequence nothing matches. The extension stops there;
//   - the backward extension begins with a score that the forward one reached, so at most with the
//     best. A path that may be made from a score may be made from a higher one, and ends higher;
//   - trimming N from the ends and asking for a length leave the score as it is.
// A rejected candidate leaves no trace, so it does not matter that it was never extended.
//
// Example that cannot be accepted, unit AC, penalties 5, 6 points needed: in GT|AC|ACAC|GGTT.. the
// best forward score is 4; the mismatch behind it leaves -1, the next one is below the floor, -3.
// Backward a mismatch at T leaves -1 again. 4 is less than 6.
// Example that is left to the extension: GT|AC|ACACAC|GG.., 6 points forward; nothing else is
// looked at.
//
// Registers: each lane is one group, so that no lane needs its neighbour, and groups may lie
// anywhere. What is stored is the score above the floor; 0 stands for no path, and subtraction
// stops there, so that a path that falls to the floor is gone. 8 bits suffice for units up to about
// 120 bases, 16 for all others.
//
//            unit base due ->          cells of one row, for all lanes together:
//             A C A T G                 from the left: deletion   (same row)
//   residue G . . 3 1 .                 from above: insertion
//   residue T . . . 4 2                 from above left: match or mismatch
//
// Cells outside the bands of live ones are not touched. There are two bands while some paths have
// gone round and others have not.
//
// Groups: the units of neighbouring starts are almost the same circle, and so are those of
// neighbouring lengths. So neighbours share the cells. Cut open, their circles lie in one strip of
// bases, from the first start to the end of the longest unit of the last one:
//
//     strip                 A C A T G C      starts 0 and 1 of ACATGC.., units of 4 and 5
//     cells, and the end    0 1 2 3 4 5 6
//     start 0               [ . . . )        from cell 4 back to cell 0
//                           [ . . . . )      from cell 5 back to cell 0
//     start 1                 [ . . . )      from cell 5 back to cell 1
//                             [ . . . . )    from cell 6 back to cell 1
//
// Behind the last base of its unit a path goes on with the first: from cell p to cell p - u. Whose
// path it is is not noted, so a path may go round by any unit length of the group, from wherever
// the end of a unit may be. Each candidate begins its paths where it is met: to the right at its
// first base, after as many residues as its unit ends behind the first unit that ends; to the left
// the other way round, the last start first. So every path of every candidate is a path of its
// group, with the same score. The floor is that of the longest unit. Where the best of the group,
// forward and then backward, is less than what is accepted, all its candidates are hopeless. The
// reverse does not hold, since a path may take bases of several units: a group that has enough is
// left to the extension as a whole.
//
// Example, starts 2 and 3 of GTACACACGGTT, units of 2: the strip is ACA. Start 2 has 4 points, all
// of them forward; start 3 has 3 forward and 1 backward; the group has 4 and 1. If 6 points are
// needed, the group is hopeless. If 5 are needed it is left, although each of its starts is
// hopeless.
//
// A start that is undecided for very long is left to the extension: one that neither gains nor
// loses would be followed to the end of an array, and so would all the starts behind it, whereas
// extensions share what they find out.
//
// Cost: some 16 instructions for each live cell, for 8 to 64 groups of starts. Random sequence is
// left after two or three units; repeats are left as soon as they are long enough.

#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlan {

/// What the bound needs to know of the candidates.
struct WraparoundPlan {
  const char* seq_begin;
  const char* seq_end;
  std::ptrdiff_t first_length;  ///< Of the units, in bases.
  std::ptrdiff_t last_length;   ///< Included.
  int floor;                    ///< An edit is made only if the score stays above it. Negative.
  int mismatch_cost;            ///< Positive; no more than the largest lane.
  int indel_cost;
  int min_score;                 ///< At least 1.
  std::ptrdiff_t longest_N_run;  ///< Of N that are bridged; 0 if N matches nothing.
  std::ptrdiff_t most_rows;      ///< A start that is not decided after so many survives.
};

/// Neighbouring starts that are judged together, with all unit lengths: all from the first to the
/// last, which are offsets in the sequence. Requires that the last lies behind the first by less
/// than the shortest unit length, and by no more than fits a lane.
struct StartGroup {
  std::ptrdiff_t first;
  std::ptrdiff_t last;  ///< Included.
};

/// Rows between two looks at which starts have enough. A score grows by one for each row.
/// Chosen by the bench, table "Tuning".
inline constexpr int kWraparoundRowsPerLook = 8;

/// Registers that a kernel needs for units of these lengths and groups of up to so many starts.
constexpr std::size_t wraparound_registers(std::size_t first_length, std::size_t last_length,
                                           std::size_t most_starts) {
  constexpr std::size_t kBasesAtOnce = 16;
  const std::size_t cells = last_length + most_starts;
  return cells + (cells - first_length) + cells + kBasesAtOnce;
}

/// Writes to `can_reach` for each of `count` groups whether the extension of one of its candidates
/// may reach the least score. Requires at most as many groups as there are lanes, that all units
/// lie in the sequence, and `memory`, aligned to a register, of `wraparound_registers` registers.
using JudgeWraparound = void(const WraparoundPlan& plan, const StartGroup* groups,
                             std::size_t count, std::byte* memory, bool* can_reach);

/// The functions of one instruction set, and its registers.
struct WraparoundKernel {
  std::size_t register_bytes;
  JudgeWraparound* judge_narrow;  ///< With lanes of 8 bits.
  JudgeWraparound* judge_wide;    ///< With lanes of 16 bits.
};
namespace portable {
extern const WraparoundKernel kWraparoundKernel;
}  // namespace portable
namespace avx2 {
extern const WraparoundKernel kWraparoundKernel;
}  // namespace avx2
namespace avx512 {
extern const WraparoundKernel kWraparoundKernel;
}  // namespace avx512

}  // namespace vorlan
