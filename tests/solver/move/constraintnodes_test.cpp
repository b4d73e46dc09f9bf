#include <gmock/gmock.h>

#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogical.h"
#include "solver/move/constraintnodesum.h"
#include "tests/solver/move/plangraph.h"
#include "tests/support/failures.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

using test::Draws;
using testing::ElementsAre;
using testing::IsEmpty;

class ConstraintNodes : public testing::Test {
protected:
  /// The node is no constraint by itself: one above it that holds whatever it does keeps it.
  std::uint32_t hold(std::uint32_t node) {
    graph.builder.constraint(
        graph.builder.node(NodeType::Leq, {node, graph.builder.constant(1000000)}));
    return node;
  }
  std::uint32_t sum(const std::vector<std::uint32_t>& operands) {
    return hold(graph.builder.node(NodeType::Sum, operands));
  }
  std::uint32_t comparison(NodeType type, std::uint32_t left, std::uint32_t right) {
    return graph.builder.constraint(graph.builder.node(type, {left, right}));
  }
  DecisionList collected(std::uint32_t node, bool up, const std::vector<std::uint32_t>& filter,
                         std::size_t limit = 100) {
    DecisionList out;
    graph.mirror(node).collectIncreasers(up, filter, out, limit);
    return out;
  }
  bool increase(std::uint32_t node, bool strict = true) {
    return graph.mirror(node).increase(graph.rng, strict);
  }
  bool decrease(std::uint32_t node, bool strict = true) {
    return graph.mirror(node).decrease(graph.rng, strict);
  }
  bool change(std::uint32_t node) { return graph.mirror(node).change(graph.rng, true); }
  std::int64_t value(std::uint32_t node) { return graph.mirror(node).getValue(); }
  std::uint32_t nbUp(std::uint32_t node) { return graph.mirror(node).nbIncreasers(); }
  std::uint32_t nbDown(std::uint32_t node) { return graph.mirror(node).nbDecreasers(); }
  void expectRefused(std::uint32_t node, const std::string& function, const std::string& message) {
    test::expectFailure(kInternal, function, message, [&] { graph.mirror(node).check(); });
  }

  test::PlanGraph graph;
};

// ---- decisions

TEST_F(ConstraintNodes, ADecisionIsFlippedOnceInAPlan) {
  const auto x = graph.builder.constraint(graph.builder.boolean());
  graph.start();
  EXPECT_EQ(nbUp(x), 1u);
  EXPECT_EQ(nbDown(x), 0u);
  EXPECT_FALSE(decrease(x));
  EXPECT_TRUE(increase(x));
  EXPECT_TRUE(graph.isPending(x));
  EXPECT_EQ(value(x), 1);
  EXPECT_EQ(graph.mirror(x).getDoubleValue(), 1.0);
  EXPECT_EQ(nbUp(x), 0u);
  EXPECT_EQ(nbDown(x), 1u);
  EXPECT_FALSE(change(x));
  EXPECT_FALSE(decrease(x));
  EXPECT_EQ(value(x), 1);
  EXPECT_EQ(graph.dag->tValues[x].intValue, 0);
  graph.structure->dropPending(0);
  EXPECT_EQ(value(x), 0);
  EXPECT_EQ(graph.nbPending(), 0u);
  EXPECT_EQ(graph.rng, 1u);
}

TEST_F(ConstraintNodes, ADecisionPicksNoOperand) {
  const auto x = graph.builder.constraint(graph.builder.boolean());
  graph.start();
  std::uint32_t operand = 0;
  bool operandUp = false;
  EXPECT_FALSE(graph.mirror(x).pickOperand(graph.rng, true, operand, operandUp));
}

