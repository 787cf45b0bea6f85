// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Extension of a repeat over mismatches, insertions and deletions.
//
// Idea: the extension walks along matches (+1 each). Where the next residue is not the expected
// unit base, it asks a look-ahead for each of the three possible edits which score can be reached
// after it, applies the most promising one and walks on. It remembers the best state and falls back
// to it when no edit is worth trying any more. The look-ahead does the same walk and tries the same
// edits, but only returns the highest score; it is bounded by a number of nested edits and by a
// threshold below which no edit is tried.
//
// Why this is right: left and right are mirror images, so there is one text. A direction says where
// the next residue lies, where the text ends and how the unit cursor moves, and nothing else.
//
// Example, forward, unit AC of ACACGCACACACAC: after ACAC the score is 2, the best so far, and G
// stands where A is expected. An edit is tried only if it leaves more than -2 (minus the unit
// length) - 1 (the preference for longer repeats) = -3. At the default penalty 2 - 5 = -3 is not
// more, so the repeat ends there. With a mismatch score of -4 the mismatch is tried: its look-ahead
// matches to the end, -2 + 9 = 7, and the repeat spans all 14 residues.

#include <algorithm>

#include "plain_search.h"

namespace reference {
namespace {

// Sums of 32-bit settings and scores are formed in 64 bits and cannot overflow.
using Score = std::int64_t;

// What stays the same during one extension.
struct Text {
  std::string_view residues;
  std::size_t unit_begin;
  std::size_t unit_end;
  const Settings& settings;

  Score unit_length() const { return static_cast<Score>(unit_end - unit_begin); }

  bool is_neutral_N(char residue) const {
    return residue == 'N' && settings.Ns_allowed_in_a_row != 0 && !settings.treat_Ns_as_missense;
  }

