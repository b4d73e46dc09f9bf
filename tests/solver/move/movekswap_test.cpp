#include "solver/move/movekswap.h"

#include <algorithm>

#include "common/failure.h"
#include "tests/solver/move/reachedneighbours.h"
#include "tests/support/failures.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

/// Two exactly-one lists of four, each with its first decision raised; x[8] lies in no list. Node 0
/// is a spare decision unless a test wants it in a list.
class MoveKSwapTest : public testing::Test {
protected:
  void build() {
    auto& builder = graph.builder;
    spare = builder.boolean();
    x = builder.booleans(9);
    for (int i = 0; i < 2; ++i) {
      const std::vector<std::uint32_t> row(x.begin() + 4 * i, x.begin() + 4 * i + 4);
      rows.push_back(builder.node(NodeType::BooleanSum, row));
      builder.constraint(builder.node(NodeType::Eq, {rows.back(), builder.constant(1)}));
    }
  }
  void start(std::uint32_t seed = 1) {
    graph.start(seed);
    graph.raise(x[0]);
    graph.raise(x[4]);
  }
  MoveKSwap make(std::uint32_t k, std::uint32_t rate) {
    return MoveKSwap(*graph.dag, graph.rng, k, 1, rate, *graph.structure);
  }
  /// The sums of both rows under the open move.
  void expectRowsKept() {
    ASSERT_TRUE(graph.dag->propagation.evaluateConstraints(*graph.dag));
    for (const auto row : rows) EXPECT_EQ(graph.dag->tValues[row].intValue, 1);
  }

  test::SearchGraph graph;
  std::uint32_t spare = 0;
  std::vector<std::uint32_t> x;
  std::vector<std::uint32_t> rows;
};

TEST_F(MoveKSwapTest, WithoutATargetOnePairFewerChanges) {
  build();
  start(3);
  auto single = make(1, 0);
  EXPECT_EQ(single.name, "1-Swap");
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(single.apply());
    EXPECT_TRUE(graph.changed().empty());
    graph.reject();
  }
  EXPECT_EQ(graph.rng, 3u) << "nothing is drawn";
}

TEST_F(MoveKSwapTest, APairKeepsTheSumOfItsList) {
  build();
  start(3);
  auto move = make(2, 0);
  Decisions reached;
  int nbWholePairs = 0;
  for (int i = 0; i < 300; ++i) {
    ASSERT_TRUE(move.apply());
    const Decisions changed = graph.changed();
    reached.insert(changed.begin(), changed.end());
    ASSERT_EQ(changed.size(), 2u);
    ++nbWholePairs;
    expectRowsKept();
    graph.reject();
  }
  EXPECT_GT(nbWholePairs, 0);
  EXPECT_EQ(reached, Decisions(x.begin(), x.begin() + 8));
}

TEST_F(MoveKSwapTest, ATargetTakesAPlaceOfItsOwn) {
  build();
  graph.builder.maximise(x[2]);
  start();
  auto move = make(1, 100);
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed(), (Decisions{x[0], x[2]}));
    graph.reject();
  }
}

TEST_F(MoveKSwapTest, ATargetOutsideAllListsIsNotTaken) {
  build();
  graph.builder.maximise(x[8]);
  start();
  auto move = make(1, 100);
  EXPECT_TRUE(move.apply());
  EXPECT_TRUE(graph.changed().empty());
}

TEST_F(MoveKSwapTest, ATargetThatIsNodeZeroAddsAPair) {
  auto& builder = graph.builder;
  x = builder.booleans(6);
  ASSERT_EQ(x[0], 0u);
  for (int i = 0; i < 2; ++i) {
    rows.push_back(builder.node(NodeType::BooleanSum, {x[3 * i], x[3 * i + 1], x[3 * i + 2]}));
    builder.constraint(builder.node(NodeType::Eq, {rows.back(), builder.constant(1)}));
  }
  builder.maximise(x[0]);
  graph.start(11);
  graph.raise(x[1]);
  graph.raise(x[4]);
  auto move = make(1, 100);
  bool sawTwoPairs = false;
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_TRUE(graph.changed().contains(0));
    if (graph.changed().size() == 4) sawTwoPairs = true;
    graph.reject();
  }
  EXPECT_TRUE(sawTwoPairs);
}

TEST_F(MoveKSwapTest, TheLastConstrainedListComesBeforeAFreeOne) {
  auto& builder = graph.builder;
  builder.boolean();
  x = builder.booleans(4);
  builder.node(NodeType::BooleanSum, {x[0], x[3]});
  rows.push_back(builder.node(NodeType::BooleanSum, {x[0], x[1], x[2]}));
  builder.constraint(builder.node(NodeType::Eq, {rows[0], builder.constant(1)}));
  builder.maximise(x[0]);
  graph.start();
  graph.raise(x[1]);
  auto move = make(1, 100);
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed(), (Decisions{x[0], x[1]}));
    graph.reject();
  }
}

TEST_F(MoveKSwapTest, AMissingPartnerLeavesASingleFlip) {
  auto& builder = graph.builder;
  builder.boolean();
  x = builder.booleans(2);
  builder.node(NodeType::BooleanSum, x);
  builder.maximise(x[0]);
  graph.start();
  auto move = make(1, 100);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(graph.changed(), Decisions{x[0]}) << "no operand is at 1";
}

