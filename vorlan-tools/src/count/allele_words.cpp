// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// An allele as words.
//
// Idea. A division of the allele costs: 8 for each stretch of a motif that was asked for, however
// many copies it has; 12 for a stretch of another word, plus, for each copy, 3 less than twice its
// length; 6 for a rest, plus 4 for each base. The cheapest division is found base by base (dynamic
// programming): best[i][w] is the least cost of the first i bases if the last word has the w-th of
// the possible lengths, or is a rest. A word continues the stretch before it if it equals the bases
// one word length before. Of equally cheap divisions the one wins whose words stand further left.
//
//     AATG AATG ATG AATG   motif AATG: [AATG]2 (8), rest of 3 (6 + 12), [AATG]1 (8), written
//                          [AATG]2ATG[AATG]1
//     AATG AATC AATG       [AATG]1[AATC]1[AATG]1: 8 + 17 + 8; AATC as a rest would cost 22
//     GCAG CAGC AG         motif CAG: the motif wins over the phase, G[CAG]3
//
// The costs are such that the strings of forensic tables come out: TA and TCA between arrays are
// rests, and an array of the motif is never written in another phase to swallow one.
//
// Why not count motifs from the left: the first deletion would put all that follows out of phase.
// Nothing is lost: words and rests cover each base once. Limits: an interruption that is cheaper as
// two words than as a rest is written so, and one of six bases is a rest.

#include "count/allele_words.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace vorlan_tools {

namespace {

constexpr int kMotifStretch = 8;
constexpr int kOtherStretch = 12;
constexpr int kRest = 6;
constexpr int kRestBase = 4;
constexpr int kUnreached = INT_MAX / 2;

/// The last word of a division is a rest (state 0), or as long as lengths[state - 1].
constexpr std::size_t kRestState = 0;

class Divider {
 public:
  Divider(std::string_view allele, const std::vector<std::string>& motifs)
      : allele_(allele), motifs_(motifs) {
    for (const std::string& motif : motifs) lengths_.push_back(motif.size());
    std::sort(lengths_.begin(), lengths_.end());
    lengths_.erase(std::unique(lengths_.begin(), lengths_.end()), lengths_.end());
    states_ = lengths_.size() + 1;
    cells_.assign((allele.size() + 1) * states_, {kUnreached, kRestState, false});
    // The beginning looks like an empty word, so that anything begins a new stretch.
    cell(0, kRestState).cost = 0;
  }

  std::vector<AlleleWord> divide() {
    for (std::size_t i = 0; i < allele_.size(); ++i) {
      extend_by_rest(i);
      for (std::size_t state = 1; state < states_; ++state) extend_by_word(i, state);
    }
    return trace_back();
  }

 private:
  struct Cell {
    int cost;
    std::size_t before;  ///< state of the division that this one extends
    bool continues;      ///< the stretch before
  };

  Cell& cell(std::size_t place, std::size_t state) { return cells_[place * states_ + state]; }

  void offer(std::size_t place, std::size_t state, const Cell& offered) {
    Cell& held = cell(place, state);
    if (offered.cost < held.cost) held = offered;
  }

  void extend_by_rest(std::size_t place) {
    for (std::size_t before = 0; before < states_; ++before) {
      const bool continues = before == kRestState && place > 0;
      const int cost = cell(place, before).cost + kRestBase + (continues ? 0 : kRest);
      offer(place + 1, kRestState, {cost, before, continues});
    }
  }

  void extend_by_word(std::size_t place, std::size_t state) {
    const std::size_t length = lengths_[state - 1];
    if (place + length > allele_.size()) return;
    const std::string_view word = allele_.substr(place, length);
    const bool is_asked = is_motif(word);
    if (!is_asked && length != motifs_.front().size()) return;
    const int copy = is_asked ? 0 : std::max(0, 2 * static_cast<int>(length) - 3);
    const int stretch = is_asked ? kMotifStretch : kOtherStretch;
    for (std::size_t before = 0; before < states_; ++before) {
      if (cell(place, before).cost >= kUnreached) continue;
      const bool continues = before == state && allele_.substr(place - length, length) == word;
      const int cost = cell(place, before).cost + copy + (continues ? 0 : stretch);
      offer(place + length, state, {cost, before, continues});
    }
  }

  bool is_motif(std::string_view word) const {
    return std::find(motifs_.begin(), motifs_.end(), word) != motifs_.end();
  }

  std::vector<AlleleWord> trace_back() {
    std::size_t place = allele_.size();
    std::size_t state = kRestState;
    for (std::size_t other = 0; other < states_; ++other) {
      if (cell(place, other).cost < cell(place, state).cost) state = other;
    }
    std::vector<AlleleWord> words;
    bool is_open = false;
    while (place > 0) {
      const std::size_t length = state == kRestState ? 1 : lengths_[state - 1];
      place -= length;
      take(allele_.substr(place, length), state, is_open, words);
      const Cell& taken = cell(place + length, state);
      is_open = taken.continues;
      state = taken.before;
    }
    std::reverse(words.begin(), words.end());
    return words;
  }

  /// Puts a word, or a base of a rest, in front of what was taken; `is_open` if it belongs to the
  /// stretch that was taken last.
  void take(std::string_view text, std::size_t state, bool is_open,
            std::vector<AlleleWord>& words) const {
    if (!is_open) {
      const AlleleWord::Kind kind = state == kRestState ? AlleleWord::Kind::kRest
                                    : is_motif(text)    ? AlleleWord::Kind::kMotif
                                                        : AlleleWord::Kind::kOther;
      words.push_back({std::string(text), 1, kind});
    } else if (state == kRestState) {
      words.back().word.insert(0, text);
    } else {
      ++words.back().copies;
    }
  }

  std::string_view allele_;
  const std::vector<std::string>& motifs_;
  std::vector<std::size_t> lengths_;
  std::size_t states_ = 0;
  std::vector<Cell> cells_;
};

}  // namespace

std::vector<AlleleWord> divide_allele(std::string_view allele,
                                      const std::vector<std::string>& motifs) {
  return Divider(allele, motifs).divide();
}

std::string words_text(const std::vector<AlleleWord>& words) {
  std::string text;
  for (const AlleleWord& word : words) {
    if (word.kind == AlleleWord::Kind::kRest) {
      text += word.word;
    } else {
      text += '[' + word.word + ']' + std::to_string(word.copies);
    }
  }
  return text;
}

std::int64_t motif_copies(const std::vector<AlleleWord>& words) {
  std::int64_t copies = 0;
  for (const AlleleWord& word : words) {
    if (word.kind == AlleleWord::Kind::kMotif) copies += word.copies;
  }
  return copies;
}

std::int64_t other_bases(const std::vector<AlleleWord>& words) {
  std::int64_t bases = 0;
  for (const AlleleWord& word : words) {
    if (word.kind == AlleleWord::Kind::kMotif) continue;
    bases += word.copies * static_cast<std::int64_t>(word.word.size());
  }
  return bases;
}

std::string count_text(std::int64_t bases, std::int64_t period) {
  if (bases < 0) return {};
  std::string text = std::to_string(bases / period);
  if (bases % period != 0) text += '.' + std::to_string(bases % period);
  return text;
}

}  // namespace vorlan_tools
