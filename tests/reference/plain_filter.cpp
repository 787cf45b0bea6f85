// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "plain_filter.h"

#include <algorithm>
#include <set>
#include <utility>

namespace reference {
namespace {

/// Edits and diagonal.
using Cell = std::pair<int, int>;

/// The smallest whole number that is not below half of `number`, which is not negative.
int half_up(int number) { return (number + 1) / 2; }

/// The paths of one start in one direction.
class Paths {
 public:
  Paths(std::string_view residues, const FilterRules& rules, std::ptrdiff_t start, bool forward,
        int first_score)
      : residues_(residues),
        rules_(rules),
        start_(start),
        forward_(forward),
        first_score_(first_score) {}

  bool are_alive() const { return !cells_.empty(); }
  /// The highest bound of what was gained so far; 0 at least.
  int gain() const { return gain_; }

  /// Goes on over the next residue.
  void step() {
    std::set<Cell> behind;
    // Deletions add cells to be looked at, each with an edit more than the one it comes from.
    for (auto cell = cells_.begin(); cell != cells_.end(); ++cell) {
      const auto [edits, diagonal] = *cell;
      if (matches(diagonal)) {
        behind.insert(*cell);
      } else if (first_score_ + bound(*cell) - rules_.penalty > rules_.floor) {
        behind.insert({edits + 1, diagonal});      // mismatch
        behind.insert({edits + 1, diagonal + 1});  // insertion
        cells_.insert({edits + 1, diagonal - 1});  // deletion
      }
    }
    cells_ = std::move(behind);
    ++consumed_;
    for (const Cell& cell : cells_) gain_ = std::max(gain_, bound(cell));
  }

 private:
  /// What a path in this cell has gained at most: residues that were inserted or mismatched earn
  /// nothing.
  int bound(const Cell& cell) const {
    const auto [edits, diagonal] = cell;
    return consumed_ - half_up(edits + diagonal) - rules_.penalty * edits;
  }

  /// Whether the next residue meets the unit base that is due on the diagonal.
  bool matches(int diagonal) const {
    const std::ptrdiff_t place =
        forward_ ? start_ + rules_.unit_length + consumed_ : start_ - 1 - consumed_;
    if (place < 0 || place >= static_cast<std::ptrdiff_t>(residues_.size())) return false;
    const char residue = residues_[static_cast<std::size_t>(place)];
    if (residue == 'N') return rules_.bridges_N;
    const int length = rules_.unit_length;
    const int base = ((consumed_ - diagonal) % length + length) % length;
    const std::ptrdiff_t due = start_ + (forward_ ? base : length - 1 - base);
    const char unit_base = residues_[static_cast<std::size_t>(due)];
    return residue == (unit_base == 'N' ? 'A' : unit_base);
  }

  std::string_view residues_;
  const FilterRules& rules_;
  std::ptrdiff_t start_;
  bool forward_;
  int first_score_;
  int consumed_ = 0;
  int gain_ = 0;
  std::set<Cell> cells_{{0, 0}};
};

/// Follows the paths of all starts together until the look ends.
void follow(std::vector<Paths>& starts, const FilterRules& rules) {
  bool was_counted = false;
  std::ptrdiff_t left_before = 0;
  int idle_checks = 0;
  for (int consumed = 1; consumed <= rules.horizon; ++consumed) {
    for (Paths& paths : starts) paths.step();
    if (consumed < rules.first_check || consumed % 2 != 0) continue;
    const auto left = std::count_if(starts.begin(), starts.end(),
                                    [](const Paths& paths) { return paths.are_alive(); });
    idle_checks = !was_counted || left < left_before ? 0 : idle_checks + 1;
    if (left <= rules.few_enough_to_stop || idle_checks > rules.checks_without_loss) return;
    was_counted = true;
    left_before = left;
  }
}

}  // namespace

std::vector<bool> filter_survivors(std::string_view residues, const FilterRules& rules,
                                   const std::vector<std::ptrdiff_t>& starts,
                                   const std::vector<bool>& wanted) {
  std::vector<bool> survive(starts.size(), false);
  std::vector<std::size_t> left;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    if (wanted[i]) left.push_back(i);
  }
  std::vector<Paths> forward;
  for (const std::size_t i : left) forward.emplace_back(residues, rules, starts[i], true, 0);
  follow(forward, rules);

  // A start that survives the look forward is not looked at backward, nor counted there.
  std::vector<std::size_t> undecided;
  std::vector<int> gains;
  std::vector<Paths> backward;
  for (std::size_t k = 0; k < left.size(); ++k) {
    if (forward[k].are_alive() || forward[k].gain() >= rules.max_gain) {
      survive[left[k]] = true;
      continue;
    }
    undecided.push_back(left[k]);
    gains.push_back(forward[k].gain());
    backward.emplace_back(residues, rules, starts[left[k]], false, rules.max_gain - 1);
  }
  follow(backward, rules);
  for (std::size_t k = 0; k < undecided.size(); ++k) {
    survive[undecided[k]] =
        backward[k].are_alive() || gains[k] + backward[k].gain() >= rules.min_score;
  }
  return survive;
}

}  // namespace reference
