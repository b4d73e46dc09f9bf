#include "solver/move/movesimplekflip.h"

#include "tests/solver/move/reachedneighbours.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class MoveSimpleKFlipTest : public testing::Test {
protected:
  MoveSimpleKFlip make(std::uint32_t k, std::uint32_t rate) {
    return MoveSimpleKFlip(*graph.dag, graph.rng, k, 1, rate);
  }

  test::SearchGraph graph;
};

TEST_F(MoveSimpleKFlipTest, NameAndWeight) {
  graph.start();
  const MoveSimpleKFlip move(*graph.dag, graph.rng, 3, 8, 50);
  EXPECT_EQ(move.name, "3-SimpleFlip");
  EXPECT_EQ(move.weight, 8u);
}

TEST_F(MoveSimpleKFlipTest, FlipsExactlyOneBooleanWithOneDraw) {
  const auto x = graph.builder.booleans(5);
  graph.builder.integer();
  graph.builder.floating(0, 1);
  graph.start(77);
  auto move = make(1, 0);
  test::Draws draws(77);
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed(), Decisions{x[draws.index(5)]});
    EXPECT_EQ(graph.rng, draws.state);
    move.finish(MoveStatus::Rejected);
  }
}

TEST_F(MoveSimpleKFlipTest, RefusesWhenThereAreFewerThanKDecisionsWithoutADraw) {
  graph.builder.booleans(2);
  graph.start();
  auto move = make(3, 100);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(MoveSimpleKFlipTest, ATargetTakesThePlaceOfOneDraw) {
  const auto x = graph.builder.booleans(4);
  graph.builder.constraint(x[3]);
  graph.start(5);
  auto single = make(1, 100);
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(single.apply());
    EXPECT_EQ(graph.changed(), Decisions{x[3]});
    graph.reject();
  }
  auto two = make(2, 100);
  bool coincided = false;
  for (int i = 0; i < 50; ++i) {
    test::Draws draws(graph.rng);
    draws.percent(100);
    const auto other = x[draws.index(4)];
    ASSERT_TRUE(two.apply());
    EXPECT_EQ(graph.changed(), (Decisions{x[3], other}));
    if (other == x[3]) coincided = true;
    graph.reject();
  }
  EXPECT_TRUE(coincided) << "a target that is drawn too is changed once";
}

TEST_F(MoveSimpleKFlipTest, TwoFlipsReachEveryPairOfBooleansWhateverTiesThem) {
  auto& builder = graph.builder;
  const auto x = builder.booleans(5);
  builder.integer();
  builder.floating(0, 1);
  const auto list = builder.node(NodeType::BooleanSum, {x[0], x[1], x[2]});
  builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  graph.start();
  graph.raise(x[0]);
  auto move = make(2, 0);
  EXPECT_EQ(test::reachedBy(move, graph), test::pairsOf(x));
}

TEST_F(MoveSimpleKFlipTest, TheRateIsAPercentage) {
  const auto x = graph.builder.booleans(2);
  graph.builder.constraint(x[0]);
  graph.start(9);
  auto move = make(1, 30);
  for (int i = 0; i < 200; ++i) {
    test::Draws draws(graph.rng);
    const bool isTargeted = draws.percent(30);
    const auto expected = isTargeted ? x[0] : x[draws.index(2)];
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(graph.changed(), Decisions{expected});
    EXPECT_EQ(graph.rng, draws.state);
    graph.reject();
  }
}

}  // namespace
}  // namespace ombrix
