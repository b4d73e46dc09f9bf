#include "solver/move/movekflip.h"

#include "common/failure.h"
#include "tests/solver/move/reachedneighbours.h"
#include "tests/support/failures.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class MoveKFlipTest : public testing::Test {
protected:
  MoveKFlip make(std::uint32_t k, std::uint32_t rate) {
    return MoveKFlip(*graph.dag, graph.rng, k, 1, rate, *graph.structure);
  }
  /// A list that must hold one decision, and two decisions beside it.
  void build() {
    auto& builder = graph.builder;
    bound = builder.booleans(2);
    free = builder.booleans(2);
    const auto list = builder.node(NodeType::BooleanSum, bound);
    builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  }

  test::SearchGraph graph;
  std::vector<std::uint32_t> bound;
  std::vector<std::uint32_t> free;
};

TEST_F(MoveKFlipTest, OnlyDecisionsOfFreeListsAreFlipped) {
  build();
  graph.start();
  auto move = make(1, 0);
  EXPECT_EQ(move.name, "1-Flip");
  Decisions reached;
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed().size(), 1u);
    reached.merge(graph.changed());
    graph.reject();
  }
  EXPECT_EQ(reached, Decisions(free.begin(), free.end()));
}

TEST_F(MoveKFlipTest, KBeyondTheFreeDecisionsIsInfeasibleEachTime) {
  build();
  graph.start();
  auto move = make(3, 100);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(MoveKFlipTest, ATargetInAConstrainedListIsNotTaken) {
  build();
  graph.start();  // the equality is violated, so every target lies in its list
  auto move = make(1, 100);
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed().size(), 1u);
    EXPECT_FALSE(graph.changed().contains(bound[0]) || graph.changed().contains(bound[1]));
    graph.reject();
  }
}

TEST_F(MoveKFlipTest, ATargetInFreeListsOnlyIsTaken) {
  build();
  graph.builder.maximise(free[1]);
  graph.start();
  graph.raise(bound[0]);
  auto move = make(1, 100);
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed(), Decisions{free[1]});
    graph.reject();
  }
}

/// Two decisions bound by an equality, two of a free list, and two of no list.
class MoveKFlipNeighboursTest : public MoveKFlipTest {
protected:
  void buildWithMoreFree() {
    build();
    graph.builder.node(NodeType::BooleanSum, free);
    const auto unlisted = graph.builder.booleans(2);
    free.insert(free.end(), unlisted.begin(), unlisted.end());
  }
};

TEST_F(MoveKFlipNeighboursTest, TwoFlipsReachEveryPairOfFreeDecisions) {
  buildWithMoreFree();
  graph.start();
  auto move = make(2, 0);
  EXPECT_EQ(test::reachedBy(move, graph), test::pairsOf(free));
}

TEST_F(MoveKFlipNeighboursTest, TwoFlipsWithATargetReachItWithEveryFreeDecisionAndAlone) {
  buildWithMoreFree();
  graph.builder.maximise(free[1]);
  graph.start();
  graph.raise(bound[0]);
  auto move = make(2, 100);
  test::Neighbours expected;
  for (const auto other : free) expected.insert({free[1], other});
  EXPECT_EQ(test::reachedBy(move, graph), expected);
}

TEST_F(MoveKFlipNeighboursTest, TwoFlipsWhoseTargetIsBoundReachEveryPairOfFreeDecisions) {
  buildWithMoreFree();
  graph.start();
  auto move = make(2, 100);
  EXPECT_EQ(test::reachedBy(move, graph), test::pairsOf(free));
}

TEST_F(MoveKFlipTest, TheTargetingRateIsAtMostAHundred) {
  build();
  graph.start();
  EXPECT_NO_THROW(make(1, 100));
  test::expectFailure(kInternal, "MoveKFlip::MoveKFlip", "Targeting rate must be smaller than 100.",
                      [&] { make(1, 101); });
}

}  // namespace
}  // namespace ombrix
