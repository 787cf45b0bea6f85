// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "errors.h"

namespace vorlan_tools {

/// The statuses with which vorlan ends, as its manual lists them.
enum VorlanStatus : int {
  kNotParsed = 1,
  kNotEnoughMemory = 153,
  kOutputNotWritten = 154,
  kMalformedInput = 231,
  kChoiceUnknown = 254,
  kSettingsRefused = 255,
};

/// How a process of vorlan has ended, from what waitpid tells.
class VorlanEnd {
 public:
  explicit VorlanEnd(int wait_status) : wait_status_(wait_status) {}

  bool is_success() const;
  bool is_malformed_input() const;

  /// Whether vorlan has refused its command line; its messages say why.
  bool is_refusal() const;

  /// The exit status; 1 if a signal ended the process.
  int status() const;

  /// A verb phrase, such as "was ended by signal 9".
  std::string text() const;

 private:
  bool has_status(int status) const;

  int wait_status_;
};

/// vorlan has failed, not by a fault of the input.
class VorlanFailed : public DataError {
 public:
  /// `status` is what this program ends with.
  VorlanFailed(const std::string& what, int status) : DataError(what), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

}  // namespace vorlan_tools
