#include <algorithm>

#include "solver/move/movefloatbalance.h"
#include "solver/move/movefloatsimplekflip.h"
#include "solver/move/movefloattight.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class FloatMovesTest : public testing::Test {
protected:
  double tentative(std::uint32_t node) const { return graph.dag->tValues[node].doubleValue; }

  test::SearchGraph graph;
};

// ---- one decision of any kind

TEST_F(FloatMovesTest, SimpleFlipChangesOneDecisionOfAnyKind) {
  auto& builder = graph.builder;
  const auto x = builder.boolean();
  const auto n = builder.integer();
  const auto y = builder.floating(-1, 3);
  graph.start(4);
  MoveFloatSimpleKFlip move(*graph.dag, graph.rng, 0);
  EXPECT_EQ(move.name, "1-FloatSimpleFlip");
  EXPECT_EQ(move.weight, 1u);
  Decisions reached;
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(move.apply());
    ASSERT_EQ(graph.changed().size(), 1u);
    reached.merge(graph.changed());
    EXPECT_GE(tentative(y), -1.0);
    EXPECT_LE(tentative(y), 3.0);
    graph.reject();
  }
  EXPECT_EQ(reached, (Decisions{x, n, y}));
}

TEST_F(FloatMovesTest, SimpleFlipAimsAtAnObjective) {
  const auto y = graph.builder.floating(-1, 3);
  graph.builder.booleans(5);
  graph.builder.maximise(y);
  graph.start();
  MoveFloatSimpleKFlip move(*graph.dag, graph.rng, 100);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(graph.changed(), Decisions{y});
  EXPECT_EQ(tentative(y), 1.0);
}

TEST_F(FloatMovesTest, SimpleFlipNeedsADecision) {
  graph.start();
  MoveFloatSimpleKFlip move(*graph.dag, graph.rng, 100);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
}

// ---- the balance

class FloatBalanceTest : public FloatMovesTest {
protected:
  /// Applies a balance to a list over two doubles with these values.
  bool apply(const std::vector<double>& scalars, double first, double second) {
    auto& builder = graph.builder;
    a = builder.floating(0, 10);
    b = builder.floating(0, 10);
    if (scalars.empty()) {
      builder.doubleNode(NodeType::DoubleSum, {a, b});
    } else {
      builder.doubleNode(NodeType::DoubleScalarSum, {a, b}, scalars);
    }
    graph.start();
    test::setAndAccept(*graph.dag, a, first);
    test::setAndAccept(*graph.dag, b, second);
    move = std::make_unique<MoveFloatBalance>(*graph.dag, graph.rng, 0, *graph.structure);
    return move->apply();
  }

  std::uint32_t a = 0;
  std::uint32_t b = 0;
  std::unique_ptr<MoveFloatBalance> move;
};

TEST_F(FloatBalanceTest, ShiftsAsFarAsBothBoundsAllow) {
  ASSERT_TRUE(apply({}, 4, 3));
  EXPECT_EQ(move->name, "FloatBalance");
  EXPECT_EQ(move->weight, 1u);
  EXPECT_DOUBLE_EQ(tentative(a) + tentative(b), 7.0);
  EXPECT_DOUBLE_EQ(std::min(tentative(a), tentative(b)), 0.0);
}

TEST_F(FloatBalanceTest, CoefficientsCountAndTheWeightedSumHolds) {
  ASSERT_TRUE(apply({2, -3}, 4, 3));
  EXPECT_DOUBLE_EQ(2 * tentative(a) - 3 * tentative(b), -1.0);
  EXPECT_NE(tentative(a), 4.0);
}

TEST_F(FloatBalanceTest, TriesTheOtherDirectionWhenTheFirstIsBlocked) {
  // Whichever of the two is drawn first, one direction is blocked by its bound.
  ASSERT_TRUE(apply({}, 10, 0));
  std::set<std::uint32_t> firsts;
  for (int i = 0; i < 20; ++i) {
    EXPECT_DOUBLE_EQ(tentative(a), 0.0);
    EXPECT_DOUBLE_EQ(tentative(b), 10.0);
    firsts.insert(graph.dag->propagation.changedDecisions.front());
    graph.reject();
    ASSERT_TRUE(move->apply());
  }
  EXPECT_EQ(firsts.size(), 2u);
}

