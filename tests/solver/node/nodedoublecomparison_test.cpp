#include "solver/node/nodedoublecomparison.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/nodefixtures.h"

namespace ombrix {
namespace {

using test::acceptMove;
using test::afterDraws;
using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;
using test::OneNodeTest;
using test::seedForTopBits;

constexpr NodeType kTypes[] = {NodeType::DoubleEq, NodeType::DoubleNeq, NodeType::DoubleLeq,
                               NodeType::DoubleLt, NodeType::DoubleGeq, NodeType::DoubleGt};

/// All comparisons of two floats as constraints.
class NodeDoubleComparisonTest : public test::ConstraintsTest {
protected:
  NodeDoubleComparisonTest() : a(graph.floating(-100, 100)), b(graph.floating(-100, 100)) {
    build(kTypes, a, b);
  }

  void open(double first, double second) {
    dag->propagation.setValue(*dag, a, first);
    dag->propagation.setValue(*dag, b, second);
    ASSERT_TRUE(dag->propagation.evaluateConstraints(*dag));
  }
  void accept(double first, double second) {
    open(first, second);
    dag->propagation.accept(*dag);
  }

  std::uint32_t a;
  std::uint32_t b;
};

TEST_F(NodeDoubleComparisonTest, NoneSeparatesNumbersWithinTheTolerance) {
  accept(1.0, 1.0000001);
  EXPECT_EQ(values(), (Numbers{1, 0, 1, 0, 1, 0}));
  accept(1.0000001, 1.0);
  EXPECT_EQ(values(), (Numbers{1, 0, 1, 0, 1, 0}));
  accept(1.0, 1.5);
  EXPECT_EQ(values(), (Numbers{0, 1, 1, 1, 0, 0}));
  accept(1.5, 1.0);
  EXPECT_EQ(values(), (Numbers{0, 1, 0, 0, 1, 1}));
  test::expectConsistent(*dag);
}

TEST_F(NodeDoubleComparisonTest, AViolationIsTheDistanceCutToAnInteger) {
  accept(1.0, 1.0);
  EXPECT_EQ(violations(), (Numbers{0, 1, 0, 1, 0, 1}));
  accept(7.9, 1.5);
  EXPECT_EQ(violations(), (Numbers{6, 0, 6, 7, 0, 0}));
  accept(1.5, 7.9);
  EXPECT_EQ(violations(), (Numbers{6, 0, 0, 0, 6, 7}));
}

TEST_F(NodeDoubleComparisonTest, ASmallViolationCountsButDoesNotShowInTheSum) {
  GraphBuilder other;
  const std::uint32_t x = other.floating(0, 1);
  other.constraint(other.node(NodeType::DoubleLeq, {x, other.doubleConstant(0.2)}));
  const auto small = other.makeDag();
  test::setAndAccept(*small, x, 0.6);
  EXPECT_EQ(small->propagation.infeasibility.nbViolated, 1);
  EXPECT_EQ(small->propagation.infeasibility.violationSum, 0);
}

TEST_F(NodeDoubleComparisonTest, AMoveNeverChangesTheSumThroughAnEquality) {
  accept(7.9, 1.5);
  open(1.5, 1.5);
  EXPECT_EQ(deltas(), (Numbers{0, 1, -6, -6, 0, 1}));
  dag->propagation.reject(*dag);
  open(1.5, 11.5);
  EXPECT_EQ(deltas(), (Numbers{0, 0, -6, -7, 10, 11}));
}

TEST_F(NodeDoubleComparisonTest, AnInequalityCountsItsOwnChange) {
  accept(1.5, 1.5);
  open(1.5, 3.5);
  EXPECT_EQ(deltas()[1], -1);
  dag->propagation.accept(*dag);
  open(2.5, 3.5);
  EXPECT_EQ(deltas()[1], 0);
}

TEST(NodeDoubleComparisonRuleTest, AnInfiniteDistanceIsTheLargestInteger) {
  GraphBuilder graph;
  const std::uint32_t node = graph.constraint(graph.node(
      NodeType::DoubleLeq,
      {graph.doubleConstant(std::numeric_limits<double>::infinity()), graph.doubleConstant(0)}));
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->nodes[node]->violation(*dag, node), std::numeric_limits<std::int64_t>::max());
}

TEST(NodeDoubleComparisonRuleTest, OperandsOfOtherDomainsAreReadAsDoubles) {
  GraphBuilder graph;
  const std::uint32_t x = graph.boolean();
  const std::uint32_t node =
      graph.minimise(graph.node(NodeType::DoubleLt, {graph.doubleConstant(0.5), x}));
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[node].intValue, 0);
  acceptMove(*dag, {{x, 1}});
  EXPECT_EQ(dag->values[node].intValue, 1);
  test::expectConsistent(*dag);
}

