#include "solver/node/nodeconstants.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/graphs.h"
#include "support/picks.h"

namespace ombrix {
namespace {

using test::expectNoPick;
using test::GraphBuilder;

TEST(NodeConstantTest, HasItsScalarAsValueAndBounds) {
  GraphBuilder graph;
  const std::uint32_t node = graph.constant(-12);
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[node].intValue, -12);
  EXPECT_EQ(dag->tValues[node].intValue, -12);
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  dag->tValues[node].intValue = 3;
  EXPECT_FALSE(dag->nodes[node]->isConsistent(*dag, node));
  dag->values[node].intValue = 3;
  EXPECT_FALSE(dag->nodes[node]->isConsistent(*dag, node));
}

TEST(NodeConstantTest, RefusesEveryPick) {
  GraphBuilder graph;
  const std::vector<std::uint32_t> constants = {graph.constant(1), graph.doubleConstant(1.5),
                                                graph.constArray({1, 2})};
  const auto dag = graph.makeDag();
  for (const std::uint32_t node : constants) {
    expectNoPick(test::pickDown(*dag, node), 1);
    expectNoPick(test::pickUp(*dag, node), 1);
    expectNoPick(test::pickAny(*dag, node), 1);
    std::uint32_t rng = 5;
    std::uint32_t found = kNone;
    OXValue target = OXValue::ofInt(3);
    OXValue value = OXValue::ofInt(0);
    EXPECT_FALSE(dag->nodes[node]->pickForTarget(*dag, node, rng, target, found, value));
  }
}

TEST(NodeConstantTest, ATrueConstraintStaysSatisfiedAndUntouched) {
  GraphBuilder graph;
  const std::uint32_t node = graph.constraint(graph.constant(1));
  const std::uint32_t decision = graph.minimise(graph.boolean());
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->nodes[node]->violation(*dag, node), 0);
  dag->propagation.activateConstraint(*dag, node);
  test::setAndAccept(*dag, decision, 1);
  EXPECT_FALSE(dag->propagation.isTouched(node));
  EXPECT_EQ(dag->values[node].intValue, 1);
  EXPECT_EQ(dag->propagation.infeasibility.nbViolated, 0);
}

TEST(NodeConstantTest, CommitAndRollbackLeaveTheValues) {
  GraphBuilder graph;
  const std::uint32_t node = graph.constant(4);
  const auto dag = graph.makeDag();
  dag->tValues[node].intValue = 9;
  dag->nodes[node]->commit(*dag, node);
  EXPECT_EQ(dag->values[node].intValue, 4);
  dag->nodes[node]->rollback(*dag, node);
  EXPECT_EQ(dag->tValues[node].intValue, 9);
}

TEST(NodeDoubleConstantTest, IsConsistentWithinTheTolerance) {
  GraphBuilder graph;
  const std::uint32_t node = graph.doubleConstant(2.5);
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[node].doubleValue, 2.5);
  dag->tValues[node].doubleValue = 2.5000001;
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  dag->tValues[node].doubleValue = 2.6;
  EXPECT_FALSE(dag->nodes[node]->isConsistent(*dag, node));
}

TEST(NodeConstArrayTest, HasNoValueAndIsAlwaysConsistent) {
  GraphBuilder graph;
  const std::uint32_t node = graph.constArray({4, 5});
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[node].intValue, 0);
  dag->values[node].intValue = 6;
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
}

}  // namespace
}  // namespace ombrix