  // An edit is tried only if the score after it is greater than this.
  Score threshold(Score best) const {
    const Score floor = -unit_length();
    return std::max(best - settings.maximum_scorereduction, floor) - settings.prefer_longer_repeat;
  }
};

// To the right: the next residue stands at the position itself.
struct Forward {
  static std::size_t& position(Repeat& repeat) { return repeat.end; }
  static std::size_t& cursor(Repeat& repeat) { return repeat.cursor_forward; }
  static bool at_end(const Text& text, std::size_t pos) { return pos == text.residues.size(); }
  static std::size_t residue_at(std::size_t pos) { return pos; }
  static std::size_t next(std::size_t pos) { return pos + 1; }
  static std::size_t next_in_unit(const Text& text, std::size_t cursor) {
    return cursor + 1 == text.unit_end ? text.unit_begin : cursor + 1;
  }
};

// To the left: the next residue is the left neighbour of the position.
struct Backward {
  static std::size_t& position(Repeat& repeat) { return repeat.begin; }
  static std::size_t& cursor(Repeat& repeat) { return repeat.cursor_backward; }
  static bool at_end(const Text&, std::size_t pos) { return pos == 0; }
  static std::size_t residue_at(std::size_t pos) { return pos - 1; }
  static std::size_t next(std::size_t pos) { return pos - 1; }
  static std::size_t next_in_unit(const Text& text, std::size_t cursor) {
    return cursor == text.unit_begin ? text.unit_end - 1 : cursor - 1;
  }
};

// A path of the look-ahead, and the place where the extension itself stands.
struct Path {
  std::size_t pos;
  std::size_t cursor;
  Score score;
};

template <class Direction>
char next_residue(const Text& text, std::size_t pos) {
  return text.residues[Direction::residue_at(pos)];
}

template <class Direction>
Path after_mismatch(const Text& text, const Path& path) {
  return {Direction::next(path.pos), Direction::next_in_unit(text, path.cursor),
          path.score + text.settings.mismatch_score};
}

template <class Direction>
Path after_insertion(const Text& text, const Path& path) {
  return {Direction::next(path.pos), path.cursor, path.score + text.settings.indel_score};
}

template <class Direction>
Path after_deletion(const Text& text, const Path& path) {
  return {path.pos, Direction::next_in_unit(text, path.cursor),
          path.score + text.settings.indel_score};
}

template <class Direction>
void pass_one(const Text& text, Path& path) {
  path.pos = Direction::next(path.pos);
  path.cursor = Direction::next_in_unit(text, path.cursor);
}

// Passes matches and N runs. An N run longer than allowed does not end the walk: after the allowed
// number the next N begins a new run.
template <class Direction>
void walk(const Text& text, Path& path) {
  while (!Direction::at_end(text, path.pos)) {
    const char residue = next_residue<Direction>(text, path.pos);
    if (residue == text.residues[path.cursor]) {
      ++path.score;
      pass_one<Direction>(text, path);
    } else if (text.is_neutral_N(residue)) {
      for (int passed = 0;
           passed < text.settings.Ns_allowed_in_a_row && !Direction::at_end(text, path.pos) &&
           next_residue<Direction>(text, path.pos) == 'N';
           ++passed) {
        pass_one<Direction>(text, path);
      }
    } else {
      return;
    }
  }
}

template <class Direction, bool kCount>
Score look_ahead(const Text& text, const Path& start, std::uint8_t level, Score best,
                 Counters* counters) {
  if constexpr (kCount) ++counters->look_ahead_calls;
  Path path = start;
  walk<Direction>(text, path);
  if (level == text.settings.maximum_recursion_depth || Direction::at_end(text, path.pos)) {
    return path.score;
  }
  best = std::max(best, path.score);
  const Score threshold = text.threshold(best);
  const auto next_level = static_cast<std::uint8_t>(level + 1);
  Score value = path.score;
  if (threshold < path.score + text.settings.mismatch_score) {
    value =
        std::max(value, look_ahead<Direction, kCount>(text, after_mismatch<Direction>(text, path),
                                                      next_level, best, counters));
  }
  if (threshold < path.score + text.settings.indel_score) {
    value =
        std::max(value, look_ahead<Direction, kCount>(text, after_insertion<Direction>(text, path),
                                                      next_level, best, counters));
    value =
        std::max(value, look_ahead<Direction, kCount>(text, after_deletion<Direction>(text, path),
                                                      next_level, best, counters));
  }
  return value;
}

enum class Edit { kNone, kMismatch, kInsertion, kDeletion };

// The edit whose look-ahead promises most; on equal promises mismatch before insertion before
// deletion.
template <class Direction, bool kCount>
Edit choose_edit(const Text& text, const Path& path, Score best, Counters* counters) {
  const Score threshold = text.threshold(best);
  Edit choice = Edit::kNone;
  Score value = -text.unit_length() - 1;
  if (threshold < path.score + text.settings.mismatch_score) {
    value = look_ahead<Direction, kCount>(text, after_mismatch<Direction>(text, path), 1, best,
                                          counters);
    choice = Edit::kMismatch;
  }
  if (threshold < path.score + text.settings.indel_score) {
    const Score insertion = look_ahead<Direction, kCount>(
        text, after_insertion<Direction>(text, path), 1, best, counters);
    if (insertion > value) {
      value = insertion;
      choice = Edit::kInsertion;
    }
    const Score deletion = look_ahead<Direction, kCount>(
        text, after_deletion<Direction>(text, path), 1, best, counters);
    if (deletion > value) choice = Edit::kDeletion;
  }
  return choice;
}

// One extension of one repeat in one direction.
template <class Direction, bool kCount>
class Extension {
 public:
  Extension(std::string_view residues, const Settings& settings, Repeat& repeat, Counters* counters)
      : text_{residues, repeat.unit_begin, repeat.unit_end, settings},
        repeat_(repeat),
        snapshot_(repeat),
        counters_(counters) {}

  void run() {
    for (;;) {
      pass_matches();
      if (Direction::at_end(text_, pos()) || at_too_many_Ns()) {
        return finish(repeat_.score > best() - text_.settings.prefer_longer_repeat);
      }
      if (text_.is_neutral_N(next_residue<Direction>(text_, pos()))) {
        pass_Ns();
        continue;
      }
      if constexpr (kCount) ++counters_->decision_points;
      if (repeat_.score > best() - text_.settings.prefer_longer_repeat) snapshot_ = repeat_;
      const Path here{pos(), cursor(), repeat_.score};
      const Edit edit = choose_edit<Direction, kCount>(text_, here, best(), counters_);
      if (edit == Edit::kNone) {
        // One point more lenient than the test above.
        return finish(best() <= Score{repeat_.score} + text_.settings.prefer_longer_repeat);
      }
      apply(edit, here);
    }
  }