// ---- picks

class DoublePickTest : public OneNodeTest {
protected:
  void make(NodeType type) {
    graph = GraphBuilder();
    a = graph.boolean();
    b = graph.boolean();
    build(graph.node(type, {a, b}));
  }

  std::uint32_t a = 0;
  std::uint32_t b = 0;
};

TEST_F(DoublePickTest, EqualitiesPickAsTheIntegerOnes) {
  make(NodeType::DoubleEq);
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  acceptMove(*dag, {{a, 1}});
  expectPick(test::pickUp(*dag, node, low), b, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), a, afterDraws(high, 1));
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  make(NodeType::DoubleNeq);
  acceptMove(*dag, {{b, 1}});
  expectPick(test::pickDown(*dag, node, low), a, afterDraws(low, 1));
  expectPick(test::pickDown(*dag, node, high), b, afterDraws(high, 1));
  expectNoPick(test::pickUp(*dag, node, 9), 9);
}

TEST_F(DoublePickTest, OrdersPickAsTheIntegerOnes) {
  for (const NodeType type : {NodeType::DoubleLeq, NodeType::DoubleLt}) {
    make(type);
    acceptMove(*dag, {{b, 1}});
    expectPick(test::pickDown(*dag, node, low), a, afterDraws(low, 1));
    expectPick(test::pickDown(*dag, node, high), b, afterDraws(high, 1));
    dag->tValues[node].intValue = 0;
    expectNoPick(test::pickDown(*dag, node, 9), 9);
  }
  for (const NodeType type : {NodeType::DoubleGeq, NodeType::DoubleGt}) {
    make(type);
    acceptMove(*dag, {{a, 1}});
    expectPick(test::pickDown(*dag, node, low), b, afterDraws(low, 1));
    expectPick(test::pickDown(*dag, node, high), a, afterDraws(high, 1));
    expectPick(test::pickAny(*dag, node, high), a, afterDraws(high, 1));
  }
}

TEST_F(DoublePickTest, AnOperandWithinToleranceOfItsBoundIsAtIt) {
  const std::uint32_t x = graph.floating(0, 1);
  b = graph.boolean();
  node = graph.minimise(graph.node(NodeType::DoubleLeq, {x, b}));
  dag = graph.makeDag();
  test::setAndAccept(*dag, x, 1 - 1e-7);
  acceptMove(*dag, {{b, 1}});
  expectPick(test::pickDown(*dag, node, 9), b, 9);  // the float cannot rise: no draw
}

TEST_F(DoublePickTest, AFloatIsNeverPicked) {
  const std::uint32_t x = graph.floating(0, 1);
  node = graph.minimise(graph.node(NodeType::DoubleLeq, {x, graph.doubleConstant(0.5)}));
  dag = graph.makeDag();
  expectNoPick(test::pickDown(*dag, node, 9), 9);
}

// ---- targets

class ComparisonTargetTest : public OneNodeTest {
protected:
  /// A comparison of two floats that stand at 2.5 and 4.5.
  void make(NodeType type) {
    graph = GraphBuilder();
    a = graph.floating(0, 10);
    b = graph.floating(0, 10);
    close(type, a, b);
    test::setAndAccept(*dag, a, 2.5);
    test::setAndAccept(*dag, b, 4.5);
  }
  void close(NodeType type, std::uint32_t first, std::uint32_t second) {
    build(graph.node(type, {first, second}));
  }
  bool pickFor(std::int64_t wanted, std::uint32_t seed) {
    rng = seed;
    found = kNone;
    value = OXValue::ofInt(0);
    OXValue target = OXValue::ofInt(wanted);
    return dag->nodes[node]->pickForTarget(*dag, node, rng, target, found, value);
  }
  void expectTarget(std::int64_t wanted, std::initializer_list<int> bits, std::uint32_t decision,
                    double expected) {
    const std::uint32_t seed = seedForTopBits(bits);
    EXPECT_TRUE(pickFor(wanted, seed));
    EXPECT_EQ(found, decision);
    EXPECT_DOUBLE_EQ(value.doubleValue, expected);
    EXPECT_EQ(rng, afterDraws(seed, static_cast<int>(bits.size())));
  }

