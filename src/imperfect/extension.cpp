// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extension of a repeat over mismatches, insertions and deletions.
//
// Idea: follow the unit over matches. Where the sequence departs from it, ask the look-ahead which
// edit promises most, apply it and go on, until no edit keeps the score above the threshold. On the
// way remember the best state; at the end return to it.
//
// Invariant: the events of the best state are a prefix of those applied so far, so returning to it
// means cutting the list.
//
// Example: unit AC, ...ACACAGACAC...: at G the mismatch keeps the phase, so it is chosen over the
// indels; four matches later the score is one below the best. Whether the stretch behind G is kept
// depends on how much further the matches go.
//
// Of two equally good states the later one is remembered when longer repeats are preferred.
//
// Where the score is high, the extension follows a way that others have gone; see path_forest.h for
// why that leads to the same result.

#include "imperfect/extension.h"

#include "search/csearchcontroller.h"
#include "search/perfect_extension.h"

namespace vorlan {
namespace {

/// With room for this many edits at most, the look-ahead goes path by path.
constexpr int kFewEdits = 3;
constexpr int kShallowLevel = 7;

/// Alignments with more edits than this, in stored ways, do not note them.
constexpr std::uint32_t kMostNotedEdits = 64;

MergedLookAheadMemory<Forward>& memory_of(Forward, ExtensionContext& context) {
  return context.forward_memory;
}
MergedLookAheadMemory<Backward>& memory_of(Backward, ExtensionContext& context) {
  return context.backward_memory;
}

template <class Direction>
class Extension {
 public:
  Extension(Csat& sat, const char* stop, ExtensionContext& context,
            std::vector<PathSegment>& segments, std::int64_t least_score)
      : sat_(sat),
        unit_{sat.unit_begin, sat.unit_end},
        stop_(stop),
        settings_(context.settings),
        look_ahead_(settings_, unit_, stop_),
        merged_look_ahead_(settings_, unit_, stop_, context.planes, context.seq_begin,
                           memory_of(Direction{}, context)),
        bit_look_ahead_(settings_, unit_, stop_, context.planes, context.seq_begin,
                        context.bit_memory),
        least_score_(least_score),
        paths_(context.paths),
        segments_(segments),
        lowest_shared_score_(UnitPaths::lowest_score(unit_.length(), settings_)) {
    now_.place = Direction::place(sat);
    now_.cursor = Direction::cursor(sat);
    now_.totals = {sat.score, sat.mismatches, sat.insertions, sat.deletions, sat.num_Ns};
    now_.events = sat.missense.size;
    best_ = now_;
  }

  void run() {
    bool keep = false;
    for (;;) {
      if (!reach_decision(now_)) {
        keep = is_as_good_as_best();
        break;
      }
      if (is_as_good_as_best()) best_ = now_;
      if (is_over()) break;
      if (paths_ != nullptr && now_.totals.score >= lowest_shared_score_ && !follow_ways()) {
        keep = is_as_good_as_best();
        break;
      }
      const Move move = decide(now_, best_.totals.score);
      if (move == Move::kNone) {
        // One point more lenient than where the extension ends for another reason. Deliberate: with
        // longer repeats preferred, a state one point below the best is kept here, and a record can
        // end with a score of -1.
        keep = best_.totals.score <= now_.totals.score + settings_.prefer_longer_repeat;
        break;
      }
      sat_.missense.push_back(event_of<Direction>(move, now_.place));
      ++now_.events;
      apply(now_, move);
    }
    store(keep ? now_ : best_);
  }

 private:
  /// Where an extension is, and what it has collected.
  struct State {
    const char* place = nullptr;
    const char* cursor = nullptr;
    PathTotals totals;
    std::uint32_t events = 0;      ///< In the record.
    std::size_t segments = 0;      ///< Passed over, besides the events.
    NodeId segment_end = kNoNode;  ///< Where the last of them ends for this state.
  };

  bool is_as_good_as_best() const {
    return now_.totals.score > best_.totals.score - settings_.prefer_longer_repeat;
  }

  // Whether nothing that may follow is kept. A state one point worse than those that replace the
  // best one may be kept, too; and an alignment below the least score is worth no more than
  // another.
  bool is_over() {
    const std::int64_t best = best_.totals.score;
    const std::int64_t goal =
        best < least_score_ ? least_score_ : best - settings_.prefer_longer_repeat;
    return bit_look_ahead_.stays_below(goal, now_.place, now_.cursor, now_.totals.score,
                                       settings_.threshold(best, unit_.length()));
  }

