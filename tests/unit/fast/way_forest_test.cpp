// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Ways that are followed in jumps against a walk from node to node.

#include "imperfect/ways/way_forest.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <vector>

#include "extension_settings.h"
#include "imperfect/ways/stored_ways.h"
#include "random.h"

namespace vorlan {

bool operator==(const AlignmentTotals& a, const AlignmentTotals& b) {
  return a.score == b.score && a.mismatches == b.mismatches && a.insertions == b.insertions &&
         a.deletions == b.deletions && a.num_Ns == b.num_Ns;
}

void PrintTo(const AlignmentTotals& totals, std::ostream* out) {
  *out << "score " << totals.score << " mismatches " << totals.mismatches << " insertions "
       << totals.insertions << " deletions " << totals.deletions << " N " << totals.num_Ns;
}

namespace {

using differential::Random;

/// A node that knows only how it goes on.
struct PlainNode {
  std::uint32_t place;
  std::uint32_t phase;
  bool is_terminal;
  bool is_root;
  NodeId next;  ///< kNoNode where the way ends.
  AlignmentTotals gain;
};

/// A forest in both forms that grows like those of a search: by nodes before others, by roots, and
/// by roots that get a continuation. Ways lead to higher places, so there are no circles.
class GrownForest {
 public:
  GrownForest(Random& random, bool prefer_later)
      : random_(random), prefer_later_(prefer_later), forest_(prefer_later) {}

  const WayForest& forest() const { return forest_; }
  const std::vector<PlainNode>& nodes() const { return plain_; }

  /// Adds a node, or lets a root go on. `rise` and `fall` bound what a step gains and loses.
  void grow(int rise, int fall) {
    const int kind = random_.between(0, 99);
    if (plain_.empty() || kind < 3) return add_root();
    if (kind < 8) return continue_root(rise, fall);
    add_node(rise, fall);
  }

  /// Walks node by node.
  WayEnd follow_slowly(NodeId first, const AlignmentTotals& totals, std::int64_t lowest_score,
                       std::int64_t best_score) const {
    WayEnd end{.node = first, .totals = totals};
    while (plain_[end.node].next != kNoNode) {
      end.totals = end.totals + plain_[end.node].gain;
      end.node = plain_[end.node].next;
      if (end.totals.score > best_score || (prefer_later_ && end.totals.score == best_score)) {
        best_score = end.totals.score;
        end.best_node = end.node;
        end.best_totals = end.totals;
      }
      if (end.totals.score < lowest_score) break;
    }
    return end;
  }

 private:
  static constexpr std::uint32_t kHighestPlace = 1'000'000;

  std::uint32_t free_phase(std::uint32_t place) {
    std::uint32_t phase = static_cast<std::uint32_t>(random_.below(3));
    while (!keys_.emplace(place, phase).second) ++phase;
    return phase;
  }

  void add_root() {
    const std::uint32_t place =
        kHighestPlace - static_cast<std::uint32_t>(random_.below(kHighestPlace / 2));
    const bool is_terminal = random_.per_cent(30);
    const std::uint32_t phase = is_terminal ? 0 : free_phase(place);
    plain_.push_back({place, phase, is_terminal, true, kNoNode, {}});
    ASSERT_EQ(forest_.add_root(place, phase, is_terminal), plain_.size() - 1);
  }

  // Mostly before one of the latest nodes, so that ways get long.
  void add_node(int rise, int fall) {
    const std::size_t size = plain_.size();
    const std::size_t back =
        random_.per_cent(80) ? random_.below(std::min<std::size_t>(size, 2)) : random_.below(size);
    const auto next = static_cast<NodeId>(size - 1 - back);
    const std::uint32_t place =
        plain_[next].place - 1 - static_cast<std::uint32_t>(random_.below(9));
    const std::uint32_t phase = free_phase(place);
    const AlignmentTotals gain = random_gain(rise, fall);
    plain_.push_back({place, phase, false, false, next, gain});
    ASSERT_EQ(forest_.add(place, phase, Move::kMismatch, next, gain), plain_.size() - 1);
  }