  std::uint32_t a = 0;
  std::uint32_t b = 0;
  std::uint32_t rng = 0;
  std::uint32_t found = kNone;
  OXValue value = OXValue::ofInt(0);
};

TEST_F(ComparisonTargetTest, AValueThatStandsIsNoTarget) {
  make(NodeType::DoubleLeq);
  EXPECT_FALSE(pickFor(1, 9));
  EXPECT_EQ(rng, 9U);
}

TEST_F(ComparisonTargetTest, AnEqualityTakesTheOtherSideOrBreaksByACoin) {
  make(NodeType::DoubleEq);
  expectTarget(1, {0}, a, 4.5);
  expectTarget(1, {1}, b, 2.5);
  test::setAndAccept(*dag, a, 4.5);
  expectTarget(0, {0, 0}, a, 4.5 - 2e-6);
  expectTarget(0, {0, 1}, a, 4.5 + 2e-6);
  expectTarget(0, {1, 1}, b, 4.5 + 2e-6);
}

TEST_F(ComparisonTargetTest, AnOrderIsBrokenFromTheSideThatWasChosen) {
  make(NodeType::DoubleLeq);
  expectTarget(0, {0}, a, 4.5 + 2e-6);
  expectTarget(0, {1}, b, 2.5 - 2e-6);
  test::setAndAccept(*dag, a, 6.5);
  expectTarget(1, {0}, a, 4.5);
  expectTarget(1, {1}, b, 6.5);
  make(NodeType::DoubleGeq);
  expectTarget(1, {1}, b, 2.5);
  test::setAndAccept(*dag, a, 6.5);
  expectTarget(0, {0}, a, 4.5 - 2e-6);
  expectTarget(0, {1}, b, 6.5 + 2e-6);
}

TEST_F(ComparisonTargetTest, AConstantIsNeverChosen) {
  a = graph.floating(0, 10);
  close(NodeType::DoubleEq, a, graph.constant(3));
  expectTarget(1, {0}, a, 3.0);
  expectTarget(1, {1}, a, 3.0);
  graph = GraphBuilder();
  a = graph.floating(0, 10);
  close(NodeType::DoubleLeq, graph.doubleConstant(3.5), a);
  expectTarget(1, {0}, a, 3.5);
  test::setAndAccept(*dag, a, 5.0);
  expectTarget(0, {0}, a, 3.5 - 2e-6);  // chosen as the second operand after the exchange
}

TEST_F(ComparisonTargetTest, ABooleanTakesItsTargetAsAChange) {
  a = graph.boolean();
  close(NodeType::DoubleEq, a, graph.doubleConstant(1));
  EXPECT_TRUE(pickFor(1, 9));
  EXPECT_EQ(found, a);
  EXPECT_EQ(rng, afterDraws(9, 1));
}

TEST_F(ComparisonTargetTest, AnOperandOfAnotherKindRefuses) {
  a = graph.integer();
  close(NodeType::DoubleEq, a, graph.doubleConstant(1.5));
  EXPECT_FALSE(pickFor(1, 9));
}

TEST_F(ComparisonTargetTest, TheStrictOrdersAndTheInequalityRefuse) {
  for (const NodeType type : {NodeType::DoubleNeq, NodeType::DoubleLt, NodeType::DoubleGt}) {
    make(type);
    for (const std::int64_t wanted : {0, 1}) {
      EXPECT_FALSE(pickFor(wanted, 9));
      EXPECT_EQ(rng, 9U);
    }
  }
}

}  // namespace
}  // namespace ombrix
