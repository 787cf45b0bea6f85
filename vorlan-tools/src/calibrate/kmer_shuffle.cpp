// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Shuffling a text so that its words of k bases stay, each as often as it was.
//
// Idea. Take the words of k - 1 bases as vertices, and each word of k bases at each of its places
// as an edge from its first k - 1 bases to its last k - 1. The text is a path over all edges, each
// once: an Euler path. Every Euler path from the same beginning is a text with the same words, and
// every such text is one, so a random Euler path is what is wanted (Altschul and Erickson 1985).
// All end at the same vertex, since degrees decide that.
//
// Which paths there are. Of each vertex but the last of the path, look at the edge by which it is
// left for the last time. These edges lead from everywhere to the last vertex: they are a tree. And
// for any such tree, the other edges of each vertex may be taken in any order, the edge of the tree
// last: the walk cannot get stuck before it has used all. So paths are pairs of a tree and orders,
// and a uniform tree with uniform orders is a uniform path. A uniform tree is grown by random walks
// from each vertex to what has been grown, of which loops are forgotten (Wilson 1996; Kandel,
// Matias, Unger and Winkler 1996 brought random trees to this problem). Each text belongs to
// equally many paths, as equal edges can be exchanged: it is uniform too.
//
// Example, k = 2: ATATGA. Vertices A, T, G; edges A->T twice, T->A, T->G, G->A; first and last A.
//
//     T is left last by T->A or T->G, G by G->A: two trees.
//     tree with T->A: T takes T->G first    A T G A T A
//     tree with T->G: T takes T->A first    A T A T G A
//
// Both have AT twice, TA, TG and GA once. AATTGA has the same bases and is none of them: its AA and
// TT are words that the text did not have. For k = 1 any order will do.
//
// Cost: linear in the text for collecting and walking; the random walks take as long as they need
// to reach the tree, in practice a few steps for each vertex. Limits: a text whose words are mostly
// different, so one with few more than 4^(k-1) bases, has few paths and stays nearly as it is.

#include "calibrate/kmer_shuffle.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vorlan_tools {

namespace {

constexpr std::string_view kBases = "ACGT";

std::uint8_t code_of(char base) { return static_cast<std::uint8_t>(kBases.find(base)); }

}  // namespace

KmerShuffle::KmerShuffle(unsigned k) : k_(k), vertices_(std::size_t{1} << (2 * (k - 1))) {}

void KmerShuffle::shuffle(std::string& bases, RandomNumbers& random) {
  if (k_ == 1) {
    for (std::size_t i = bases.size(); i > 1; --i) std::swap(bases[i - 1], bases[random.below(i)]);
    return;
  }
  if (bases.size() <= k_) return;
  const std::size_t last = collect_edges(bases);
  grow_tree(last, random);
  order_edges(last, random);
  walk(bases);
}

/// Sorts the edges by the vertex that they leave; returns the vertex where the path ends.
std::size_t KmerShuffle::collect_edges(const std::string& bases) {
  std::vector<std::size_t> vertex_of(bases.size() - k_ + 2);
  std::size_t vertex = 0;
  for (std::size_t i = 0; i < bases.size(); ++i) {
    vertex = next(vertex, code_of(bases[i]));
    if (i + 2 >= k_) vertex_of[i + 2 - k_] = vertex;
  }
  const std::size_t edges = vertex_of.size() - 1;
  begins_.assign(vertices_ + 1, 0);
  for (std::size_t i = 0; i < edges; ++i) ++begins_[vertex_of[i] + 1];
  for (std::size_t v = 0; v < vertices_; ++v) begins_[v + 1] += begins_[v];
  places_.assign(begins_.begin(), begins_.end() - 1);
  letters_.resize(edges);
  for (std::size_t i = 0; i < edges; ++i) {
    letters_[places_[vertex_of[i]]++] = code_of(bases[i + k_ - 1]);
  }
  return vertex_of.back();
}

/// For each vertex but the root, the edge by which it is left last.
void KmerShuffle::grow_tree(std::size_t root, RandomNumbers& random) {
  tree_edge_.assign(vertices_, 0);
  in_tree_.assign(vertices_, false);
  in_tree_[root] = true;
  for (std::size_t v = 0; v < vertices_; ++v) {
    if (begins_[v] == begins_[v + 1]) continue;
    // A vertex that is met again takes another edge: so its loop is forgotten.
    for (std::size_t u = v; !in_tree_[u]; u = next(u, letters_[tree_edge_[u]])) {
      tree_edge_[u] = begins_[u] + random.below(begins_[u + 1] - begins_[u]);
    }
    for (std::size_t u = v; !in_tree_[u]; u = next(u, letters_[tree_edge_[u]])) in_tree_[u] = true;
  }
}

void KmerShuffle::order_edges(std::size_t root, RandomNumbers& random) {
  for (std::size_t v = 0; v < vertices_; ++v) {
    std::size_t end = begins_[v + 1];
    if (begins_[v] == end) continue;
    if (v != root) std::swap(letters_[tree_edge_[v]], letters_[--end]);
    shuffle_letters(begins_[v], end, random);
  }
}

void KmerShuffle::shuffle_letters(std::size_t begin, std::size_t end, RandomNumbers& random) {
  for (std::size_t i = end; i > begin + 1; --i) {
    std::swap(letters_[i - 1], letters_[begin + random.below(i - begin)]);
  }
}

void KmerShuffle::walk(std::string& bases) {
  places_.assign(begins_.begin(), begins_.end() - 1);
  std::size_t vertex = 0;
  for (std::size_t i = 0; i + 1 < k_; ++i) vertex = next(vertex, code_of(bases[i]));
  for (std::size_t i = k_ - 1; i < bases.size(); ++i) {
    const std::uint8_t letter = letters_[places_[vertex]++];
    bases[i] = kBases[letter];
    vertex = next(vertex, letter);
  }
}

}  // namespace vorlan_tools
