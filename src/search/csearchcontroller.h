// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdio>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string_view>

#include "input/csequence_mol.h"
#include "search/accelerations.h"
#include "search/csat.h"
#include "search/search_console.h"
#include "search/thresholds.h"

namespace vorlan {

class BitPlanes;
class CAnchorSeq;
class RecordSearch;     // what the imperfect searches of the record share; in imperfect/
struct SimilarStarts;   // which starts of the record resemble what follows; in imperfect/
class SeriesSurvivors;  // what is known of them beforehand; in imperfect/

/// The search of one sequence: a view of it, the repeats found in it, and the three ways of
/// searching. Construct one for each record, call one search, then `remove_hidden`,
/// `complete_events` and `report_SATList` on the list that the search filled, and destroy it, which
/// recycles all records.
///
/// Positions are pointers into `sequence.residues`, which must outlive the controller unchanged.
class CSearchController {
 public:
  /// `sequence_number` counts the records of the input from 1; it and the name of the sequence
  /// appear in progress lines. The first construction of a run sets the thresholds from the
  /// settings; later ones keep them.
  CSearchController(unsigned sequence_number, CSequence_Mol& sequence,
                    const SearchConsole& console = {}, const Accelerations& accelerations = {});

  /// The least scores of the user for this run; sets the thresholds like the first construction.
  static const UnitLengthThresholds& user_min_scores();

  /// Forgets the thresholds; the next construction takes them from the settings again.
  static void reset_minimum_arrays();

  /// Finds the perfect repeats of every unit length in range, sorted, into `exact_sats`.
  void exact_search_2();

  /// Finds perfect seeds and extends each to an imperfect repeat. The accepted ones are in
  /// `imperfect_sats`, sorted; `exact_sats` is empty afterwards. Several seeds of one repeat give
  /// several records: overlap removal sorts that out.
  void search_exact_and_extend_to_imperfect_repeats();

  /// Tries every position and unit length as a seed of an imperfect repeat. The accepted ones are
  /// in `imperfect_sats`, sorted. The stream is not used.
  void complete_imperfect_search(std::FILE* out);

  /// Hands `complete_imperfect_search` what the filter of a series has found out about the starts
  /// of this record, or null; it must outlive the search. Matters only for speed.
  void set_series_survivors(const SeriesSurvivors* survivors) { series_survivors_ = survivors; }

  /// Thins a sorted list: of two repeats of which one is mostly hidden by the other, the one with
  /// the lower score goes, or the later one. Keeps all unless `global_remove_mostly_hidden`.
  void remove_hidden(CsatContainer& sats);

  /// Finds the events of those repeats of the list that were accepted without noting them all. To
  /// be called before anything reads the events; `remove_hidden` before leaves fewer to find.
  void complete_events(CsatContainer& sats);

  /// Writes the block of this sequence: header, an entry for each repeat of the list, footer; then
  /// flushes. See output/report.h.
  void report_SATList(std::FILE* stream, const std::list<Csat*>& sats);

  /// Extends `sat` to the right over mismatches, insertions, deletions and short N runs, and leaves
  /// the best alignment found in `sat`. Requires that `seq_end` is one past the last residue.
  void extend_imperfect_forward(Csat& sat, const char* seq_end);

  /// The mirror image: extends to the left. Requires that `left_stop` is the first residue, before
  /// which there is nothing to extend over.
  void extend_imperfect_backward(Csat& sat, const char* left_stop);

  unsigned sequence_number;
  CSequence_Mol& sequence;
  CsatContainer exact_sats;
  CsatContainer imperfect_sats;

  /// The active thresholds: those of the user, or, while extend-exact mode collects its seeds, the
  /// program's own. Null before the first construction.
  static const UnitLengthThresholds* minScores;
  static const UnitLengthThresholds* minLengths;

  static std::optional<UnitLengthThresholds> minScores_user;
  static std::optional<UnitLengthThresholds> minLengths_user;
  static std::optional<UnitLengthThresholds> minScores_intern;
  static std::optional<UnitLengthThresholds> minLengths_intern;

 private:
  static void set_thresholds();

  std::string_view residues() const { return sequence.residues.view(); }
  const char* seq_begin() const { return sequence.residues.buf; }
  const char* seq_end() const { return sequence.residues.buf + sequence.residues.size; }
  std::size_t seq_length() const { return sequence.residues.size; }

  /// The longest unit that has candidates: it is shorter than the sequence.
  unsigned longest_unit() const;

  /// Is given each perfect repeat that reaches the active thresholds, which it may change, and may
  /// release from the spare that holds it.
  using TakeRepeat = std::function<void(SpareSat& spare, Csat& sat)>;

  /// Finds the perfect repeats of every unit length in range: shorter units first, then from left
  /// to right. Requires that `planes` have the margin of ExactFilter for the longest unit.
  void find_perfect_repeats(const BitPlanes& planes, const TakeRepeat& take);
  void find_perfect_repeats(unsigned unit_length, const BitPlanes& planes, CAnchorSeq& mask,
                            const TakeRepeat& take);

  /// Extends a seed over edits and tells whether it is accepted then.
  using ExtendSeed = std::function<bool(Csat& seed)>;

  /// The extend-exact mode but for the extension itself.
  void extend_seeds(const BitPlanes& planes, const ExtendSeed& extend);

  void one_unit_len_complete_imperfect_search(unsigned unit_len, CAnchorSeq& anchors,
                                              std::list<Csat*>& results);

  /// See RecordSearch::similar_starts; shows progress.
  SimilarStarts similar_starts(unsigned unit_length, const CAnchorSeq& anchors);

  /// How far the scan for a unit length has asked for progress.
  struct ScanProgress {
    unsigned unit_length;
    std::ptrdiff_t next_check = 0;
  };

  /// Shows a progress line for each start below `end` that is one of every 256, was not asked for
  /// before and is visited by the scan, if a line is due. Starts below `first_visited` are not.
  void report_progress(ScanProgress& progress, std::ptrdiff_t end,
                       std::ptrdiff_t first_visited = 0);

  /// Made by the first call, whose `seed` is that of the record; later calls name the same.
  RecordSearch& record_search(SeedKind seed);

  SearchConsole console_;
  Accelerations accelerations_;
  const SeriesSurvivors* series_survivors_ = nullptr;
  std::shared_ptr<RecordSearch>
      record_search_;  ///< Shared by none: imperfect/ knows how to delete.
};

}  // namespace vorlan
