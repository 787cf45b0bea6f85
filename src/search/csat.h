// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <cstdio>
#include <list>
#include <memory>
#include <utility>

#include "input/csequence_mol.h"
#include "search/fastvector.h"

namespace vorlan {

/// An event of an alignment: the residue concerned and what happened there. For a deletion it is
/// the residue to the right of the gap.
using Missense = std::pair<const char*, char>;
inline constexpr char kMismatchEvent = 'M';
inline constexpr char kInsertionEvent = 'I';
inline constexpr char kDeletionEvent = 'D';

/// Something attached to a record by code outside the search. No search ever sets it.
struct AuxObject {};

/// One tandem repeat ("satellite"): a stretch of the sequence, aligned with its own unit written
/// out again and again. All pointers point into the residues of the sequence that is searched and
/// stay valid as long as those.
///
/// Scores: +1 for a match beyond the first copy of the unit, penalties for edits, 0 for a bridged
/// N.
class Csat {
 public:
  Csat() = default;

  /// Makes this the candidate that covers exactly one copy of the unit [left, right), with score 0:
  /// the first copy earns nothing. Keeps the memory of `missense`.
  void init(const char* left, const char* right);

  /// Moves both ends inward over N, so that the repeat begins and ends with a base. Each N trimmed
  /// is taken from `num_Ns`; the score stays.
  void trim_Ns();

  std::uint32_t unit_length() const { return static_cast<std::uint32_t>(unit_end - unit_begin); }

  /// The length that length thresholds and perfection are about, in bases of the perfect repeat:
  /// bases in the sequence - insertions + deletions.
  int repeat_length() const;

  /// Whether score and repeat length are at least these.
  bool reaches(int min_score, int min_length) const {
    return score >= min_score && repeat_length() >= min_length;
  }

  /// Perfection in per cent, by `global_N_and_perfection_mode`; computed in single precision. An
  /// unknown mode ends the process with status 2.
  float perfection() const;

  /// The unit base before or after `cursor`, going round the unit.
  const char* next_unit_base(const char* cursor) const {
    return ++cursor == unit_end ? unit_begin : cursor;
  }
  const char* previous_unit_base(const char* cursor) const {
    return cursor == unit_begin ? unit_end - 1 : cursor - 1;
  }

  /// Order of events in a report: by position, then by event character. Signed like char.
  static bool lessThan_missense(const Missense& a, const Missense& b) { return a < b; }

  /// Sorts `missense` by `lessThan_missense`.
  void sort_missense();

  /// Gives the memory of `missense` back if its events are pending, so that it is of no more use.
  void release_pending_events() {
    if (events_pending) missense.release();
  }

  /// Writes the entry of this repeat to `stream`, or nothing when its perfection is outside the
  /// requested range or its unit is a repetition of a shorter one. See output/report.h.
  void report_sat(std::FILE* stream, CSequence_Mol& sequence) const;

  /// "trinucleotide" and the like. Unit lengths above 6 share a static buffer that the next call
  /// overwrites.
  const char* get_repeat_name() const;

  const char* pos_left = nullptr;         ///< First base of the repeat.
  const char* pos_right = nullptr;        ///< One past its last base.
  const char* unit_cursor_fwd = nullptr;  ///< Unit base expected at `pos_right`.
  const char* unit_cursor_bwd = nullptr;  ///< Unit base expected at `pos_left` - 1.
  const char* unit_begin = nullptr;       ///< The unit is a stretch of the sequence itself.
  const char* unit_end = nullptr;
  std::int32_t score = 0;
  std::uint32_t mismatches = 0;
  std::uint32_t insertions = 0;  ///< Bases of the sequence that the perfect repeat lacks.
  std::uint32_t deletions = 0;   ///< Bases of the perfect repeat that the sequence lacks.
  std::uint32_t num_Ns = 0;      ///< N that were bridged.
  std::unique_ptr<AuxObject> aux_object;
  std::uint8_t recursion_level = 0;  ///< Where the look-ahead starts counting; always 0.
  fastvector<Missense> missense;
  bool events_pending = false;  ///< `missense` is not to be relied on; see complete_events.
};

/// What a candidate is before it is extended over edits.
enum class SeedKind : std::uint8_t {
  kUnit,           ///< One copy of its unit.
  kPerfectRepeat,  ///< The perfect repeat around that copy.
};

/// Order of result lists: by start, then by end. Equal spans compare equal.
bool lessThan_sat(const Csat* a, const Csat* b);

/// The pool of records that are not in use ("allocator of satellites"). It lives as long as the
/// process and owns what it holds; records are recycled and freed only at exit.
class SatPool : public std::list<Csat*> {
 public:
  SatPool() = default;
  ~SatPool();
  SatPool(const SatPool&) = delete;
  SatPool& operator=(const SatPool&) = delete;
};
extern SatPool sat_alloc;

/// Takes the most recently recycled record from `sat_alloc`, or makes one, and initialises it to
/// one copy of the unit [left, right). Throws std::bad_alloc.
Csat* new_sat(const char* left, const char* right);

/// Gives a record back that is in no list.
void recycle_sat(std::list<Csat*>& pool, Csat* sat);

/// A list of results that returns its records to a pool, in order, when it is destroyed.
class CsatContainer : public std::list<Csat*> {
 public:
  explicit CsatContainer(std::list<Csat*>& pool_of_records) : pool(&pool_of_records) {}
  ~CsatContainer() { pool->splice(pool->end(), *this); }
  CsatContainer(const CsatContainer&) = delete;
  CsatContainer& operator=(const CsatContainer&) = delete;

  /// Recycles the record at `position`, node and all, and returns the position after it.
  iterator recycle(iterator position);

  std::list<Csat*>* pool;
};

/// The one record that a scan holds between candidates: a rejected candidate is initialised again
/// in place. Gives a record that is left back to `sat_alloc` when the scan ends.
class SpareSat {
 public:
  SpareSat() = default;
  ~SpareSat();
  SpareSat(const SpareSat&) = delete;
  SpareSat& operator=(const SpareSat&) = delete;

  /// The spare record, initialised to one copy of the unit [left, right).
  Csat& candidate(const char* left, const char* right);

  /// Hands the record over to the end of `results`; there is no spare afterwards. Requires that
  /// there is one.
  void move_to(std::list<Csat*>& results);

 private:
  void take_from_pool(const char* left, const char* right);

  /// The record, or nothing. A list, so that its node goes from list to list with it: neither
  /// taking it from the pool nor handing it over needs memory, and giving it back may not, since a
  /// scan is also given up for want of memory.
  std::list<Csat*> spare_;
};

}  // namespace vorlan
