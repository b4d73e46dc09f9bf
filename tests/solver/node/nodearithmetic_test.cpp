#include "solver/node/nodearithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "support/failures.h"
#include "support/nodefixtures.h"

namespace ombrix {
namespace {

using test::acceptMove;
using test::afterDraws;
using test::expectNoPick;
using test::expectPick;
using test::GraphBuilder;
using test::OneNodeTest;
using test::openMove;
using test::seedForTopBits;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A binary node over integer decisions whose divisor starts at 1.
class IntegerOperandsTest : public OneNodeTest {
protected:
  void make(NodeType type) {
    graph = GraphBuilder();
    a = graph.integer();
    const std::uint32_t zeroBased = graph.integer();
    b = graph.node(NodeType::Sum, {zeroBased, graph.constant(1)});
    b0 = zeroBased;
    build(graph.node(type, {a, b}));
  }
  std::int64_t valueFor(std::int64_t first, std::int64_t second) {
    acceptMove(*dag, {{a, first}, {b0, second - 1}});
    EXPECT_EQ(dag->values[node].intValue,
              static_cast<const NodeInner&>(*dag->nodes[node]).computeValue(*dag, node));
    return dag->values[node].intValue;
  }

  std::uint32_t a = 0;
  std::uint32_t b = 0;
  std::uint32_t b0 = 0;
};

TEST_F(IntegerOperandsTest, DivideTruncatesTowardsZero) {
  make(NodeType::Divide);
  EXPECT_EQ(valueFor(-7, 3), -2);
  EXPECT_EQ(valueFor(7, -3), -2);
  EXPECT_EQ(valueFor(7, 3), 2);
  EXPECT_EQ(valueFor(kSmallest, -1), kSmallest);
}

TEST_F(IntegerOperandsTest, ModuloHasTheSignOfTheDividend) {
  make(NodeType::Modulo);
  EXPECT_EQ(valueFor(-7, 3), -1);
  EXPECT_EQ(valueFor(7, -3), 1);
  EXPECT_EQ(valueFor(kSmallest, -1), 0);
}

TEST_F(IntegerOperandsTest, ADivisorOfZeroFailsUnderTheNameOfTheOperation) {
  make(NodeType::Divide);
  test::expectFailure(5, "NodeDivide::eval", "Division by zero.", [&] {
    acceptMove(*dag, {{b0, -1}});
  });
  test::expectFailure(5, "NodeDivide::computeValue", "Division by zero.", [&] {
    GraphBuilder other;
    const std::uint32_t x = other.boolean();
    other.node(NodeType::Divide, {x, x});
    other.makeDag();
  });
  make(NodeType::Modulo);
  test::expectFailure(5, "NodeModulo::eval", "Division by zero.", [&] {
    acceptMove(*dag, {{b0, -1}});
  });
  test::expectFailure(5, "NodeModulo::computeValue", "Division by zero.", [&] {
    GraphBuilder other;
    const std::uint32_t x = other.boolean();
    other.node(NodeType::Modulo, {x, x});
    other.makeDag();
  });
}

TEST_F(IntegerOperandsTest, DistanceWraps) {
  make(NodeType::Distance);
  EXPECT_EQ(valueFor(3, 10), 7);
  EXPECT_EQ(valueFor(10, 3), 7);
  EXPECT_EQ(valueFor(kSmallest, 0), kSmallest);
  EXPECT_EQ(valueFor(kSmallest, kLargest), 1);
}

TEST(NodeAbsTest, TheSmallestIntegerStays) {
  GraphBuilder graph;
  const std::uint32_t a = graph.integer();
  const std::uint32_t node = graph.minimise(graph.node(NodeType::Abs, {a}));
  const auto dag = graph.makeDag();
  acceptMove(*dag, {{a, -4}});
  EXPECT_EQ(dag->values[node].intValue, 4);
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  acceptMove(*dag, {{a, kSmallest}});
  EXPECT_EQ(dag->values[node].intValue, kSmallest);
}

/// A binary node over floats.
class DoubleOperandsTest : public OneNodeTest {
protected:
  void make(NodeType type) {
    graph = GraphBuilder();
    a = graph.floating(-kInfinity, kInfinity);
    b = graph.floating(-kInfinity, kInfinity);
    build(graph.node(type, {a, b}));
  }
  double valueFor(double first, double second) {
    dag->propagation.setValue(*dag, a, first);
    dag->propagation.setValue(*dag, b, second);
    dag->propagation.accept(*dag);
    return dag->values[node].doubleValue;
  }

