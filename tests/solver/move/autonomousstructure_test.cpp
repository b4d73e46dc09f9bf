#include "solver/move/autonomousstructure.h"

#include "tests/solver/move/randomplan.h"

namespace ombrix {
namespace {

using test::below;
using test::Draw;
using test::RandomPlan;

class AutonomousStructureTest : public testing::Test {
protected:
  /// Two rows of which exactly one decision is chosen.
  void startRows() {
    x = graph.builder.booleans(5);
    for (std::size_t row = 0; row < 2; ++row) {
      const auto sum = graph.builder.node(NodeType::BooleanSum, {x[2 * row], x[2 * row + 1]});
      rows[row] = graph.builder.constraint(
          graph.builder.node(NodeType::Eq, {sum, graph.builder.constant(1)}));
    }
    graph.start();
  }

  test::PlanGraph graph;
  std::vector<std::uint32_t> x;
  std::uint32_t rows[2] = {};
};

TEST_F(AutonomousStructureTest, StartsWithTheViolatedConstraintsAndNothingPending) {
  startRows();
  EXPECT_EQ(graph.structure->dynamicNodes.size(), graph.analysis->staticNodes.size());
  EXPECT_EQ(graph.structure->violatedNodes.size(), 2u);
  EXPECT_EQ(graph.nbPending(), 0u);
  EXPECT_EQ(graph.structure->dynamicByDecision[4], nullptr);
  EXPECT_EQ(graph.structure->dynamicByDecision[3], &graph.mirror(x[3]));
}

TEST_F(AutonomousStructureTest, FollowsAcceptedMovesThatNoPlanMade) {
  startRows();
  graph.flipAndAccept(x[0]);
  EXPECT_FALSE(graph.isViolated(rows[0]));
  graph.expectAgrees(graph.dag->values);
  graph.flipAndAccept(x[4]);  // below no constraint
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, ARejectedMoveLeavesTheMirrorAsItIs) {
  startRows();
  test::flip(*graph.dag, x[0]);
  graph.dag->propagation.evaluateConstraints(*graph.dag);
  graph.dag->propagation.reject(*graph.dag);
  EXPECT_TRUE(graph.isViolated(rows[0]));
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, ADecisionWrittenWithItsOwnValueIsNoChange) {
  startRows();
  graph.dag->propagation.setValue(*graph.dag, x[0], std::int64_t{0});
  graph.dag->propagation.accept(*graph.dag);
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, AnAcceptedPlanIsNotToldTwice) {
  startRows();
  graph.mirror(x[1]).change(graph.rng, true);
  graph.mirror(x[2]).change(graph.rng, true);
  EXPECT_EQ(graph.structure->violatedNodes.size(), 0u);
  graph.applyPlan();
  test::flip(*graph.dag, x[0]);  // beside the plan
  graph.dag->propagation.accept(*graph.dag);
  EXPECT_EQ(graph.nbPending(), 0u);
  EXPECT_TRUE(graph.isViolated(rows[0]));
  EXPECT_FALSE(graph.isViolated(rows[1]));
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, ADroppedPlanLeavesNoTrace) {
  startRows();
  graph.mirror(x[1]).change(graph.rng, true);
  graph.mirror(x[2]).change(graph.rng, true);
  graph.structure->dropPending(2);
  EXPECT_TRUE(graph.isPending(x[1]));
  graph.structure->dropAllPending();
  EXPECT_EQ(graph.nbPending(), 0u);
  EXPECT_EQ(graph.structure->violatedNodes.size(), 2u);
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, RebuildForgetsThePlanAndReadsTheCommittedValues) {
  startRows();
  graph.flipAndAccept(x[0]);
  graph.mirror(x[1]).change(graph.rng, true);
  graph.structure->rebuild();
  EXPECT_EQ(graph.nbPending(), 0u);
  graph.expectAgrees(graph.dag->values);
}

TEST_F(AutonomousStructureTest, WithoutNodesAcceptedMovesAreNoMatter) {
  const auto decision = graph.builder.boolean();
  graph.builder.minimise(decision);
  auto dag = graph.builder.makeDag();
  const MoveAnalysis analysis(graph.builder.fields, false);
  AutonomousStructure structure(*dag, analysis, graph.rng);
  test::setAndAccept(*dag, decision, 1);
  EXPECT_EQ(dag->values[decision].intValue, 1);
}

// ---- random graphs

/// Plans some changes in the mirror, without touching the Dag.
void plan(const test::PlanGraph& graph, std::uint32_t& rng, Draw& draw) {
  auto& nodes = graph.structure->dynamicNodes;
  for (std::uint32_t i = 0; i < 6; ++i) {
    DynamicConstraintNode& node = *nodes[below(draw, nodes.size())];
    const bool strict = below(draw, 2) == 0;
    const std::uint32_t way = below(draw, 3);
    const std::uint32_t nbBefore = graph.nbPending();
    const bool moved = way == 0   ? node.change(rng, strict)
                       : way == 1 ? node.increase(rng, strict)
                                  : node.decrease(rng, strict);
    EXPECT_EQ(graph.nbPending(), nbBefore + (moved ? 1 : 0));
  }
}

/// Runs accepted and rejected moves, planned and not, and compares after each.
void run(RandomPlan& random, std::uint32_t seed, int nbMoves) {
  test::PlanGraph& graph = random.graph;
  Draw draw(seed);
  graph.expectAgrees(graph.dag->values);
  for (int i = 0; i < nbMoves && !testing::Test::HasFailure(); ++i) {
    const bool isPlanned = below(draw, 2) == 0;
    if (isPlanned) {
      plan(graph, graph.rng, draw);
      graph.applyPlan();
    } else {
      for (std::uint32_t j = 0; j < 3; ++j) {
        test::flip(*graph.dag, random.decisions[below(draw, random.decisions.size())]);
      }
    }
    graph.dag->propagation.evaluateConstraints(*graph.dag);
    if (isPlanned) graph.expectAgrees(graph.dag->tValues);
    if (below(draw, 2) == 0) {
      graph.dag->propagation.accept(*graph.dag);
    } else {
      graph.dag->propagation.reject(*graph.dag);
      graph.structure->dropAllPending();
    }
    EXPECT_EQ(graph.nbPending(), 0u);
    graph.expectAgrees(graph.dag->values);
  }
}

TEST(AutonomousStructureProperty, TheMirrorOfNarrowGraphsAgreesAfterEveryMove) {
  for (std::uint32_t seed = 1; seed <= 150 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    RandomPlan random(seed, 1 + seed % 8);
    run(random, seed, 40);
  }
}

TEST(AutonomousStructureProperty, TheMirrorOfWideGraphsAgreesAfterEveryMove) {
  for (const std::uint32_t width : {9u, 16u, 31u, 64u, 100u, 200u, 400u, 900u, 1200u}) {
    SCOPED_TRACE(width);
    for (std::uint32_t seed = 1; seed <= 3 && !testing::Test::HasFailure(); ++seed) {
      RandomPlan random(seed, width);
      run(random, seed, 20);
    }
  }
}

}  // namespace
}  // namespace ombrix