  // Walks over matches and short N runs. Returns false at the end of the sequence and at an N run
  // that is too long.
  bool reach_decision(State& state) const {
    for (;;) {
      if (Direction::at_stop(state.place, stop_)) return false;
      const char residue = *Direction::residue(state.place);
      if (residue == *state.cursor) {
        step(state);
        ++state.totals.score;
      } else if (residue != 'N' || settings_.longest_N_run == 0) {
        return true;
      } else if (!bridge_N_run(state)) {
        return false;
      }
    }
  }

  // Bridges the whole N run, or nothing when it is too long; then returns false.
  bool bridge_N_run(State& state) const {
    std::uint32_t run_length = 0;
    for (const char* place = state.place;
         !Direction::at_stop(place, stop_) && *Direction::residue(place) == 'N';
         place = Direction::next(place)) {
      if (run_length == settings_.longest_N_run) return false;
      ++run_length;
    }
    for (std::uint32_t i = 0; i < run_length; ++i) step(state);
    state.totals.num_Ns += run_length;
    return true;
  }

  // Close to the floor there are so few paths that looking for equal states costs more than it
  // saves. A deep look-ahead has many all the same: a path that gains on its way goes on for long.
  bool has_few_paths(std::int64_t score) const {
    const std::int64_t worst_edit = std::min(settings_.mismatch_score, settings_.indel_score);
    return settings_.deepest_level() > 0 && settings_.deepest_level() <= kShallowLevel &&
           score + kFewEdits * worst_edit <= settings_.threshold(score, unit_.length());
  }

  Move decide(const State& state, std::int64_t best_score) {
    if (const auto move =
            bit_look_ahead_.best_move(state.place, state.cursor, state.totals.score)) {
      return *move;
    }
    if (merged_look_ahead_.can_judge(state.totals.score) && !has_few_paths(state.totals.score)) {
      return merged_look_ahead_.best_move(state.place, state.cursor, state.totals.score);
    }
    return look_ahead_
        .best_move(state.place, state.cursor, state.totals.score, sat_.recursion_level, best_score)
        .move;
  }

  void apply(State& state, Move move) const {
    switch (move) {
      case Move::kMismatch:
        ++state.totals.mismatches;
        state.totals.score += settings_.mismatch_score;
        step(state);
        break;
      case Move::kInsertion:
        ++state.totals.insertions;
        state.totals.score += settings_.indel_score;
        state.place = Direction::next(state.place);
        break;
      case Move::kDeletion:
        ++state.totals.deletions;
        state.totals.score += settings_.indel_score;
        state.cursor = Direction::next_unit_base(state.cursor, unit_);
        break;
      case Move::kNone:
        break;
    }
  }

  void step(State& state) const {
    state.place = Direction::next(state.place);
    state.cursor = Direction::next_unit_base(state.cursor, unit_);
  }

  void store(const State& state) {
    Direction::place(sat_) = state.place;
    Direction::cursor(sat_) = state.cursor;
    sat_.score = static_cast<std::int32_t>(state.totals.score);
    sat_.mismatches = state.totals.mismatches;
    sat_.insertions = state.totals.insertions;
    sat_.deletions = state.totals.deletions;
    sat_.num_Ns = state.totals.num_Ns;
    sat_.missense.size = state.events;
    segments_.resize(state.segments);
    if (state.segment_end != kNoNode) segments_.back().to = state.segment_end;
  }

  // From a decision point with a high score, follows the stored way and lengthens it as needed,
  // until the score is no longer high. Returns false if the way ends before.
  bool follow_ways() {
    if (!phases_known_) {
      phases_ = paths_->phases().of({unit_.begin, static_cast<std::size_t>(unit_.length())});
      phases_known_ = true;
    }
    PathForest& forest = paths_->forest(Direction{});
    const NodeId first = node_of(now_);
    const State start = now_;
    segments_.resize(start.segments);
    segments_.push_back({first, first});
    for (;;) {
      const PathEnd end =
          forest.follow(first, start.totals, lowest_shared_score_, best_.totals.score);
      if (end.best_node != kNoNode) best_ = state_at(start, end.best_node, end.best_totals);
      now_ = state_at(start, end.node, end.totals);
      segments_.back().to = end.node;
      if (forest[end.node].is_terminal) return false;
      if (now_.totals.score < lowest_shared_score_) return true;
      lengthen(end.node);
    }
  }