  void continue_root(int rise, int fall) {
    const auto root = static_cast<NodeId>(random_.below(plain_.size()));
    const auto target = static_cast<NodeId>(random_.below(plain_.size()));
    PlainNode& node = plain_[root];
    if (!node.is_root || node.is_terminal || node.next != kNoNode) return;
    if (plain_[target].place <= node.place) return;
    node.next = target;
    node.gain = random_gain(rise, fall);
    forest_.continue_root(root, Move::kInsertion, target, node.gain);
  }

  AlignmentTotals random_gain(int rise, int fall) {
    const auto count = [&] { return static_cast<std::uint32_t>(random_.below(4)); };
    return {random_.between(-fall, rise), count(), count(), count(), count()};
  }

  Random& random_;
  bool prefer_later_;
  WayForest forest_;
  std::vector<PlainNode> plain_;
  std::set<std::pair<std::uint32_t, std::uint32_t>> keys_;
};

/// What the extensions of a test met, so that it cannot pass on short ways alone.
struct Met {
  int low_scores = 0;
  int ends = 0;
  int best_nodes = 0;
};

void expect_same_end(Random& random, const GrownForest& grown, Met& met) {
  const auto first = static_cast<NodeId>(random.below(grown.nodes().size()));
  const auto count = [&] { return static_cast<std::uint32_t>(random.below(1000)); };
  const AlignmentTotals totals{random.between(0, 200), count(), count(), count(), count()};
  const std::int64_t lowest_score =
      totals.score - (random.per_cent(70) ? random.between(0, 60) : random.between(0, 2000));
  const std::int64_t best_score = totals.score + random.between(-20, 60);
  const WayEnd expected = grown.follow_slowly(first, totals, lowest_score, best_score);
  const WayEnd found = grown.forest().follow(first, totals, lowest_score, best_score);
  ASSERT_EQ(found.node, expected.node) << "from node " << first;
  ASSERT_EQ(found.totals, expected.totals) << "from node " << first;
  ASSERT_EQ(found.best_node, expected.best_node) << "from node " << first;
  if (expected.best_node != kNoNode) {
    ASSERT_EQ(found.best_totals, expected.best_totals) << "from node " << first;
    ++met.best_nodes;
  }
  ++(expected.totals.score < lowest_score ? met.low_scores : met.ends);
}

/// How much a step gains and loses at most.
struct Slope {
  const char* name;
  int rise;
  int fall;
};
void PrintTo(const Slope& slope, std::ostream* out) { *out << slope.name; }

class PathForestWith : public testing::TestWithParam<Slope> {};

TEST_P(PathForestWith, FollowsAWayAsAWalkFromNodeToNodeDoes) {
  Met met;
  for (int seed = 0; seed < 10 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const bool prefer_later = seed % 2 == 0;
    GrownForest grown(random, prefer_later);
    for (int i = 0; i < 800; ++i) {
      ASSERT_NO_FATAL_FAILURE(grown.grow(GetParam().rise, GetParam().fall));
      ASSERT_NO_FATAL_FAILURE(expect_same_end(random, grown, met));
    }
  }
  const int enough = 40 * kWorkload;
  EXPECT_GT(met.low_scores, enough);
  EXPECT_GT(met.ends, enough);
  EXPECT_GT(met.best_nodes, enough);
}

TEST_P(PathForestWith, FindsEveryDecisionPointAfterItHasGrown) {
  Random random(1);
  GrownForest grown(random, true);
  for (int i = 0; i < 3000; ++i) grown.grow(GetParam().rise, GetParam().fall);
  const WayForest& forest = grown.forest();
  ASSERT_EQ(forest.size(), grown.nodes().size());
  for (NodeId id = 0; id < forest.size(); ++id) {
    const PlainNode& node = grown.nodes()[id];
    ASSERT_EQ(forest[id].place, node.place);
    ASSERT_EQ(forest[id].phase, node.phase);
    ASSERT_EQ(forest[id].is_terminal, node.is_terminal);
    ASSERT_EQ(forest.after(id), node.next);
    // The end of a way is no decision point.
    if (!node.is_terminal) {
      ASSERT_EQ(forest.find(node.place, node.phase), id);
    }
    ASSERT_EQ(forest.find(node.place, 1000), kNoNode);
  }
}

INSTANTIATE_TEST_SUITE_P(Slopes, PathForestWith,
                         testing::Values(Slope{"UpAndDown", 9, 9}, Slope{"MostlyUp", 9, 3},
                                         Slope{"MostlyDown", 1, 4}, Slope{"Flat", 1, 1},
                                         Slope{"RareDeepFalls", 2, 60}),
                         [](const auto& param) { return param.param.name; });

/// A way of `length` steps that each gain `score` and a mismatch. Returns its first node.
NodeId add_even_way(WayForest& forest, std::uint32_t length, std::int64_t score) {
  NodeId id = forest.add_root(length, 0, true);
  for (std::uint32_t place = length; place > 0; --place) {
    id = forest.add(place - 1, 0, Move::kMismatch, id, {score, 1, 0, 0, 0});
  }
  return id;
}

TEST(WayForest, EndsALongDescentAtTheFirstNodeThatIsTooLow) {
  constexpr std::uint32_t kLength = 3000;
  WayForest forest(true);
  const NodeId first = add_even_way(forest, kLength, -2);
  for (std::uint32_t steps = 1; steps < kLength; steps += 7) {
    // Below 1000 - 2 * steps + 1 for the first time after this many steps.
    const WayEnd end =
        forest.follow(first, {1000, 0, 0, 0, 0}, 1001 - 2 * std::int64_t{steps}, 1000);
    ASSERT_EQ(forest[end.node].place, steps);
    ASSERT_EQ(end.totals, (AlignmentTotals{1000 - 2 * std::int64_t{steps}, steps, 0, 0, 0}));
    ASSERT_EQ(end.best_node, kNoNode);
  }
}

TEST(WayForest, RemembersTheLaterOrTheEarlierOfEqualBestNodes) {
  constexpr std::uint32_t kLength = 500;
  for (const bool prefer_later : {false, true}) {
    WayForest forest(prefer_later);
    const NodeId first = add_even_way(forest, kLength, 0);
    // All nodes have score 20: better than 19, as good as 20, worse than 21.
    const WayEnd better = forest.follow(first, {20, 0, 0, 0, 0}, 0, 19);
    ASSERT_NE(better.best_node, kNoNode);
    EXPECT_EQ(forest[better.best_node].place, prefer_later ? kLength : 1);
    const WayEnd equal = forest.follow(first, {20, 0, 0, 0, 0}, 0, 20);
    if (prefer_later) {
      ASSERT_NE(equal.best_node, kNoNode);
      EXPECT_EQ(forest[equal.best_node].place, kLength);
    } else {
      EXPECT_EQ(equal.best_node, kNoNode);
    }
    EXPECT_EQ(forest.follow(first, {20, 0, 0, 0, 0}, 0, 21).best_node, kNoNode);
  }
}

TEST(WayForest, JumpsAlongTheTreeAndStaysAtItsRoot) {
  WayForest forest(true);
  const NodeId first = add_even_way(forest, 1000, 1);
  NodeId id = first;
  for (int jumps = 0; !forest[id].is_terminal; ++jumps) {
    // With skews that double, a thousand nodes are passed in about twice as many jumps as bits.
    ASSERT_LT(jumps, 30);
    ASSERT_GT(forest[forest.jump(id)].place, forest[id].place);
    id = forest.jump(id);
  }
  EXPECT_EQ(forest.jump(id), id);
}

TEST(WayForest, FollowsNodesThatNoOtherWayIsToFind) {
  WayForest forest(true);
  const NodeId end = forest.add_root(9, 0, true);
  const NodeId unknown = forest.add(5, kUnknownPhase, Move::kMismatch, end, {3, 1, 0, 0, 0});
  const NodeId same_place = forest.add(5, kUnknownPhase, Move::kInsertion, end, {2, 0, 1, 0, 0});
  const NodeId first = forest.add(1, 0, Move::kMismatch, unknown, {4, 1, 0, 0, 0});
  EXPECT_EQ(forest.find(5, kUnknownPhase), kNoNode);
  EXPECT_EQ(forest.find(1, 0), first);
  EXPECT_EQ(forest.after(first), unknown);
  EXPECT_NE(unknown, same_place);
  EXPECT_EQ(forest.follow(first, {0, 0, 0, 0, 0}, 0, 0).totals, (AlignmentTotals{7, 2, 0, 0, 0}));
}

TEST(WayForest, KnowsNothingAfterItWasCleared) {
  WayForest forest(true);
  add_even_way(forest, 2000, 1);
  forest.clear();
  EXPECT_EQ(forest.size(), 0U);
  EXPECT_EQ(forest.find(5, 0), kNoNode);
  const NodeId first = add_even_way(forest, 10, 1);
  EXPECT_EQ(forest.find(0, 0), first);
  EXPECT_EQ(forest.follow(first, {0, 0, 0, 0, 0}, 0, 0).totals, (AlignmentTotals{10, 10, 0, 0, 0}));
}

// The first unit of all is phase 0 from its smallest base on; the second would begin at 2.
TEST(StoredWays, KnowNothingOfEitherDirectionAfterTheyWereForgotten) {
  StoredWays ways("", Scoring::of_the_run());
  EXPECT_EQ(ways.phases().of("AC").phase(0), 0U);
  ways.forest(Forward{}).add_root(5, 0, false);
  ways.forest(Backward{}).add_root(7, 1, false);
  EXPECT_EQ(ways.nodes(), 2U);
  ways.forget();
  EXPECT_EQ(ways.nodes(), 0U);
  EXPECT_EQ(ways.forest(Forward{}).find(5, 0), kNoNode);
  EXPECT_EQ(ways.forest(Backward{}).find(7, 1), kNoNode);
  EXPECT_EQ(ways.phases().of("GT").phase(0), 0U);
}

TEST(NodeTable, FindsNothingWhileItIsEmpty) {
  NodeTable table;
  EXPECT_EQ(table.find(0, 0), kNoNode);
}

// Places that differ by a multiple of any table size begin their search at the same entry.
TEST(NodeTable, TellsCollidingKeysApartWhileItGrows) {
  constexpr NodeId kKeys = 1500;
  const auto place_of = [](NodeId id) { return id << 20; };
  NodeTable table;
  for (NodeId id = 0; id < kKeys; ++id) {
    ASSERT_EQ(table.find(place_of(id), 7), kNoNode);
    table.insert(place_of(id), 7, id);
    ASSERT_EQ(table.find(place_of(id), 7), id);
  }
  for (NodeId id = 0; id < kKeys; ++id) {
    ASSERT_EQ(table.find(place_of(id), 7), id);
    ASSERT_EQ(table.find(place_of(id), 8), kNoNode);
    ASSERT_EQ(table.find(place_of(id) + 1, 7), kNoNode);
  }
}

// Neighbours fill whole stretches of the table, also over its end.
TEST(NodeTable, FindsNeighboursOfEveryPhase) {
  constexpr std::uint32_t kFirst = 900;
  constexpr std::uint32_t kPlaces = 300;
  constexpr std::uint32_t kPhases = 12;
  NodeTable table;
  const auto id_of = [](std::uint32_t place, std::uint32_t phase) {
    return place * kPhases + phase;
  };
  for (std::uint32_t phase = 0; phase < kPhases; ++phase) {
    for (std::uint32_t place = kFirst; place < kFirst + kPlaces; ++place) {
      table.insert(place, phase, id_of(place, phase));
    }
  }
  for (std::uint32_t phase = 0; phase < kPhases; ++phase) {
    for (std::uint32_t place = kFirst; place < kFirst + kPlaces; ++place) {
      ASSERT_EQ(table.find(place, phase), id_of(place, phase));
    }
    ASSERT_EQ(table.find(kFirst - 1, phase), kNoNode);
    ASSERT_EQ(table.find(kFirst + kPlaces, phase), kNoNode);
  }
  table.clear();
  EXPECT_EQ(table.find(kFirst, 0), kNoNode);
}

}  // namespace
}  // namespace vorlan
