// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct BGZF;

namespace vorlan_tools {

/// The bytes of a FASTA file in large blocks: plain, or compressed with gzip or bgzip, told apart
/// by content. A folder is empty, as it is for vorlan.
class InputText {
 public:
  /// Opens `name`; "-" is standard input. A read that waits for bytes ends, as if the input did, as
  /// soon as the descriptor `stop` can be read. Throws DataError if the input cannot be opened.
  InputText(const std::string& name, int stop);
  ~InputText();
  InputText(const InputText&) = delete;
  InputText& operator=(const InputText&) = delete;

  /// The bytes that follow, empty at the end; valid until the next call. A '>' is their last byte
  /// only if it is the last of all. Throws DataError if the input is damaged or cut short.
  std::string_view next();

  /// Whether share_used() tells anything.
  bool knows_size() const { return size_ != 0; }

  /// How much of the file has been used, from 0 to 1, if the last `unused` bytes of what was
  /// delivered have not been; absent if its size is not known. An estimate for compressed files.
  std::optional<double> share_used(std::size_t unused) const;

 private:
  void read_more();
  bool may_read() const;

  std::string name_;
  int descriptor_;
  int stop_;
  BGZF* file_ = nullptr;
  std::int64_t size_ = 0;  ///< of the file as it lies on disk; 0: not known
  bool waits_ = false;     ///< not a regular file: a read may have to wait
  bool at_end_ = false;
  std::vector<char> buffer_;
  std::size_t filled_ = 0;
  std::uint64_t delivered_ = 0;  ///< bytes of text so far
};

}  // namespace vorlan_tools