  State state_at(const State& start, NodeId node, const PathTotals& totals) const {
    State state = start;
    state.place = paths_->place_of(paths_->forest(Direction{})[node]);
    state.cursor = Direction::unit_base_after(
        start.cursor, unit_,
        std::abs(state.place - start.place) -
            static_cast<std::ptrdiff_t>(totals.insertions - start.totals.insertions) +
            static_cast<std::ptrdiff_t>(totals.deletions - start.totals.deletions));
    state.totals = totals;
    state.segments = start.segments + 1;
    state.segment_end = node;
    return state;
  }

  std::uint32_t phase_of(const State& state) const {
    return phases_.phase(static_cast<std::uint32_t>(state.cursor - unit_.begin));
  }

  /// A decision and what comes between it and the next decision point.
  struct Decision {
    std::uint32_t place;
    std::uint32_t phase;
    Move move;
    PathTotals gain;
  };

  // The node of a decision point; stores the way from there on if it is new.
  NodeId node_of(State state) {
    PathForest& forest = paths_->forest(Direction{});
    std::vector<Decision> decisions;
    NodeId id = kNoNode;
    for (;;) {
      const std::uint32_t place = paths_->offset_of(state.place);
      const std::uint32_t phase = phase_of(state);
      id = forest.find(place, phase);
      if (id != kNoNode) break;
      if (state.totals.score < lowest_shared_score_) {
        id = forest.add_root(place, phase, false);
        break;
      }
      decisions.push_back({place, phase, Move::kNone, state.totals});
      if (!make_decision(state, decisions.back())) {
        id = forest.add_root(paths_->offset_of(state.place), 0, true);
        break;
      }
    }
    for (auto decision = decisions.rbegin(); decision != decisions.rend(); ++decision) {
      id = forest.add(decision->place, decision->phase, decision->move, id, decision->gain);
    }
    return id;
  }

  // Makes the decision at `state` and goes on to the next decision point; false if there is none.
  bool make_decision(State& state, Decision& decision) {
    const PathTotals before = state.totals;
    decision.move = decide(state, state.totals.score);
    apply(state, decision.move);
    const bool goes_on = reach_decision(state);
    decision.gain = state.totals - before;
    return goes_on;
  }

  // Stores how the way goes on from the root where the extension is now.
  void lengthen(NodeId root) {
    PathForest& forest = paths_->forest(Direction{});
    State state = now_;
    Decision decision{};
    const bool goes_on = make_decision(state, decision);
    const NodeId next =
        goes_on ? node_of(state) : forest.add_root(paths_->offset_of(state.place), 0, true);
    forest.continue_root(root, decision.move, next, decision.gain);
  }

  Csat& sat_;
  UnitSpan unit_;
  const char* stop_;
  const AlignmentSettings& settings_;
  LeapAhead<Direction> look_ahead_;
  MergedLookAhead<Direction> merged_look_ahead_;
  BitLookAhead<Direction> bit_look_ahead_;
  std::int64_t least_score_;
  UnitPaths* paths_;
  std::vector<PathSegment>& segments_;
  std::int64_t lowest_shared_score_;
  UnitPhases::Unit phases_;
  bool phases_known_ = false;
  State now_;
  State best_;
};

}  // namespace

template <class Direction>
void extend(Csat& sat, const char* stop, ExtensionContext& context,
            std::vector<PathSegment>& segments, std::int64_t least_score) {
  Extension<Direction>(sat, stop, context, segments, least_score).run();
}

template void extend<Forward>(Csat&, const char*, ExtensionContext&, std::vector<PathSegment>&,
                              std::int64_t);
template void extend<Backward>(Csat&, const char*, ExtensionContext&, std::vector<PathSegment>&,
                               std::int64_t);

bool extend_and_judge(Csat& sat, const char* seq_end, ExtensionContext& context, int min_score,
                      int min_length, PassedOver& passed_over) {
  extend<Forward>(sat, seq_end, context, passed_over.forward);
  extend<Backward>(sat, context.seq_begin, context, passed_over.backward, min_score);
  sat.trim_Ns();
  if (!sat.reaches(min_score, min_length)) return false;
  if (sat.mismatches + sat.insertions + sat.deletions <= kMostNotedEdits) {
    if (!passed_over.forward.empty())
      append_events<Forward>(passed_over.forward, *context.paths, sat);
    if (!passed_over.backward.empty())
      append_events<Backward>(passed_over.backward, *context.paths, sat);
    passed_over = {};
  }
  sat.events_pending = !passed_over.forward.empty() || !passed_over.backward.empty();
  sat.sort_missense();
  return true;
}

/// What extensions outside the complete search share: seeds of one sequence, and repeats whose
/// events are restored.
struct CSearchController::Extender {
  Extender(const char* begin, const char* end)
      : planes(begin, static_cast<std::size_t>(end - begin),
               std::max(MismatchMasks<Forward>::kReach, DiagonalMasks<Forward>::kMargin)),
        seq_end(end),
        context{.seq_begin = begin,
                .settings = AlignmentSettings::for_sequence(static_cast<std::size_t>(end - begin)),
                .planes = &planes},
        paths(begin, context.settings) {
    if (UnitPaths::can_share(context.settings)) context.paths = &paths;
  }

