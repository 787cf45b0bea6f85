// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "output/cdnastring.h"

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

}  // namespace

void CDnaString::setToRevCompOf(const CDnaString& source) {
  assert(&source != this);
  size = 0;
  reserve(source.size);
  for (std::uint32_t i = source.size; i > 0; --i) {
    push_back(kComplements[static_cast<unsigned char>(source.buf[i - 1])]);
  }
}

// Each rotation is a stretch of the source written twice. A later rotation that equals the smallest
// one exists exactly when the source is a repetition.
bool CDnaString::setToMinAlphaCyclicPermOf(const CDnaString& source) {
  const std::string twice = std::string(source.view()) + std::string(source.view());
  const std::string_view rotations = twice;
  const std::size_t length = source.size;
  std::string_view smallest = rotations.substr(0, length);
  bool is_repetition = false;
  for (std::size_t i = 1; i < length; ++i) {
    const std::string_view rotation = rotations.substr(i, length);
    const int order = rotation.compare(smallest);
    if (order < 0) smallest = rotation;
    if (order == 0) is_repetition = true;
  }
  assign(smallest);
  return is_repetition;
}

bool CDnaString::setToMinAlphaRepModRevCompAndCyclicPermOf(const CDnaString& source) {
  CDnaString reverse_complement;
  reverse_complement.setToRevCompOf(source);
  const bool is_repetition = setToMinAlphaCyclicPermOf(reverse_complement);
  CDnaString forward;
  forward.setToMinAlphaCyclicPermOf(source);
  if (forward.view() < view()) assign(forward.view());
  return is_repetition;
}

}  // namespace vorlan