 private:
  std::size_t& pos() { return Direction::position(repeat_); }
  std::size_t& cursor() { return Direction::cursor(repeat_); }
  Score best() const { return snapshot_.score; }

  void move_to(const Path& path) {
    pos() = path.pos;
    cursor() = path.cursor;
    repeat_.score = static_cast<int>(path.score);
  }

  void pass_matches() {
    while (!Direction::at_end(text_, pos()) &&
           next_residue<Direction>(text_, pos()) == text_.residues[cursor()]) {
      ++repeat_.score;
      pass_residue();
    }
  }

  void pass_residue() {
    pos() = Direction::next(pos());
    cursor() = Direction::next_in_unit(text_, cursor());
  }

  // REQUIRES: not at the end.
  bool at_too_many_Ns() {
    if (!text_.is_neutral_N(next_residue<Direction>(text_, pos()))) return false;
    int run = 0;
    for (std::size_t p = pos();
         !Direction::at_end(text_, p) && next_residue<Direction>(text_, p) == 'N' &&
         run <= text_.settings.Ns_allowed_in_a_row;
         p = Direction::next(p)) {
      ++run;
    }
    return run > text_.settings.Ns_allowed_in_a_row;
  }

  void pass_Ns() {
    while (!Direction::at_end(text_, pos()) && next_residue<Direction>(text_, pos()) == 'N') {
      ++repeat_.num_Ns;
      pass_residue();
    }
  }

  void apply(Edit edit, const Path& here) {
    if (edit == Edit::kMismatch) {
      repeat_.events.push_back({Direction::residue_at(here.pos), 'M'});
      ++repeat_.mismatches;
      move_to(after_mismatch<Direction>(text_, here));
    } else if (edit == Edit::kInsertion) {
      repeat_.events.push_back({Direction::residue_at(here.pos), 'I'});
      ++repeat_.insertions;
      move_to(after_insertion<Direction>(text_, here));
    } else {
      // The residue to the right of the gap is the position itself in both directions.
      repeat_.events.push_back({here.pos, 'D'});
      ++repeat_.deletions;
      move_to(after_deletion<Direction>(text_, here));
    }
  }

  void finish(bool keep_current_state) {
    if (!keep_current_state) repeat_ = snapshot_;
  }

  const Text text_;
  Repeat& repeat_;
  Repeat snapshot_;  // the best state so far; its score is the best score
  Counters* counters_;
};

template <class Direction>
void extend(std::string_view residues, const Settings& settings, Repeat& repeat,
            Counters* counters) {
  if (counters != nullptr) {
    Extension<Direction, true>(residues, settings, repeat, counters).run();
  } else {
    Extension<Direction, false>(residues, settings, repeat, nullptr).run();
  }
}

template <class Direction>
Score look_ahead_from(std::string_view residues, const Settings& settings,
                      const LookAheadStart& start, Counters* counters) {
  const Text text{residues, start.unit_begin, start.unit_end, settings};
  const Path path{start.position, start.cursor, start.score};
  return counters != nullptr
             ? look_ahead<Direction, true>(text, path, start.level, start.best, counters)
             : look_ahead<Direction, false>(text, path, start.level, start.best, nullptr);
}

}  // namespace

void extend_forward(std::string_view residues, const Settings& settings, Repeat& repeat,
                    Counters* counters) {
  extend<Forward>(residues, settings, repeat, counters);
}

void extend_backward(std::string_view residues, const Settings& settings, Repeat& repeat,
                     Counters* counters) {
  extend<Backward>(residues, settings, repeat, counters);
}

std::int64_t look_ahead_forward(std::string_view residues, const Settings& settings,
                                const LookAheadStart& start, Counters* counters) {
  return look_ahead_from<Forward>(residues, settings, start, counters);
}

std::int64_t look_ahead_backward(std::string_view residues, const Settings& settings,
                                 const LookAheadStart& start, Counters* counters) {
  return look_ahead_from<Backward>(residues, settings, start, counters);
}

}  // namespace reference
