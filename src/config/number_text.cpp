// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/number_text.h"

#include <cstdio>

namespace vorlan {
namespace {

char number_buffer[50];

}  // namespace

const char* number2str(int value) {
  std::snprintf(number_buffer, sizeof number_buffer, "%d", value);
  return number_buffer;
}

const char* number2str(unsigned value) {
  std::snprintf(number_buffer, sizeof number_buffer, "%u", value);
  return number_buffer;
}

const char* number2str(double value) {
  std::snprintf(number_buffer, sizeof number_buffer, "%lg", value);
  return number_buffer;
}

const char* number2str(float value) {
  std::snprintf(number_buffer, sizeof number_buffer, "%g", static_cast<double>(value));
  return number_buffer;
}

}  // namespace vorlan