TEST_F(ConstraintNodes, ADecisionIsCollectedInItsDirectionIfTheFilterHasIt) {
  const auto x = graph.builder.booleans(2);
  sum(x);
  graph.start();
  EXPECT_THAT(collected(x[1], true, {0, 1}), ElementsAre(1u));
  EXPECT_THAT(collected(x[1], true, {0}), IsEmpty());
  EXPECT_THAT(collected(x[1], false, {0, 1}), IsEmpty());
  EXPECT_THAT(collected(x[1], true, {0, 1}, 0), IsEmpty());
  DecisionList out;
  const std::vector<std::uint32_t> filter = {0, 1};
  graph.mirror(x[1]).collectDecreasers(filter, out, 5);
  EXPECT_THAT(out, ElementsAre(1u));
}

// ---- sums

TEST_F(ConstraintNodes, ASumFollowsItsOperands) {
  const auto x = graph.builder.booleans(3);
  const auto total = sum({x[0], x[1], x[2], graph.builder.constant(4)});
  graph.start();
  EXPECT_EQ(value(total), 4);
  EXPECT_EQ(nbUp(total), 3u);
  EXPECT_EQ(nbDown(total), 0u);
  EXPECT_TRUE(increase(total));
  EXPECT_EQ(value(total), 5);
  EXPECT_EQ(nbUp(total), 2u);
  EXPECT_EQ(nbDown(total), 1u);
  EXPECT_EQ(graph.nbPending(), 1u);
}

TEST_F(ConstraintNodes, ANegativeCoefficientTurnsTheDirectionAndAZeroHasNone) {
  const auto x = graph.builder.booleans(3);
  const auto total = hold(graph.builder.node(NodeType::ScalarSum, x, {5, -3, 0}));
  graph.start();
  EXPECT_EQ(nbUp(total), 1u);
  EXPECT_EQ(nbDown(total), 1u);
  std::uint32_t operand = 0;
  bool operandUp = false;
  ASSERT_TRUE(graph.mirror(total).pickOperand(graph.rng, false, operand, operandUp));
  EXPECT_EQ(operand, 1u);
  EXPECT_TRUE(operandUp);
  EXPECT_TRUE(decrease(total));
  EXPECT_EQ(value(total), -3);
  EXPECT_TRUE(graph.isPending(x[1]));
  EXPECT_EQ(nbUp(total), 2u);
  ASSERT_FALSE(graph.mirror(total).pickOperand(graph.rng, false, operand, operandUp));
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_THAT(collected(total, true, {0, 1, 2}), ElementsAre(0u, 1u));
}

TEST_F(ConstraintNodes, ASumOfConstantsHasNoWay) {
  const auto total = sum({graph.builder.constant(2), graph.builder.constant(3)});
  graph.start();
  EXPECT_EQ(value(total), 5);
  EXPECT_EQ(nbUp(total), 0u);
  EXPECT_EQ(nbDown(total), 0u);
  EXPECT_FALSE(increase(total, true));
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_FALSE(increase(total, false));
}

TEST_F(ConstraintNodes, ASumGivesUpAfterThreeFailedTries) {
  const auto x = graph.builder.booleans(30);
  const auto total = sum(x);
  graph.start();
  graph.flipAndAccept(x[29]);
  for (std::uint32_t i = 0; i < 29; ++i) EXPECT_TRUE(change(x[i]));
  // Only the last one is free to fall; the others were raised by this plan.
  for (std::uint32_t seed = 1; seed < 40; ++seed) {
    graph.rng = seed;
    Draws draws(seed);
    bool isFree = false;
    int tries = 0;
    for (; tries < 3 && !isFree; ++tries) isFree = draws.index(30) == 29;
    EXPECT_EQ(decrease(total), isFree);
    EXPECT_EQ(graph.rng, draws.state);
    if (isFree) graph.structure->dropPending(29);
  }
}

TEST_F(ConstraintNodes, WithoutStrictASumTriesOneOperandEvenWhenNoneHelps) {
  const auto x = graph.builder.booleans(2);
  const auto total = sum(x);
  graph.start();
  EXPECT_FALSE(decrease(total, true));
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_FALSE(decrease(total, false));
  EXPECT_NE(graph.rng, 1u);
}

