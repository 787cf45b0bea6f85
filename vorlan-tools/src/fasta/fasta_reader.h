// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct BGZF;

namespace vorlan_tools {

/// The records of a FASTA file as vorlan takes them, plain or compressed with gzip or bgzip.
///
/// CR LF and a lone CR end a line like LF. White space and lines that begin with '#' may stand
/// before the first record. Residues become upper case, U becomes T, ambiguity codes and X become
/// N; white space, '-' and '*' are left out. Anything else is malformed, but for the very last byte
/// of a file. A '>' at the end of a file, without line end, is one more record without residues
/// that keeps the name before it. Memory: one record.
class FastaReader {
 public:
  /// Opens `name` ("-": standard input); throws DataError.
  explicit FastaReader(const std::string& name);

  /// Reads from `descriptor`, which this object closes; `name` is for messages.
  FastaReader(int descriptor, const std::string& name);
  ~FastaReader();
  FastaReader(const FastaReader&) = delete;
  FastaReader& operator=(const FastaReader&) = delete;

  /// Moves on to the next record and reads its header line; residues of the record before are
  /// skipped if they were not read. False behind the last record. Throws LineError for a malformed
  /// record.
  bool next_header();

  /// Reads the residues of the record whose header was read last. To be called at most once for
  /// each.
  void read_residues();

  /// The header line without '>', up to a NUL, since reports end it there too.
  const std::string& header() const { return header_; }

  /// The header up to its first blank.
  const std::string& sequence_name() const { return sequence_name_; }

  /// Of the record whose residues were read last; they stay when the next header is read.
  const std::string& residues() const { return residues_; }

  /// Number of the record whose header was read last, from 1.
  std::uint64_t number() const { return number_; }

  const std::string& name() const { return name_; }

 private:
  static constexpr int kEnd = -1;

  bool refill();
  int raw();
  int get();
  int peek();
  void skip_before_records();
  void read_header_line();
  template <bool kKeep>
  void pass_plain_lines(std::string_view lines);
  template <bool kKeep>
  void pass_letters();
  template <bool kKeep>
  void pass_line();
  template <bool kKeep>
  void pass_residues();
  [[noreturn]] void fail(const std::string& what) const;

  std::string name_;
  BGZF* file_ = nullptr;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::uint64_t line_ = 1;
  std::string header_;
  std::string sequence_name_;
  std::string residues_;
  std::uint64_t number_ = 0;
  bool residues_are_ahead_ = false;
};

}  // namespace vorlan_tools
