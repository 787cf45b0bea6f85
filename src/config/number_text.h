// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// The text of a number as printf writes it: "%d", "%u", "%lg" or "%g". All four share one static
/// buffer that the next call overwrites, so print or copy the text before that.
const char* number2str(int value);
const char* number2str(unsigned value);
const char* number2str(double value);
const char* number2str(float value);

}  // namespace vorlan