TEST_F(ConstraintNodes, ADecisionThatStandsTwiceInASumCountsTwice) {
  const auto x = graph.builder.booleans(2);
  const auto total = sum({x[0], x[1], x[0]});
  graph.start();
  EXPECT_TRUE(change(x[0]));
  EXPECT_EQ(value(total), 2);
  EXPECT_EQ(nbUp(total), 1u);
  EXPECT_EQ(nbDown(total), 2u);
}

TEST_F(ConstraintNodes, ADoubleSumCountsInDoubles) {
  const auto x = graph.builder.booleans(2);
  const auto weighted = graph.builder.doubleNode(NodeType::DoubleScalarSum, x, {0.5, -1.25});
  const auto total =
      graph.builder.node(NodeType::DoubleSum, {weighted, x[0], graph.builder.doubleConstant(2.5)});
  comparison(NodeType::DoubleLeq, total, graph.builder.doubleConstant(100.0));
  graph.start();
  EXPECT_EQ(graph.mirror(total).getDoubleValue(), 2.5);
  EXPECT_TRUE(change(x[1]));
  EXPECT_EQ(graph.mirror(total).getDoubleValue(), 1.25);
  EXPECT_EQ(value(total), 1);
  EXPECT_TRUE(change(x[0]));
  EXPECT_EQ(graph.mirror(total).getDoubleValue(), 2.75);
}

TEST_F(ConstraintNodes, ASumWrapsAsItsNodeDoes) {
  const auto x = graph.builder.booleans(2);
  const auto total = hold(graph.builder.node(NodeType::ScalarSum, x, {kIntMax, 1}));
  graph.start();
  EXPECT_TRUE(change(x[0]));
  EXPECT_TRUE(change(x[1]));
  EXPECT_EQ(value(total), kIntMin);
}

// ---- and, or

TEST_F(ConstraintNodes, AnAndRisesThroughItsFalseOperands) {
  const auto x = graph.builder.booleans(2);
  const auto both = graph.builder.constraint(graph.builder.node(NodeType::And, x));
  graph.start();
  EXPECT_EQ(nbUp(both), 2u);
  EXPECT_EQ(nbDown(both), 0u);
  EXPECT_TRUE(graph.isViolated(both));
  EXPECT_TRUE(increase(both));
  EXPECT_EQ(value(both), 0);
  EXPECT_TRUE(increase(both));
  EXPECT_EQ(value(both), 1);
  EXPECT_FALSE(graph.isViolated(both));
  EXPECT_EQ(nbUp(both), 0u);
  EXPECT_EQ(nbDown(both), 2u);
  const std::uint32_t before = graph.rng;
  EXPECT_FALSE(increase(both));
  EXPECT_EQ(graph.rng, before);
  EXPECT_FALSE(increase(both, false));
  EXPECT_NE(graph.rng, before);
}

TEST_F(ConstraintNodes, AnAndFallsThroughARandomOperand) {
  const auto x = graph.builder.booleans(2);
  const auto both = graph.builder.constraint(graph.builder.node(NodeType::And, x));
  graph.start();
  EXPECT_FALSE(decrease(both));
  for (const auto decision : x) graph.flipAndAccept(decision);
  Draws draws(graph.rng);
  const auto expected = x[draws.index(2)];
  std::uint32_t operand = 0;
  bool operandUp = true;
  ASSERT_TRUE(graph.mirror(both).pickOperand(graph.rng, false, operand, operandUp));
  EXPECT_EQ(operand, graph.analysis->staticByNode[expected]);
  EXPECT_FALSE(operandUp);
  EXPECT_FALSE(graph.mirror(both).pickOperand(graph.rng, true, operand, operandUp));
  EXPECT_TRUE(change(both));
  EXPECT_EQ(value(both), 0);
}

