#include "solver/move/greedyinitializer.h"

#include <gtest/gtest.h>

#include "tests/support/graphs.h"

namespace ombrix {
namespace {

class GreedyInitializerTest : public testing::Test {
protected:
  bool isBounded(NodeType comparison, bool constantFirst, std::uint32_t node) {
    const auto limit = builder.constant(2);
    if (constantFirst) {
      builder.constraint(builder.node(comparison, {limit, node}));
    } else {
      builder.constraint(builder.node(comparison, {node, limit}));
    }
    return GreedyInitializer(builder.finish()).isBoundedSum(node);
  }
  bool run() {
    dag = builder.makeDag();
    return GreedyInitializer(builder.fields).run(*dag, rng);
  }
  std::int64_t nbRaised(const std::vector<std::uint32_t>& decisions) const {
    std::int64_t result = 0;
    for (const auto decision : decisions) result += dag->values[decision].intValue;
    return result;
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
};

TEST_F(GreedyInitializerTest, ASumIsBoundedByAnUpperLimitOnEitherSide) {
  using T = NodeType;
  for (const bool constantFirst : {false, true}) {
    for (const auto type : {T::Eq, T::DoubleEq, T::Leq, T::Lt, T::DoubleLeq, T::DoubleLt, T::Geq,
                            T::Gt, T::DoubleGeq, T::DoubleGt, T::Neq}) {
      test::GraphBuilder own;
      const auto list = own.node(T::BooleanSum, own.booleans(3));
      const auto limit = own.constant(2);
      own.constraint(constantFirst ? own.node(type, {limit, list}) : own.node(type, {list, limit}));
      const bool isEquality = type == T::Eq || type == T::DoubleEq;
      const bool isBelow =
          type == T::Leq || type == T::Lt || type == T::DoubleLeq || type == T::DoubleLt;
      const bool expected = isEquality || (type != T::Neq && (constantFirst ? !isBelow : isBelow));
      EXPECT_EQ(GreedyInitializer(own.finish()).isBoundedSum(list), expected)
          << static_cast<int>(type) << " " << constantFirst;
    }
  }
}

TEST_F(GreedyInitializerTest, ASumOfDecisionsAndConstantsIsBounded) {
  const auto x = builder.booleans(2);
  EXPECT_TRUE(isBounded(NodeType::Leq, false,
                        builder.node(NodeType::Sum, {x[0], builder.constant(4), x[1]})));
}

TEST_F(GreedyInitializerTest, ASumOfOtherNodesIsNot) {
  const auto x = builder.booleans(2);
  EXPECT_FALSE(isBounded(NodeType::Leq, false,
                         builder.node(NodeType::Sum, {x[0], builder.node(NodeType::Not, {x[1]})})));
}

TEST_F(GreedyInitializerTest, ABooleanSumOfAnyNodesIsBounded) {
  const auto x = builder.booleans(2);
  EXPECT_TRUE(
      isBounded(NodeType::Leq, false,
                builder.node(NodeType::BooleanSum, {x[0], builder.node(NodeType::Not, {x[1]})})));
}

TEST_F(GreedyInitializerTest, AScalarSumNeedsCoefficientsOfZeroOrMoreOnItsDecisions) {
  const auto x = builder.booleans(2);
  const auto negative = builder.node(NodeType::ScalarSum, x, {1, -1});
  EXPECT_FALSE(isBounded(NodeType::Leq, false, negative));
}

TEST_F(GreedyInitializerTest, AScalarSumWithANegativeConstantTermIsBounded) {
  const auto x = builder.booleans(2);
  const auto list =
      builder.node(NodeType::ScalarSum, {x[0], builder.constant(3), x[1]}, {0, -1, 2});
  EXPECT_TRUE(isBounded(NodeType::Leq, false, list));
}

TEST_F(GreedyInitializerTest, AFeasibleStateIsLeftAloneWithAllConstraintsActive) {
  const auto x = builder.booleans(3);
  builder.constraint(
      builder.node(NodeType::Leq, {builder.node(NodeType::BooleanSum, x), builder.constant(2)}));
  EXPECT_TRUE(run());
  EXPECT_EQ(nbRaised(x), 0);
  EXPECT_EQ(rng, 1u);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
}

TEST_F(GreedyInitializerTest, RaisesDecisionsUntilEveryConstraintHolds) {
  const auto x = builder.booleans(20);
  for (std::uint32_t i = 0; i + 5 <= x.size(); i += 5) {
    const std::vector<std::uint32_t> row(x.begin() + i, x.begin() + i + 5);
    const auto list = builder.node(NodeType::BooleanSum, row);
    builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  }
  EXPECT_TRUE(run());
  EXPECT_EQ(nbRaised(x), 4);
  EXPECT_EQ(dag->propagation.infeasibility.nbViolated, 0);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
  test::expectConsistent(*dag);
}

TEST_F(GreedyInitializerTest, AnImpossibleModelEndsWithNoConstraintActive) {
  const auto x = builder.booleans(3);
  const auto list = builder.node(NodeType::BooleanSum, x);
  builder.constraint(builder.node(NodeType::Geq, {list, builder.constant(4)}));
  builder.constraint(builder.node(NodeType::Geq, {list, builder.constant(1)}));
  EXPECT_FALSE(run());
  EXPECT_EQ(nbRaised(x), 3) << "each raise came closer";
  EXPECT_EQ(dag->propagation.activeConstraints.size(), 0u);
  EXPECT_EQ(dag->propagation.infeasibility.nbViolated, 1);
  test::expectConsistent(*dag);
}

TEST_F(GreedyInitializerTest, ARaiseThatDoesNotHelpIsUndone) {
  const auto x = builder.booleans(4);
  builder.constraint(x[0]);
  EXPECT_TRUE(run());
  EXPECT_EQ(nbRaised(x), 1);
}

TEST_F(GreedyInitializerTest, AnEqualityThatOneRaiseDoesNotSatisfyIsNotApproached) {
  // While as many equalities are violated as before, no state counts as better.
  const auto x = builder.booleans(4);
  const auto list = builder.node(NodeType::BooleanSum, x);
  builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(2)}));
  EXPECT_FALSE(run());
  EXPECT_EQ(nbRaised(x), 0);
}