  void forget_ways_if_many() {
    if (paths.stored_nodes() > UnitPaths::kMostNodes) paths.forget();
  }

  /// Whether the extension of a perfect seed may reach a score. Example: a seed of score 4 cannot
  /// reach 6 when neither side gains a point behind an edit.
  bool may_reach(const Csat& seed, int min_score) {
    if (seed.score >= min_score || !context.settings.has_constant_threshold()) return true;
    return !stays_below<Forward>(seed, seed.score + 1, seq_end) ||
           !stays_below<Backward>(seed, min_score, context.seq_begin);
  }

  /// Extends with all events.
  template <class Direction>
  void extend_with_events(Csat& sat, const char* stop) {
    forget_ways_if_many();
    std::vector<PathSegment> segments;
    extend<Direction>(sat, stop, context, segments);
    append_events<Direction>(segments, paths, sat);
  }

  BitPlanes planes;
  const char* seq_end;
  ExtensionContext context;
  UnitPaths paths;

 private:
  // An N at the end of the seed would be walked over before the first edit.
  template <class Direction>
  bool stays_below(const Csat& seed, std::int64_t goal, const char* stop) {
    const char* place = Direction::place(seed);
    if (!Direction::at_stop(place, stop) && *Direction::residue(place) == 'N') return false;
    const UnitSpan unit{seed.unit_begin, seed.unit_end};
    BitLookAhead<Direction> look_ahead(context.settings, unit, stop, &planes, context.seq_begin,
                                       context.bit_memory);
    return look_ahead.stays_below(goal, place, Direction::cursor(seed), seed.score,
                                  context.settings.threshold(seed.score, unit.length()));
  }
};

void CSearchController::ExtenderDeleter::operator()(Extender* extender) const { delete extender; }

CSearchController::Extender& CSearchController::extender() {
  if (extender_ == nullptr) extender_.reset(new Extender(seq_begin(), seq_end()));
  return *extender_;
}

namespace {

template <class Direction>
void extend_to_nearer_stop(Csat& sat, const char* stop) {
  ExtensionContext context;
  std::vector<PathSegment> none;
  extend<Direction>(sat, stop, context, none);
}

}  // namespace

void CSearchController::extend_imperfect_forward(Csat& sat, const char* stop) {
  if (stop != seq_end()) return extend_to_nearer_stop<Forward>(sat, stop);
  extender().extend_with_events<Forward>(sat, stop);
}

void CSearchController::extend_imperfect_backward(Csat& sat, const char* stop) {
  if (stop != seq_begin()) return extend_to_nearer_stop<Backward>(sat, stop);
  extender().extend_with_events<Backward>(sat, stop);
}

bool CSearchController::accept_extended(Csat& seed) {
  Extender& shared = extender();
  shared.forget_ways_if_many();
  const unsigned unit_length = seed.unit_length();
  const int min_score = (*minScores_user)[unit_length];
  if (!shared.may_reach(seed, min_score)) return false;
  PassedOver passed_over;
  return extend_and_judge(seed, seq_end(), shared.context, min_score,
                          (*minLengths_user)[unit_length], passed_over);
}

void CSearchController::restore_events(Csat& sat) {
  sat.init(sat.unit_begin, sat.unit_end);
  if (extends_perfect_repeats_) PerfectExtension(seq_begin(), seq_end()).extend(sat);
  extend_imperfect_forward(sat, seq_end());
  extend_imperfect_backward(sat, seq_begin());
  sat.trim_Ns();
  sat.sort_missense();
}

}  // namespace vorlan