  std::uint32_t a = 0;
  std::uint32_t b = 0;
};

TEST_F(DoubleOperandsTest, DistanceOfInfinitiesOfOneSignFails) {
  make(NodeType::DoubleDistance);
  EXPECT_EQ(valueFor(1.5, -2.0), 3.5);
  EXPECT_EQ(valueFor(kInfinity, -kInfinity), kInfinity);
  test::expectFailure(5, "MathDouble::dist", "Cannot compute distance between two infinities",
                      [&] { valueFor(kInfinity, kInfinity); });
}

TEST(NodeDoubleDivideTest, ADivisorOfZeroGivesAnInfinityOrNan) {
  GraphBuilder graph;
  const std::uint32_t x = graph.boolean();
  const std::uint32_t y = graph.boolean();
  const std::uint32_t node = graph.minimise(graph.node(NodeType::DoubleDivide, {x, y}));
  const auto dag = graph.makeDag();
  EXPECT_TRUE(std::isnan(dag->values[node].doubleValue));
  acceptMove(*dag, {{x, 1}});
  EXPECT_EQ(dag->values[node].doubleValue, kInfinity);
  acceptMove(*dag, {{y, 1}});
  EXPECT_EQ(dag->values[node].doubleValue, 1.0);
}

TEST(NodeDoubleAbsTest, ClearsTheSign) {
  GraphBuilder graph;
  const std::uint32_t a = graph.floating(-5, 5);
  const std::uint32_t node = graph.minimise(graph.node(NodeType::DoubleAbs, {a}));
  const auto dag = graph.makeDag();
  test::setAndAccept(*dag, a, -2.5);
  EXPECT_EQ(dag->values[node].doubleValue, 2.5);
  test::setAndAccept(*dag, a, -0.0);
  EXPECT_FALSE(std::signbit(dag->values[node].doubleValue));
  test::expectConsistent(*dag);
}

// ---- picks, in both forms: operands are sums, so that they reach below 0

class ArithmeticPickTest : public OneNodeTest, public testing::WithParamInterface<bool> {
protected:
  /// A term from -1 to 1 over an own pair of decisions: the first raises it, the second lowers it.
  std::uint32_t term() {
    const std::uint32_t plus = graph.boolean();
    const std::uint32_t minus = graph.boolean();
    decisions.push_back({plus, minus});
    return graph.node(NodeType::ScalarSum, {plus, minus}, {1, -1});
  }
  void make(NodeType integer, NodeType real, const std::vector<std::uint32_t>& operands) {
    build(graph.node(GetParam() ? real : integer, operands));
  }
  /// Brings a term to -1, 0 or 1.
  void set(std::size_t which, int value) {
    acceptMove(*dag, {{decisions[which].first, value == 1 ? 1 : 0},
                      {decisions[which].second, value == -1 ? 1 : 0}});
  }
  /// The way that a term is moved by the decision that a pick found.
  int way(const test::Pick& pick, std::size_t which) const {
    if (!pick.isFound) return 0;
    const auto [plus, minus] = decisions[which];
    if (pick.decision == plus) return dag->values[plus].intValue == 0 ? 1 : -1;
    if (pick.decision == minus) return dag->values[minus].intValue == 0 ? -1 : 1;
    return 0;
  }

  std::vector<std::pair<std::uint32_t, std::uint32_t>> decisions;
};

INSTANTIATE_TEST_SUITE_P(BothForms, ArithmeticPickTest, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Double" : "Integer"; });

TEST_P(ArithmeticPickTest, AbsMovesItsOperandFromOrTowardsZero) {
  make(NodeType::Abs, NodeType::DoubleAbs, {term()});
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  EXPECT_EQ(way(test::pickUp(*dag, node), 0), -1);
  EXPECT_TRUE(test::pickAny(*dag, node).isFound);
  set(0, 1);
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), -1);
  set(0, -1);
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), 1);
  expectNoPick(test::pickUp(*dag, node, 9), 9);  // the operand is at its minimum
}

