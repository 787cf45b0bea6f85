// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "calibrate/random_numbers.h"

namespace vorlan_tools {

/// Puts the bases of a text into a random order in which every word of k bases occurs as often as
/// before; each text with these counts, and with the first and last k - 1 bases of the original, is
/// equally probable. See the source for the way. Memory: the text, and 4^(k-1) numbers.
class KmerShuffle {
 public:
  static constexpr unsigned kLongestWord = 6;

  /// `k` is from 1 (only the bases are counted) to kLongestWord.
  explicit KmerShuffle(unsigned k);

  /// `bases` holds A, C, G and T only. Linear, as far as is known of random walks in such texts.
  void shuffle(std::string& bases, RandomNumbers& random);

 private:
  std::size_t next(std::size_t vertex, std::uint8_t letter) const {
    return (vertex * 4 + letter) % vertices_;
  }
  void shuffle_letters(std::size_t begin, std::size_t end, RandomNumbers& random);
  std::size_t collect_edges(const std::string& bases);
  void grow_tree(std::size_t root, RandomNumbers& random);
  void order_edges(std::size_t root, RandomNumbers& random);
  void walk(std::string& bases);

  unsigned k_;
  std::size_t vertices_;             ///< 4^(k-1)
  std::vector<std::size_t> begins_;  ///< of the edges of each vertex in `letters_`, and an end
  std::vector<std::size_t> places_;
  std::vector<std::uint8_t> letters_;  ///< of edges: the base that each adds
  std::vector<std::size_t> tree_edge_;
  std::vector<bool> in_tree_;
};

}  // namespace vorlan_tools
