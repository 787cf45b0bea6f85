// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/cdnastring.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string>

namespace vorlan {
namespace {

constexpr std::array<char, 256> complements() {
  std::array<char, 256> table{};
  table.fill('?');
  const std::string_view pairs[] = {"AT", "CG", "BV", "DH", "KM", "RY", "NN"};
  for (const std::string_view pair : pairs) {
    table[static_cast<unsigned char>(pair[0])] = pair[1];
    table[static_cast<unsigned char>(pair[1])] = pair[0];
  }
  return table;
}

constexpr std::array<char, 256> kComplements = complements();

std::string doubled(std::string_view letters) { return std::string(letters).append(letters); }

/// The smallest rotation of a text, and whether another rotation equals it: such a one exists
/// exactly when the text is a repetition.
struct Rotation {
  std::string_view letters;
  bool is_met_again;
};

// Each rotation of a text is a stretch of the text written twice.
Rotation smallest_rotation(std::string_view twice) {
  const std::size_t length = twice.size() / 2;
  Rotation smallest{twice.substr(0, length), false};
  for (std::size_t i = 1; i < length; ++i) {
    const std::string_view rotation = twice.substr(i, length);
    const int order = rotation.compare(smallest.letters);
    if (order < 0) smallest.letters = rotation;
    if (order == 0) smallest.is_met_again = true;
  }
  return smallest;
}

}  // namespace

void CDnaString::setToRevCompOf(const CDnaString& source) {
  assert(&source != this);
  size = 0;
  reserve(source.size);
  for (std::uint32_t i = source.size; i > 0; --i) {
    push_back(kComplements[static_cast<unsigned char>(source.buf[i - 1])]);
  }
}

bool CDnaString::setToMinAlphaCyclicPermOf(const CDnaString& source) {
  const std::string twice = doubled(source.view());
  const Rotation smallest = smallest_rotation(twice);
  assign(smallest.letters);
  return smallest.is_met_again;
}

bool CDnaString::setToMinAlphaRepModRevCompAndCyclicPermOf(const CDnaString& source) {
  setToRevCompOf(source);
  const std::string reverse_twice = doubled(view());
  const std::string forward_twice = doubled(source.view());
  const Rotation reverse = smallest_rotation(reverse_twice);
  assign(std::min(reverse.letters, smallest_rotation(forward_twice).letters));
  return reverse.is_met_again;
}

}  // namespace vorlan
