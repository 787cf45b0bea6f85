// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <list>
#include <ostream>
#include <string>
#include <vector>

#include "search/csat.h"
#include "support/dna.h"

namespace vorlan {

/// Where a repeat lies and what its unit is, in offsets from the first base.
struct Span {
  std::ptrdiff_t left;
  std::ptrdiff_t right;
  std::ptrdiff_t unit_begin;
  std::ptrdiff_t unit_length;

  bool operator==(const Span&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Span& span) {
  return out << '[' << span.left << ',' << span.right << ") unit " << span.unit_begin << '+'
             << span.unit_length;
}

inline Span span_of(const Csat& sat, const Dna& dna) {
  const char* base = dna.at(0);
  return {sat.pos_left - base, sat.pos_right - base, sat.unit_begin - base,
          sat.unit_end - sat.unit_begin};
}

inline std::vector<Span> spans_of(const std::list<Csat*>& sats, const Dna& dna) {
  std::vector<Span> spans;
  for (const Csat* sat : sats) spans.push_back(span_of(*sat, dna));
  return spans;
}

/// The events of a repeat as "8M 14D ", positions as offsets from the first base.
inline std::string events_of(const Csat& sat, const Dna& dna) {
  std::string text;
  for (const Missense& event : sat.missense) {
    text += std::to_string(event.first - dna.at(0)) + event.second + ' ';
  }
  return text;
}

/// Puts the pool of records aside, so that a test sees only the records it made itself.
class EmptyPool {
 public:
  EmptyPool() { aside_.splice(aside_.end(), sat_alloc); }
  ~EmptyPool() { sat_alloc.splice(sat_alloc.end(), aside_); }
  EmptyPool(const EmptyPool&) = delete;
  EmptyPool& operator=(const EmptyPool&) = delete;

 private:
  std::list<Csat*> aside_;
};

}  // namespace vorlan
