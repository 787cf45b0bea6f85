// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <htslib/hts.h>

struct BGZF;

namespace vorlan_tools {

/// The threads that compress one output, beside the one that writes it.
///
/// The library hands them blocks of 64 kB through a queue. Left to itself it makes room for two
/// blocks for each thread. Rows come 256 kB at once: their writer would sleep at nearly each block,
/// and cores would idle while threads wake each other up.
class CompressionThreads {
 public:
  /// None for `threads` = 1: then the one that writes compresses, too.
  explicit CompressionThreads(int threads) : threads_(threads) {}
  ~CompressionThreads();
  CompressionThreads(const CompressionThreads&) = delete;
  CompressionThreads& operator=(const CompressionThreads&) = delete;

  /// Let the threads compress what is written to the file from now on. The file must be closed
  /// before this object goes. False if there cannot be so many threads.
  bool serve(BGZF* file);
  bool serve(htsFile* file);

  /// To be called when closing a file has failed: the library then still uses the threads, so that
  /// they stay until the process ends.
  void abandon() { pool_.pool = nullptr; }

 private:
  bool start();

  int threads_;
  htsThreadPool pool_{nullptr, 0};
};

}  // namespace vorlan_tools