TEST_F(GreedyInitializerTest, TheOperandsOfASumAtItsLimitAreNotDrawnAgain) {
  // With the first raise the sum is full, and nothing is left to draw though a constraint is open.
  const auto x = builder.booleans(10);
  const auto list = builder.node(NodeType::BooleanSum, x);
  const auto limit = builder.constraint(builder.node(NodeType::Lt, {list, builder.constant(2)}));
  builder.constraint(builder.node(NodeType::Geq, {list, builder.constant(5)}));
  EXPECT_FALSE(run());
  EXPECT_EQ(nbRaised(x), 1);
  EXPECT_EQ(dag->values[limit].intValue, 1);
  std::uint32_t state = 1;
  state = state * 1664525U + 1013904223U;
  EXPECT_EQ(rng, state) << "one draw";
}

TEST_F(GreedyInitializerTest, ForcedRunsOnAFeasibleStateWithoutChangingIt) {
  const auto x = builder.booleans(3);
  dag = builder.makeDag();
  GreedyInitializer greedy(builder.fields);
  EXPECT_FALSE(greedy.forced);
  greedy.forced = true;
  EXPECT_TRUE(greedy.run(*dag, rng)) << "all constraints are active already";
  EXPECT_EQ(nbRaised(x), 0);
}

TEST_F(GreedyInitializerTest, TheDrawsArePinned) {
  const auto x = builder.booleans(6);
  const auto list = builder.node(NodeType::BooleanSum, x);
  builder.constraint(builder.node(NodeType::Geq, {list, builder.constant(3)}));
  EXPECT_TRUE(run());
  // The shuffle of 0 to 5 from state 1: the first three draws.
  EXPECT_EQ(nbRaised(x), 3);
  for (const std::uint32_t drawn : {1u, 5u, 2u}) EXPECT_EQ(dag->values[x[drawn]].intValue, 1);
}

}  // namespace
}  // namespace ombrix
