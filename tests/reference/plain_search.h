// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The three repeat searches, written slowly and plainly.
//
// Idea: a second, independent writing of the search rules. Every look-ahead is a plain recursion,
// every scan visits every position, every snapshot is a copy of the whole record. Nothing is
// filtered, cached, merged or packed into bits, so each line can be held against the rule that it
// states. The product must give the same records, event for event, and must be faster; so these
// functions are both the oracle of the comparison tests and the yardstick of the benchmarks.
//
// Why this is right: there is one function per rule, and rules that mirror each other (forward and
// backward extension) are one text with two directions rather than two texts.
//
// Example: residues TTACACACGG, unit length 2. The stretch [2,4) = AC is one copy of the unit, with
// score 0. Going right A, C, A, C match (score 4), G would need an edit of -5 that never pays,
// going left T does not match C. The repeat is [2,8), score 4: below the default minimum of 6,
// rejected.
//
// All positions are 0-based offsets into the residues; intervals are half open. The residues hold
// only 'A', 'C', 'G', 'T' and 'N', at most 2,147,483,647 of them. Nothing here keeps state between
// calls, prints, or reads a byte outside the residues.
#ifndef VORLAN_TESTS_REFERENCE_PLAIN_SEARCH_H_
#define VORLAN_TESTS_REFERENCE_PLAIN_SEARCH_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace reference {

// The settings that a search reads, with the program's defaults.
//
// REQUIRES: min_unit_length >= 1; mismatch_score <= -2; indel_score <= -2;
//           maximum_recursion_depth >= 1; Ns_allowed_in_a_row >= 0; prefer_longer_repeat is 0 or 1;
//           N_and_perfection_mode is 0, 1 or 2.
struct Settings {
  unsigned min_unit_length = 1;
  unsigned max_unit_length = 10;
  int mismatch_score = -5;
  int indel_score = -5;
  int maximum_recursion_depth = 5;
  int maximum_scorereduction = 2147483647;
  int Ns_allowed_in_a_row = 2;
  bool treat_Ns_as_missense = false;
  int prefer_longer_repeat = 1;
  int min_score = 6;
  int min_score_a = 0;
  float min_score_bx = 1;
  int min_length = 0;
  int min_length_a = 0;
  float min_length_bx = 0;
  int N_and_perfection_mode = 0;
  float min_perfection = 0;
  float max_perfection = 100;
  bool remove_mostly_hidden = true;
};

// One edit of an alignment: 'M' mismatch and 'I' insertion at the residue concerned, 'D' deletion
// at the residue to the right of the gap.
struct Event {
  std::size_t position = 0;
  char kind = 'M';
  bool operator==(const Event&) const = default;
};

// One tandem repeat: the residues [begin, end) aligned against endless copies of the unit, which is
// the stretch [unit_begin, unit_end) of the same residues.
struct Repeat {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t unit_begin = 0;
  std::size_t unit_end = 0;
  std::size_t cursor_forward = 0;   // unit base that the residue at `end` must equal
  std::size_t cursor_backward = 0;  // unit base that the residue at `begin - 1` must equal
  int score = 0;
  unsigned mismatches = 0;
  unsigned insertions = 0;
  unsigned deletions = 0;
  unsigned num_Ns = 0;        // N residues inside that were passed over with score 0
  std::vector<Event> events;  // in order of application while extending; sorted in results
  bool operator==(const Repeat&) const = default;
};

// What an imperfect search or an extension did. The functions add to the values that they find.
struct Counters {
  unsigned long long candidates = 0;        // candidates set up and extended by the scans
  unsigned long long decision_points = 0;   // residues at which an extension had to choose an edit
  unsigned long long look_ahead_calls = 0;  // calls of a look-ahead, nested ones included
  unsigned long long accepted = 0;          // records accepted by the scans
};

// ---- Searches -------------------------------------------------------------------------------
// Results are sorted by begin, then end; equal spans stay in the order in which they were found
// (shorter units first). Overlapping repeats are all still there, see without_hidden(). Neither
// perfection nor primitivity of the unit has been used to drop a record.

