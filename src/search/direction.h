// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>

#include "search/csat.h"

namespace vorlan {

/// The unit that a repeat is aligned with. A cursor points at one of its bases and goes round it.
struct UnitSpan {
  const char* begin;
  const char* end;

  std::ptrdiff_t length() const { return end - begin; }
};

/// How far an alignment has come at one of its ends.
///
///     residues   A C A C|T C A       place: the boundary in front of the residue that is next,
///     unit       A C A C|A C A       here T to the right
///                       ^            cursor: the unit base that it should be, here A
struct Front {
  const char* place;
  const char* cursor;
};

/// The right end of a repeat and how it moves. A place is the boundary in front of the residue to
/// be aligned next; the stop of a direction is the boundary that has none.
struct Forward {
  static const char* residue(const char* place) { return place; }
  static const char* moved(const char* place, std::ptrdiff_t steps) { return place + steps; }
  static const char* next_unit_base(const char* cursor, const UnitSpan& unit) {
    return cursor + 1 == unit.end ? unit.begin : cursor + 1;
  }
  /// The unit base that is due after `steps` steps, at least 0.
  static const char* unit_base_after(const char* cursor, const UnitSpan& unit,
                                     std::ptrdiff_t steps) {
    return unit.begin + (cursor - unit.begin + steps) % unit.length();
  }
  /// Unit bases from the due one on until the unit begins again.
  static std::ptrdiff_t bases_left(const char* cursor, const UnitSpan& unit) {
    return unit.end - cursor;
  }
  static Front front(const Csat& sat) { return {sat.pos_right, sat.unit_cursor_fwd}; }
  static void set_front(Csat& sat, const Front& front) {
    sat.pos_right = front.place;
    sat.unit_cursor_fwd = front.cursor;
  }
};

/// The left end, the mirror image: the residue to be aligned next is the one left of the place.
struct Backward {
  static const char* residue(const char* place) { return place - 1; }
  static const char* moved(const char* place, std::ptrdiff_t steps) { return place - steps; }
  static const char* next_unit_base(const char* cursor, const UnitSpan& unit) {
    return cursor == unit.begin ? unit.end - 1 : cursor - 1;
  }
  static const char* unit_base_after(const char* cursor, const UnitSpan& unit,
                                     std::ptrdiff_t steps) {
    return unit.end - 1 - (unit.end - 1 - cursor + steps) % unit.length();
  }
  static std::ptrdiff_t bases_left(const char* cursor, const UnitSpan& unit) {
    return cursor - unit.begin + 1;
  }
  static Front front(const Csat& sat) { return {sat.pos_left, sat.unit_cursor_bwd}; }
  static void set_front(Csat& sat, const Front& front) {
    sat.pos_left = front.place;
    sat.unit_cursor_bwd = front.cursor;
  }
};

}  // namespace vorlan