TEST_F(ConstraintNodes, AnOrMirrorsAnAnd) {
  const auto x = graph.builder.booleans(2);
  const auto either = graph.builder.constraint(graph.builder.node(NodeType::Or, x));
  graph.start();
  EXPECT_EQ(nbUp(either), 2u);
  EXPECT_EQ(nbDown(either), 0u);
  EXPECT_FALSE(decrease(either));
  graph.flipAndAccept(x[0]);
  EXPECT_EQ(nbUp(either), 0u);
  EXPECT_EQ(nbDown(either), 1u);
  EXPECT_FALSE(increase(either));
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_TRUE(decrease(either));
  EXPECT_TRUE(graph.isPending(x[0]));
  EXPECT_TRUE(graph.isViolated(either));
  EXPECT_THAT(collected(either, true, {0, 1}), ElementsAre(0u, 1u));
  EXPECT_THAT(collected(either, false, {0, 1}), IsEmpty());
}

// ---- comparisons

TEST_F(ConstraintNodes, ABoundReachedExactlyHoldsAndHasNoWayUp) {
  const auto x = graph.builder.booleans(2);
  const auto total = graph.builder.node(NodeType::Sum, x);
  const auto below = comparison(NodeType::Leq, total, graph.builder.constant(1));
  graph.start();
  EXPECT_EQ(value(below), 1);
  EXPECT_EQ(nbDown(below), 2u);
  graph.flipAndAccept(x[0]);
  EXPECT_EQ(value(below), 1);
  EXPECT_EQ(nbUp(below), 0u);
  graph.flipAndAccept(x[1]);
  EXPECT_EQ(value(below), 0);
  EXPECT_TRUE(graph.isViolated(below));
  EXPECT_EQ(nbUp(below), 2u);
  EXPECT_EQ(nbDown(below), 0u);
}

TEST_F(ConstraintNodes, ASatisfiedBoundIsIncreasedOnlyWithoutStrict) {
  const auto x = graph.builder.booleans(2);
  const auto below = comparison(NodeType::Leq, x[0], x[1]);
  graph.start(2);
  EXPECT_FALSE(increase(below, true));
  EXPECT_EQ(graph.rng, 2u);
  EXPECT_EQ(graph.nbPending(), 0u);
  Draws draws(2);
  const bool triesRight = draws.step() > 2147483647U;
  EXPECT_EQ(increase(below, false), triesRight);
  EXPECT_EQ(graph.isPending(x[1]), triesRight);
  EXPECT_EQ(graph.rng, draws.state);
}

TEST_F(ConstraintNodes, ABoundIsMovedFromTheSideOfTheCoin) {
  for (std::uint32_t i = 1; i < 30; ++i) {
    const std::uint32_t seed = i * 2654435761U;
    for (const NodeType type : {NodeType::Leq, NodeType::Geq}) {
      test::PlanGraph small;
      const auto x = small.builder.booleans(2);
      const auto node = small.builder.constraint(small.builder.node(type, x));
      small.start(seed);
      const auto blocking = type == NodeType::Leq ? x[0] : x[1];
      small.flipAndAccept(blocking);
      Draws draws(seed);
      const bool right = draws.step() > 2147483647U;
      std::uint32_t operand = 0;
      bool operandUp = false;
      ASSERT_TRUE(small.mirror(node).pickOperand(small.rng, true, operand, operandUp));
      EXPECT_EQ(operand, right ? 1u : 0u);
      EXPECT_EQ(operandUp, right == (type == NodeType::Leq));
      EXPECT_FALSE(small.mirror(node).pickOperand(small.rng, false, operand, operandUp));
      small.rng = seed;
      ASSERT_TRUE(small.mirror(node).increase(small.rng, true));
      EXPECT_TRUE(small.isPending(x[right ? 1 : 0]));
      EXPECT_EQ(small.mirror(node).getValue(), 1);
      EXPECT_EQ(small.rng, draws.state);
    }
  }
}

TEST_F(ConstraintNodes, AWayThatTheCoinDoesNotShowIsNotTried) {
  const auto x = graph.builder.boolean();
  const auto atLeast = comparison(NodeType::Leq, graph.builder.constant(1), x);
  graph.start();
  int nbMoved = 0;
  for (std::uint32_t i = 1; i < 50; ++i) {
    const std::uint32_t seed = i * 2654435761U;
    graph.rng = seed;
    Draws draws(seed);
    const bool right = draws.step() > 2147483647U;
    EXPECT_EQ(increase(atLeast), right);
    nbMoved += right;
    graph.structure->dropAllPending();
  }
  EXPECT_GT(nbMoved, 5);
  EXPECT_LT(nbMoved, 45);
}