TEST_P(ArithmeticPickTest, DistanceClosesOrOpensTheGap) {
  const std::uint32_t first = term();
  make(NodeType::Distance, NodeType::DoubleDistance, {first, term()});
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  // Equal operands: any of them, either way, and then a choice inside the term.
  const std::uint32_t secondDown = seedForTopBits({1, 1});
  EXPECT_EQ(way(test::pickUp(*dag, node, secondDown), 1), -1);
  EXPECT_EQ(way(test::pickAny(*dag, node, secondDown), 1), -1);
  set(0, 1);
  set(1, 0);
  EXPECT_EQ(way(test::pickDown(*dag, node, low), 1), 1);
  EXPECT_EQ(way(test::pickDown(*dag, node, high), 0), -1);
  EXPECT_EQ(way(test::pickUp(*dag, node, low), 1), -1);  // the first is at its maximum
  set(0, 0);
  set(1, 1);
  EXPECT_EQ(way(test::pickDown(*dag, node, low), 0), 1);
  EXPECT_EQ(way(test::pickDown(*dag, node, high), 1), -1);
  EXPECT_EQ(way(test::pickUp(*dag, node, low), 0), -1);
}

TEST_P(ArithmeticPickTest, DivideFollowsTheSignOfTheDivisor) {
  const std::uint32_t first = term();
  const std::uint32_t divisor = graph.boolean();
  const std::uint32_t fixedDivisor = graph.constant(-1);
  // -1 + 2 d: -1 or 1, never 0.
  const std::uint32_t sign = graph.node(NodeType::ScalarSum, {divisor, fixedDivisor}, {2, 1});
  make(NodeType::Divide, NodeType::DoubleDivide, {first, sign});
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), 1);  // 0 by -1
  EXPECT_EQ(way(test::pickUp(*dag, node), 0), -1);
  EXPECT_NE(way(test::pickAny(*dag, node), 0), 0);
  acceptMove(*dag, {{divisor, 1}});
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), -1);  // 0 by 1
  EXPECT_EQ(way(test::pickUp(*dag, node), 0), 1);
  set(0, 1);
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), -1);    // 1 by 1: the divisor is at its maximum
  expectPick(test::pickUp(*dag, node, 9), divisor, 9);  // the dividend cannot rise
  acceptMove(*dag, {{divisor, 0}});
  set(0, -1);
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), 1);     // -1 by -1: the divisor is at its minimum
  expectPick(test::pickUp(*dag, node, 9), divisor, 9);  // the dividend cannot fall
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  expectPick(test::pickAny(*dag, node, secondUp), divisor, afterDraws(secondUp, 2));
}

/// The remainder has no double form.
class ModuloPickTest : public ArithmeticPickTest {};

INSTANTIATE_TEST_SUITE_P(Integer, ModuloPickTest, testing::Values(false));

TEST_P(ModuloPickTest, MovesAZeroDividendByTheSignOfTheDivisor) {
  const std::uint32_t first = term();
  const std::uint32_t divisor = graph.boolean();
  const std::uint32_t sign = graph.node(NodeType::ScalarSum, {divisor, graph.constant(-1)}, {2, 1});
  make(NodeType::Modulo, NodeType::Modulo, {first, sign});
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), 1);
  EXPECT_EQ(way(test::pickUp(*dag, node), 0), -1);
  EXPECT_NE(way(test::pickAny(*dag, node), 0), 0);
  acceptMove(*dag, {{divisor, 1}});
  EXPECT_EQ(way(test::pickDown(*dag, node), 0), -1);
  EXPECT_EQ(way(test::pickUp(*dag, node), 0), 1);
  set(0, 1);
  const std::uint32_t secondDown = seedForTopBits({1, 1});
  expectPick(test::pickDown(*dag, node, secondDown), divisor, afterDraws(secondDown, 2));
  expectPick(test::pickUp(*dag, node, secondDown), divisor, afterDraws(secondDown, 2));
  expectPick(test::pickAny(*dag, node, secondDown), divisor, afterDraws(secondDown, 2));
}

}  // namespace
}  // namespace ombrix