TEST_F(MoveKSwapTest, ADoubleIsNoPartner) {
  auto& builder = graph.builder;
  builder.boolean();
  x = builder.booleans(2);
  const auto y = builder.floating(0, 1);
  builder.doubleNode(NodeType::DoubleSum, {x[0], y});
  builder.doubleNode(NodeType::DoubleSum, {x[1], y});
  builder.maximise(x[0]);
  graph.start();
  test::setAndAccept(*graph.dag, y, 0.5);
  auto move = make(1, 100);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(graph.changed(), Decisions{x[0]});
}

TEST_F(MoveKSwapTest, NeedsTwoCandidatesForEachPair) {
  build();
  start();
  EXPECT_TRUE(make(4, 0).apply());
  graph.reject();
  EXPECT_FALSE(make(5, 0).apply());
  EXPECT_FALSE(make(2147483648u, 0).apply()) << "twice k does not wrap";
}

// ---- all that a swap can reach

/// Two exactly-one rows, a decision in both of them, free lists across them and beside them, and a
/// decision without a list.
class MoveKSwapNeighboursTest : public testing::Test {
protected:
  MoveKSwapNeighboursTest() {
    auto& builder = graph.builder;
    builder.boolean();  // node 0, which is no target like the others
    x = builder.booleans(13);
    addList({x[0], x[1], x[2], x[12]}, true);
    addList({x[3], x[4], x[5], x[6], x[12]}, true);
    addList({x[0], x[3], x[7]}, false);
    addList({x[7], x[8], x[9]}, false);
    addList({x[9], x[10]}, false);
  }
  void addList(const std::vector<std::uint32_t>& operands, bool isConstrained) {
    auto& builder = graph.builder;
    lists.push_back({operands, isConstrained});
    const auto list = builder.node(NodeType::BooleanSum, operands);
    if (!isConstrained) return;
    builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  }
  void start() {
    graph.start(3);
    for (const auto decision : {x[0], x[4], x[8]}) {
      graph.raise(decision);
      raised.insert(decision);
    }
  }
  MoveKSwap make(std::uint32_t k, std::uint32_t rate) {
    return MoveKSwap(*graph.dag, graph.rng, k, 1, rate, *graph.structure);
  }

  /// A decision with every partner of the other value, in its row if it has one, else in any of its
  /// lists; alone where such a list has no partner. None for a decision that no swap takes.
  test::Neighbours swapsOf(std::uint32_t decision) const {
    std::vector<List> rows;
    std::vector<List> others;
    for (const List& list : lists) {
      if (!std::count(list.operands.begin(), list.operands.end(), decision)) continue;
      (list.isConstrained ? rows : others).push_back(list);
    }
    test::Neighbours result;
    if (rows.size() > 1) return result;
    for (const List& list : rows.empty() ? others : rows) {
      const auto before = result.size();
      for (const auto partner : list.operands) {
        if (raised.contains(partner) != raised.contains(decision)) {
          result.insert({decision, partner});
        }
      }
      if (result.size() == before) result.insert({decision});
    }
    return result;
  }
  test::Neighbours allSwaps() const {
    test::Neighbours result;
    for (const auto decision : x) result.merge(swapsOf(decision));
    return result;
  }

  struct List {
    std::vector<std::uint32_t> operands;
    bool isConstrained;
  };
  test::SearchGraph graph;
  std::vector<std::uint32_t> x;
  std::vector<List> lists;
  Decisions raised;
};

TEST_F(MoveKSwapNeighboursTest, OneSwapWithoutATargetReachesTheStateItself) {
  start();
  auto move = make(1, 0);
  EXPECT_EQ(test::reachedBy(move, graph), test::Neighbours{Decisions{}});
}

TEST_F(MoveKSwapNeighboursTest, OneSwapWithATargetReachesItsPairs) {
  graph.builder.maximise(x[7]);
  start();
  auto move = make(1, 100);
  EXPECT_EQ(test::reachedBy(move, graph), swapsOf(x[7]));
}

TEST_F(MoveKSwapNeighboursTest, TwoSwapsWithoutATargetReachEveryPair) {
  start();
  auto move = make(2, 0);
  EXPECT_EQ(test::reachedBy(move, graph), allSwaps());
}

TEST_F(MoveKSwapNeighboursTest, TwoSwapsWithATargetReachItsPairsBesideEveryPair) {
  graph.builder.maximise(x[1]);
  start();
  auto move = make(2, 100);
  test::Neighbours expected;
  for (const Decisions& own : swapsOf(x[1])) {
    for (Decisions both : allSwaps()) {
      both.insert(own.begin(), own.end());
      expected.insert(both);
    }
  }
  EXPECT_EQ(test::reachedBy(move, graph), expected);
}

TEST_F(MoveKSwapTest, TheTargetingRateIsAtMostAHundred) {
  build();
  start();
  test::expectFailure(kInternal, "MoveKFlip::MoveKFlip", "Targeting rate must be smaller than 100.",
                      [&] { make(1, 101); });
}

}  // namespace
}  // namespace ombrix