TEST_F(ConstraintNodes, AnEqualityIsReachedFromEitherSide) {
  const auto x = graph.builder.booleans(3);
  const auto total = graph.builder.node(NodeType::Sum, x);
  const auto equal = comparison(NodeType::Eq, total, graph.builder.constant(1));
  graph.start();
  EXPECT_EQ(nbUp(equal), 3u);
  EXPECT_TRUE(increase(equal));
  EXPECT_EQ(value(equal), 1);
  EXPECT_EQ(nbUp(equal), 0u);
  EXPECT_EQ(nbDown(equal), 3u);
  EXPECT_FALSE(increase(equal, false));
  graph.structure->dropAllPending();
  graph.flipAndAccept(x[0]);
  graph.flipAndAccept(x[1]);
  EXPECT_EQ(nbUp(equal), 2u);
  EXPECT_TRUE(increase(equal));
  EXPECT_EQ(value(total), 1);
  EXPECT_EQ(value(equal), 1);
  graph.applyPlan();
  graph.dag->propagation.accept(*graph.dag);
  EXPECT_TRUE(decrease(equal));
  EXPECT_EQ(value(equal), 0);
  EXPECT_FALSE(decrease(equal));
}

TEST_F(ConstraintNodes, ComparisonsOfDoublesForgiveTheTolerance) {
  const auto x = graph.builder.boolean();
  const auto nearly = graph.builder.doubleNode(NodeType::DoubleScalarSum, {x}, {5e-7});
  const auto zero = graph.builder.doubleConstant(0.0);
  const auto below = comparison(NodeType::DoubleLeq, nearly, zero);
  const auto equal = comparison(NodeType::DoubleEq, nearly, zero);
  const auto above = comparison(NodeType::DoubleGeq, zero, nearly);
  graph.start();
  EXPECT_TRUE(change(x));
  EXPECT_EQ(value(below), 1);
  EXPECT_EQ(value(equal), 1);
  EXPECT_EQ(value(above), 1);
  EXPECT_EQ(nbUp(below), 0u);
}

TEST_F(ConstraintNodes, ADoubleComparisonTakesIntegerOperands) {
  const auto x = graph.builder.booleans(2);
  const auto total = graph.builder.node(NodeType::Sum, x);
  const auto below = comparison(NodeType::DoubleLeq, total, graph.builder.doubleConstant(1.5));
  graph.start();
  EXPECT_TRUE(change(x[0]));
  EXPECT_EQ(value(below), 1);
  EXPECT_TRUE(change(x[1]));
  EXPECT_EQ(value(below), 0);
}

TEST_F(ConstraintNodes, AComparisonCollectsBelowBothOperands) {
  const auto x = graph.builder.booleans(4);
  const auto left = graph.builder.node(NodeType::Sum, {x[0], x[1]});
  const auto right = graph.builder.node(NodeType::Sum, {x[2], x[3]});
  const auto below = comparison(NodeType::Leq, left, right);
  graph.start();
  EXPECT_THAT(collected(below, false, {0, 1, 2, 3}), ElementsAre(0u, 1u));
  EXPECT_THAT(collected(below, true, {0, 1, 2, 3}), IsEmpty());
  graph.flipAndAccept(x[1]);
  EXPECT_THAT(collected(below, true, {0, 1, 2, 3}), ElementsAre(1u, 2u, 3u));
  EXPECT_THAT(collected(below, true, {0, 1, 2, 3}, 2), ElementsAre(1u, 2u));
}