// Perfect repeats, short runs of N bridged.
std::vector<Repeat> exact_search(std::string_view residues, const Settings& settings);

// Perfect repeats found under the fixed thresholds of seeds, then extended over edits.
std::vector<Repeat> extend_exact_search(std::string_view residues, const Settings& settings);

// Every position and unit length tried as the seed of an imperfect repeat.
std::vector<Repeat> imperfect_search(std::string_view residues, const Settings& settings,
                                     Counters* counters = nullptr);

// Removes one of any two mostly overlapping repeats; returns the list unchanged when
// settings.remove_mostly_hidden is false.
// REQUIRES: repeats sorted by begin, then end.
std::vector<Repeat> without_hidden(std::vector<Repeat> repeats, const Settings& settings);

// ---- Extension over edits -------------------------------------------------------------------

// Extends the repeat to the right, up to the end of the residues. Events are appended in ascending
// order of position; unit_begin, unit_end and begin do not change.
void extend_forward(std::string_view residues, const Settings& settings, Repeat& repeat,
                    Counters* counters = nullptr);

// Extends the repeat to the left, down to the first residue. Events are appended in descending
// order of position; unit_begin, unit_end and end do not change.
void extend_backward(std::string_view residues, const Settings& settings, Repeat& repeat,
                     Counters* counters = nullptr);

// Where a look-ahead starts.
struct LookAheadStart {
  std::size_t position = 0;    // forward: the next residue; backward: one past the next residue
  std::size_t cursor = 0;      // the unit base expected for the next residue
  std::size_t unit_begin = 0;  // the unit, as in Repeat
  std::size_t unit_end = 0;
  std::int64_t score = 0;  // reached so far on this path
  std::int64_t best = 0;   // the best score seen so far by the calling chain
  std::uint8_t level = 1;  // 1 when called from an extension; wraps at 256
};

// The highest score that an explored path reaches at a decision point or at its end.
// Cost: up to 3 to the power of maximum_recursion_depth calls; one stack frame per nested edit.
std::int64_t look_ahead_forward(std::string_view residues, const Settings& settings,
                                const LookAheadStart& start, Counters* counters = nullptr);
std::int64_t look_ahead_backward(std::string_view residues, const Settings& settings,
                                 const LookAheadStart& start, Counters* counters = nullptr);

// ---- Quantities of a repeat -----------------------------------------------------------------

// Makes the repeat cover exactly one copy of the unit [begin, end): score 0, no events.
void become_one_copy(Repeat& repeat, std::size_t begin, std::size_t end);

// Residues covered, less the insertions, plus the deletions.
int repeat_length(const Repeat& repeat);

// Percentage of the repeat length that is neither edit nor, by N_and_perfection_mode, N.
float perfection(const Repeat& repeat, const Settings& settings);

// Gives up N residues at the right end, then at the left end. The score stays.
// REQUIRES: at least one residue of the repeat is not N.
void trim_Ns(std::string_view residues, Repeat& repeat);

// Puts the events in order of position, then kind ('D' before 'I' before 'M').
void sort_events(Repeat& repeat);

// Puts the repeats in order of begin, then end, without changing the order of equal spans.
void sort_repeats(std::vector<Repeat>& repeats);

// What a repeat of one unit length must reach; equal values pass.
struct Thresholds {
  int score = 0;
  int length = 0;
};

// From the settings: the larger of the constant and ceil(a + unit_length * b), each operation
// rounded to single precision, values outside 32 bits saturated.
Thresholds user_thresholds(const Settings& settings, std::size_t unit_length);

// For the perfect seeds of extend_exact_search(): a score of 4, or of the unit length if that is
// larger, and no minimum length.
Thresholds seed_thresholds(std::size_t unit_length);

bool reaches(const Repeat& repeat, const Thresholds& thresholds);

}  // namespace reference

#endif  // VORLAN_TESTS_REFERENCE_PLAIN_SEARCH_H_
