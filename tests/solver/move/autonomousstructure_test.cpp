#include "solver/move/autonomousstructure.h"

#include <random>

#include "tests/solver/move/plangraph.h"

namespace ombrix {
namespace {

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

using Draw = std::mt19937;

std::uint32_t below(Draw& draw, std::size_t n) {
  return static_cast<std::uint32_t>(draw() % n);
}

/// Random autonomous graphs of up to four ranks; the widest node has nbWide operands.
class RandomPlan {
public:
  RandomPlan(std::uint32_t seed, std::uint32_t nbWide) : draw(seed), width(nbWide) {
    decisions = graph.builder.booleans(nbWide < 12 ? 6 + below(draw, 6) : nbWide);
    constants = {graph.builder.constant(0), graph.builder.constant(1), graph.builder.constant(3),
                 graph.builder.doubleConstant(0.5), graph.builder.doubleConstant(-1.25)};
    logic = decisions;
    addRank(true);
    addComparisons();
    addRank(false);
    addComparisons();
    graph.start(seed);
  }

  test::PlanGraph graph;
  std::vector<std::uint32_t> decisions;

private:
  std::uint32_t pick(const std::vector<std::uint32_t>& from) {
    return from[below(draw, from.size())];
  }
  std::vector<std::uint32_t> operands(const std::vector<std::uint32_t>& from, std::uint32_t count) {
    std::vector<std::uint32_t> some;
    for (std::uint32_t i = 0; i < count; ++i) some.push_back(pick(from));
    return some;
  }
  std::uint32_t count(bool isWide) { return isWide ? width : 1 + below(draw, 5); }

  /// One node of each variadic kind; the integer ones have integer constants only.
  void addRank(bool isWide) {
    std::vector<std::uint32_t> integers = logic;
    integers.insert(integers.end(), constants.begin(), constants.begin() + 3);
    std::vector<std::uint32_t> numbers = logic;
    numbers.insert(numbers.end(), constants.begin(), constants.end());
    std::vector<std::int64_t> scalars;
    std::vector<double> doubleScalars;
    const auto ints = operands(integers, count(isWide));
    const auto doubles = operands(numbers, count(isWide));
    for (std::size_t i = 0; i < ints.size(); ++i) {
      scalars.push_back(static_cast<std::int64_t>(below(draw, 7)) - 3);
    }
    for (std::size_t i = 0; i < doubles.size(); ++i) {
      doubleScalars.push_back((static_cast<double>(below(draw, 9)) - 4.0) / 4.0);
    }
    auto& builder = graph.builder;
    sums = {builder.node(NodeType::BooleanSum, operands(decisions, 3)),
            builder.node(NodeType::Sum, operands(integers, count(isWide))),
            builder.node(NodeType::ScalarSum, ints, scalars)};
    doubleSums = {builder.node(NodeType::DoubleSum, operands(numbers, count(isWide))),
                  builder.doubleNode(NodeType::DoubleScalarSum, doubles, doubleScalars)};
    const auto both = builder.node(NodeType::And, operands(logic, 1 + below(draw, 3)));
    const auto either = builder.node(NodeType::Or, operands(logic, count(isWide)));
    logic.push_back(both);
    logic.push_back(either);
    builder.constraint(isWide ? either : both);
  }

  void addComparisons() {
    std::vector<std::uint32_t> all = sums;
    all.insert(all.end(), doubleSums.begin(), doubleSums.end());
    for (const NodeType type : {NodeType::Eq, NodeType::Leq, NodeType::Geq}) {
      addComparison(type, pick(sums), below(draw, 2) == 0 ? pick(sums) : constants[below(draw, 3)]);
    }
    for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleLeq, NodeType::DoubleGeq}) {
      addComparison(type, pick(all), below(draw, 2) == 0 ? pick(all) : pick(constants));
    }
  }
  void addComparison(NodeType type, std::uint32_t left, std::uint32_t right) {
    if (below(draw, 2) == 0) std::swap(left, right);
    logic.push_back(graph.builder.constraint(graph.builder.node(type, {left, right})));
  }

  Draw draw;
  std::uint32_t width;
  std::vector<std::uint32_t> constants;
  std::vector<std::uint32_t> logic;
  std::vector<std::uint32_t> sums;
  std::vector<std::uint32_t> doubleSums;
};

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