TEST_F(ConstraintNodes, ChangeTriesTheOtherOperandOfAComparison) {
  const auto x = graph.builder.boolean();
  const auto equal = comparison(NodeType::Eq, x, graph.builder.constant(1));
  graph.start();
  for (std::uint32_t i = 1; i < 10; ++i) {
    graph.rng = i * 2654435761U;
    EXPECT_TRUE(change(equal));
    graph.structure->dropAllPending();
  }
}

// ---- check

TEST_F(ConstraintNodes, CheckNoticesAWrongTotal) {
  const auto x = graph.builder.booleans(2);
  const std::vector<std::pair<std::uint32_t, std::string>> cases = {
      {sum(x), "DynamicConstraintNodeSum"},
      {hold(graph.builder.node(NodeType::ScalarSum, x, {2, 3})), "DynamicConstraintNodeScalarSum"},
      {hold(graph.builder.node(NodeType::DoubleSum, x)), "DynamicConstraintNodeDoubleSum"},
      {hold(graph.builder.doubleNode(NodeType::DoubleScalarSum, x, {2, 3})),
       "DynamicConstraintNodeDoubleScalarSum"}};
  graph.start();
  for (const auto& [node, name] : cases) {
    DynamicConstraintNode& mirrored = graph.mirror(node);
    EXPECT_NO_THROW(mirrored.check());
    mirrored.operandChanged(0, std::int64_t{0}, std::int64_t{1}, true, false);
    mirrored.operandChanged(0, 0.0, 1.0, true, false);
    expectRefused(node, name + "::check", name + "::check() : 1");
    mirrored.operandChanged(0, std::int64_t{1}, std::int64_t{0}, false, false);
    mirrored.operandChanged(0, 1.0, 0.0, false, false);
    expectRefused(node, name + "::check", name + "::check() : 2");
    mirrored.operandChanged(0, std::int64_t{0}, std::int64_t{0}, true, true);
    mirrored.operandChanged(0, 0.0, 0.0, true, true);
    expectRefused(node, name + "::check", name + "::check() : 2");
  }
}

TEST_F(ConstraintNodes, CheckNoticesAWrongCountAndAWrongSet) {
  const auto x = graph.builder.booleans(2);
  const auto both = graph.builder.constraint(graph.builder.node(NodeType::And, x));
  const auto either = graph.builder.constraint(graph.builder.node(NodeType::Or, x));
  graph.start();
  for (const auto node : {both, either}) {
    DynamicConstraintNode& mirrored = graph.mirror(node);
    EXPECT_NO_THROW(mirrored.check());
    mirrored.operandChanged(0, std::int64_t{0}, std::int64_t{1}, true, false);
    expectRefused(node, "DynamicConstraintNode::check", "check() : 1");
    mirrored.operandChanged(0, std::int64_t{1}, std::int64_t{0}, node == either, node == either);
    expectRefused(node, "DynamicConstraintNode::check", "check() : 2");
  }
}

TEST_F(ConstraintNodes, CheckNoticesAWrongSlack) {
  const auto x = graph.builder.booleans(2);
  const std::vector<std::pair<NodeType, std::string>> cases = {{NodeType::Eq, "Eq"},
                                                               {NodeType::Leq, "Leq"},
                                                               {NodeType::Geq, "Geq"},
                                                               {NodeType::DoubleEq, "DoubleEq"},
                                                               {NodeType::DoubleLeq, "DoubleLeq"},
                                                               {NodeType::DoubleGeq, "DoubleGeq"}};
  std::vector<std::uint32_t> nodes;
  for (const auto& row : cases) nodes.push_back(comparison(row.first, x[0], x[1]));
  graph.start();
  for (std::size_t i = 0; i < cases.size(); ++i) {
    DynamicConstraintNode& mirrored = graph.mirror(nodes[i]);
    EXPECT_NO_THROW(mirrored.check());
    mirrored.operandChanged(0, std::int64_t{0}, std::int64_t{1}, true, false);
    const std::string function = "DynamicConstraintNode" + cases[i].second + "::check";
    expectRefused(nodes[i], function,
                  function + " : " + std::to_string(mirrored.getStatic()->index));
  }
}

}  // namespace
}  // namespace ombrix
