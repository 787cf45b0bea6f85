// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "search/csat.h"

namespace vorlan {

/// The unit that a repeat is aligned with. A cursor points at one of its bases and goes round it.
struct UnitSpan {
  const char* begin;
  const char* end;

  std::ptrdiff_t length() const { return end - begin; }
};

/// The right end of a repeat and how it moves. A place is the boundary in front of the residue to
/// be aligned next; `stop` is the boundary that has none.
struct Forward {
  static bool at_stop(const char* place, const char* stop) { return place == stop; }
  static const char* residue(const char* place) { return place; }
  static const char* next(const char* place) { return place + 1; }
  static const char* moved(const char* place, std::ptrdiff_t steps) { return place + steps; }
  static const char* next_unit_base(const char* cursor, UnitSpan unit) {
    return cursor + 1 == unit.end ? unit.begin : cursor + 1;
  }
  /// The same with offsets in the unit.
  static std::int32_t next_unit_offset(std::int32_t offset, std::int32_t last) {
    return offset == last ? 0 : offset + 1;
  }
  /// The base that is due after `steps` steps, at least 0.
  static const char* unit_base_after(const char* cursor, UnitSpan unit, std::ptrdiff_t steps) {
    return unit.begin + (cursor - unit.begin + steps) % unit.length();
  }
  /// Of a word of bits, one for each residue ahead: the first bit set from `skip` on; 64 if none
  /// is.
  static std::int32_t first_bit(std::uint64_t bits, std::int32_t skip) {
    return bits >> skip == 0 ? 64 : skip + std::countr_zero(bits >> skip);
  }
  /// Where the word begins that holds the residue `ahead` residues ahead of `place`.
  static std::ptrdiff_t first_of_word(std::ptrdiff_t place, std::ptrdiff_t ahead) {
    return place + ahead;
  }
  /// The unit base that is due there on `diagonal`, when `cursor` is due at the place.
  static std::ptrdiff_t first_of_word(std::ptrdiff_t cursor, std::ptrdiff_t ahead,
                                      std::ptrdiff_t diagonal) {
    return cursor + ahead - diagonal;
  }
  static const char* place(const Csat& sat) { return sat.pos_right; }
  static const char* cursor(const Csat& sat) { return sat.unit_cursor_fwd; }
  static const char*& place(Csat& sat) { return sat.pos_right; }
  static const char*& cursor(Csat& sat) { return sat.unit_cursor_fwd; }
};

/// The left end, the mirror image: the residue to be aligned next is the one left of the place.
struct Backward {
  static bool at_stop(const char* place, const char* stop) { return place == stop; }
  static const char* residue(const char* place) { return place - 1; }
  static const char* next(const char* place) { return place - 1; }
  static const char* moved(const char* place, std::ptrdiff_t steps) { return place - steps; }
  static const char* next_unit_base(const char* cursor, UnitSpan unit) {
    return cursor == unit.begin ? unit.end - 1 : cursor - 1;
  }
  static std::int32_t next_unit_offset(std::int32_t offset, std::int32_t last) {
    return offset == 0 ? last : offset - 1;
  }
  static const char* unit_base_after(const char* cursor, UnitSpan unit, std::ptrdiff_t steps) {
    return unit.end - 1 - (unit.end - 1 - cursor + steps) % unit.length();
  }
  // The residue next to the place has the highest bit.
  static std::int32_t first_bit(std::uint64_t bits, std::int32_t skip) {
    return bits << skip == 0 ? 64 : skip + std::countl_zero(bits << skip);
  }
  static std::ptrdiff_t first_of_word(std::ptrdiff_t place, std::ptrdiff_t ahead) {
    return place - ahead - 64;
  }
  static std::ptrdiff_t first_of_word(std::ptrdiff_t cursor, std::ptrdiff_t ahead,
                                      std::ptrdiff_t diagonal) {
    return cursor - ahead + diagonal - 63;
  }
  static const char* place(const Csat& sat) { return sat.pos_left; }
  static const char* cursor(const Csat& sat) { return sat.unit_cursor_bwd; }
  static const char*& place(Csat& sat) { return sat.pos_left; }
  static const char*& cursor(Csat& sat) { return sat.unit_cursor_bwd; }
};

}  // namespace vorlan
