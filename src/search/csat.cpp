// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "search/csat.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <iterator>

#include "config/settings.h"

namespace vorlan {

namespace {

constexpr int kUnknownPerfectionMode = 2;  // exit status

int as_int(std::uint32_t value) { return static_cast<int>(value); }

}  // namespace

SatPool sat_alloc;

SatPool::~SatPool() {
  for (Csat* sat : *this) delete sat;
}

void Csat::init(const char* left, const char* right) {
  pos_left = unit_begin = unit_cursor_fwd = left;
  pos_right = unit_end = right;
  unit_cursor_bwd = right - 1;
  score = 0;
  mismatches = insertions = deletions = num_Ns = 0;
  aux_object.reset();
  recursion_level = 0;
  missense.size = 0;
  events_pending = false;
}

void Csat::trim_Ns() {
  for (; pos_right[-1] == 'N'; --num_Ns) {
    --pos_right;
    unit_cursor_fwd = previous_unit_base(unit_cursor_fwd);
  }
  for (; *pos_left == 'N'; --num_Ns) {
    ++pos_left;
    unit_cursor_bwd = next_unit_base(unit_cursor_bwd);
  }
}

int Csat::repeat_length() const {
  return as_int(static_cast<std::uint32_t>(pos_right - pos_left) - insertions + deletions);
}

float Csat::perfection() const {
  const int length = repeat_length();
  const int matches_and_Ns = length - as_int(mismatches) - as_int(insertions) - as_int(deletions);
  const int matches = matches_and_Ns - as_int(num_Ns);
  const auto per_cent = [](int part, int whole) {
    return static_cast<float>(part) / static_cast<float>(whole) * 100.0F;
  };
  switch (global_N_and_perfection_mode) {
    case kNsAsMismatch:
      return per_cent(matches, length);
    case kNsAsNeutral:
      return per_cent(matches, length - as_int(num_Ns));
    case kNsAsMatch:
      return per_cent(matches_and_Ns, length);
    default:
      std::exit(kUnknownPerfectionMode);
  }
}

void Csat::sort_missense() { std::sort(missense.begin(), missense.end(), lessThan_missense); }

bool lessThan_sat(const Csat* a, const Csat* b) {
  return a->pos_left != b->pos_left ? a->pos_left < b->pos_left : a->pos_right < b->pos_right;
}

Csat* new_sat(const char* left, const char* right) {
  Csat* sat = nullptr;
  if (sat_alloc.empty()) {
    sat = new Csat;
  } else {
    sat = sat_alloc.back();
    sat_alloc.pop_back();
  }
  sat->init(left, right);
  return sat;
}

void recycle_sat(std::list<Csat*>& pool, Csat* sat) { pool.push_back(sat); }

CsatContainer::iterator CsatContainer::recycle(iterator position) {
  const iterator next = std::next(position);
  pool->splice(pool->end(), *this, position);
  return next;
}

SpareSat::~SpareSat() { sat_alloc.splice(sat_alloc.end(), spare_); }

Csat& SpareSat::candidate(const char* left, const char* right) {
  if (spare_.empty()) take_from_pool(left, right);
  spare_.front()->init(left, right);
  return *spare_.front();
}

// Makes the node before the record: without memory for one, the other is not lost.
void SpareSat::take_from_pool(const char* left, const char* right) {
  if (sat_alloc.empty()) {
    std::list<Csat*> made(1);
    made.front() = new_sat(left, right);
    spare_.splice(spare_.end(), made);
  } else {
    spare_.splice(spare_.end(), sat_alloc, std::prev(sat_alloc.end()));
  }
}

void SpareSat::move_to(std::list<Csat*>& results) {
  assert(!spare_.empty());
  results.splice(results.end(), spare_);
}

}  // namespace vorlan