TEST_F(FloatBalanceTest, FailsWhenBothDirectionsAreBlocked) {
  EXPECT_FALSE(apply({}, 10, 10));
  EXPECT_TRUE(graph.changed().empty());
}

TEST_F(FloatBalanceTest, ACoefficientOfZeroLeavesNoRoom) {
  EXPECT_FALSE(apply({0, 1}, 4, 3));
}

TEST_F(FloatBalanceTest, FailsOnADecisionWithoutLists) {
  graph.builder.floating(0, 1);
  graph.start();
  MoveFloatBalance balance(*graph.dag, graph.rng, 0, *graph.structure);
  EXPECT_FALSE(balance.apply());
}

TEST_F(FloatBalanceTest, TheSecondPositionIsAnyOtherOne) {
  auto& builder = graph.builder;
  std::vector<std::uint32_t> y;
  for (int i = 0; i < 4; ++i) y.push_back(builder.floating(0, 10));
  builder.doubleNode(NodeType::DoubleSum, y);
  graph.start(8);
  for (const auto decision : y) test::setAndAccept(*graph.dag, decision, 5.0);
  MoveFloatBalance balance(*graph.dag, graph.rng, 0, *graph.structure);
  std::set<Decisions> reached;
  for (int i = 0; i < 200; ++i) {
    test::Draws draws(graph.rng);
    const auto first = draws.index(4);
    const auto second = (first + 1 + draws.index(3)) % 4;
    ASSERT_TRUE(balance.apply());
    EXPECT_EQ(graph.changed(), (Decisions{y[first], y[second]}));
    EXPECT_EQ(graph.rng, draws.state);
    reached.insert(graph.changed());
    graph.reject();
  }
  EXPECT_EQ(reached.size(), 6u);
}

// ---- the comparison made tight

/// Nodes 0 and 1 are decisions with the given bounds, as the move reads just these two.
class FloatTightTest : public FloatMovesTest {
protected:
  void build() {
    auto& builder = graph.builder;
    x = builder.boolean();
    n = builder.integer();
    low = builder.doubleConstant(0);
    comparison = builder.node(NodeType::DoubleLeq, {x, low});
    graph.start();
  }

  std::uint32_t x = 0;
  std::uint32_t n = 0;
  std::uint32_t low = 0;
  std::uint32_t comparison = 0;
};

TEST_F(FloatTightTest, NeedsAComparison) {
  build();
  MoveFloatTight move(*graph.dag, graph.rng, {});
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_EQ(move.name, "Tight");
  EXPECT_EQ(move.weight, 1u);
}

TEST_F(FloatTightTest, FailsWhenNodesZeroAndOneAreEqual) {
  build();
  const std::vector<std::uint32_t> comparisons{comparison};
  MoveFloatTight move(*graph.dag, graph.rng, comparisons);
  EXPECT_FALSE(move.apply());
}

TEST_F(FloatTightTest, TheSideThatIsNoConstantServesAsNodeNumber) {
  build();
  test::setAndAccept(*graph.dag, n, 1);
  const std::vector<std::uint32_t> comparisons{comparison};
  MoveFloatTight move(*graph.dag, graph.rng, comparisons);
  for (int i = 0; i < 20; ++i) {
    test::Draws draws(graph.rng);
    draws.step();
    ASSERT_TRUE(move.apply()) << "always side 0, which is a boolean that can change";
    EXPECT_EQ(graph.changed(), Decisions{x});
    EXPECT_EQ(graph.rng, draws.state) << "one comparison leaves no choice, the side is one step";
    graph.reject();
  }
}

TEST_F(FloatTightTest, AConstantFirstOperandPointsToNodeOneWhichMayRefuse) {
  auto& builder = graph.builder;
  x = builder.boolean();
  n = builder.integer();
  low = builder.doubleConstant(0);
  const std::vector<std::uint32_t> comparisons{builder.node(NodeType::DoubleGeq, {low, x})};
  graph.start();
  test::setAndAccept(*graph.dag, n, 1);
  MoveFloatTight move(*graph.dag, graph.rng, comparisons);
  EXPECT_FALSE(move.apply()) << "an integer decision answers no pick";
  EXPECT_TRUE(graph.changed().empty());
}

}  // namespace
}  // namespace ombrix
