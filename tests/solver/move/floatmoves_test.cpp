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

TEST_F(FloatMovesTest, BalanceFailsOnADecisionWithoutLists) {
  graph.builder.floating(0, 1);
  graph.start();
  MoveFloatBalance balance(*graph.dag, graph.rng, 0, *graph.structure);
  EXPECT_FALSE(balance.apply());
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
