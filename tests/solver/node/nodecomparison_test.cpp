#include "solver/node/nodecomparison.h"

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
using test::openMove;
using test::seedForTopBits;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

constexpr NodeType kTypes[] = {NodeType::Eq, NodeType::Neq, NodeType::Leq,
                               NodeType::Lt, NodeType::Geq, NodeType::Gt};

/// All comparisons of two integer decisions as constraints.
class NodeComparisonTest : public test::ConstraintsTest {
protected:
  NodeComparisonTest() {
    const std::uint32_t a = graph.integer();
    const std::uint32_t b = graph.integer();
    build(kTypes, a, b);
  }
};

TEST_F(NodeComparisonTest, EachHoldsForItsSideOnly) {
  acceptMove(*dag, {{0, 3}, {1, 3}});
  EXPECT_EQ(values(), (Numbers{1, 0, 1, 0, 1, 0}));
  acceptMove(*dag, {{0, 2}});
  EXPECT_EQ(values(), (Numbers{0, 1, 1, 1, 0, 0}));
  acceptMove(*dag, {{0, 4}});
  EXPECT_EQ(values(), (Numbers{0, 1, 0, 0, 1, 1}));
  test::expectConsistent(*dag);
}

TEST_F(NodeComparisonTest, AViolationIsTheDistanceToTheNextSatisfyingInteger) {
  acceptMove(*dag, {{0, 3}, {1, 3}});
  EXPECT_EQ(violations(), (Numbers{0, 1, 0, 1, 0, 1}));
  acceptMove(*dag, {{0, 8}});
  EXPECT_EQ(violations(), (Numbers{5, 0, 5, 6, 0, 0}));
  acceptMove(*dag, {{0, -2}});
  EXPECT_EQ(violations(), (Numbers{5, 0, 0, 0, 5, 6}));
  EXPECT_EQ(dag->propagation.infeasibility.violationSum, 16);
}

TEST_F(NodeComparisonTest, TheDeltaIsTheTentativeViolationLessTheCommittedOne) {
  acceptMove(*dag, {{0, 8}, {1, 3}});
  openMove(*dag, {{0, 3}});
  EXPECT_EQ(deltas(), (Numbers{-5, 1, -5, -5, 0, 1}));
  dag->propagation.accept(*dag);
  test::expectConsistent(*dag);
}

TEST_F(NodeComparisonTest, DistancesWrapAtTheLimitsOfTheRange) {
  acceptMove(*dag, {{0, kSmallest}, {1, kLargest}});
  EXPECT_EQ(values(), (Numbers{0, 1, 1, 1, 0, 0}));
  EXPECT_EQ(violations(), (Numbers{1, 0, 1, 2, 0, 0}));
}

TEST(NodeComparisonPickTest, AnEqualityClosesTheGap) {
  GraphBuilder graph;
  const std::uint32_t a = graph.boolean();
  const std::uint32_t b = graph.boolean();
  const std::uint32_t eq = graph.minimise(graph.node(NodeType::Eq, {a, b}));
  const auto dag = graph.makeDag();
  expectNoPick(test::pickUp(*dag, eq, 9), 9);  // it holds
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  expectPick(test::pickDown(*dag, eq, secondUp), b, afterDraws(secondUp, 2));
  expectPick(test::pickAny(*dag, eq, secondUp), b, afterDraws(secondUp, 2));
  acceptMove(*dag, {{a, 1}});
  expectNoPick(test::pickDown(*dag, eq, 9), 9);
  const std::uint32_t low = seedForTopBits({0});
  const std::uint32_t high = seedForTopBits({1});
  expectPick(test::pickUp(*dag, eq, low), b, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, eq, high), a, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, eq, high), a, afterDraws(high, 1));
  acceptMove(*dag, {{a, 0}, {b, 1}});
  expectPick(test::pickUp(*dag, eq, low), a, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, eq, high), b, afterDraws(high, 1));
}

TEST(NodeComparisonPickTest, AnInequalityMirrorsTheEquality) {
  GraphBuilder graph;
  const std::uint32_t a = graph.boolean();
  const std::uint32_t b = graph.boolean();
  const std::uint32_t neq = graph.minimise(graph.node(NodeType::Neq, {a, b}));
  const auto dag = graph.makeDag();
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  expectNoPick(test::pickDown(*dag, neq, 9), 9);
  expectPick(test::pickUp(*dag, neq, secondUp), b, afterDraws(secondUp, 2));
  expectPick(test::pickAny(*dag, neq, secondUp), b, afterDraws(secondUp, 2));
  acceptMove(*dag, {{a, 1}});
  const std::uint32_t low = seedForTopBits({0});
  const std::uint32_t high = seedForTopBits({1});
  expectNoPick(test::pickUp(*dag, neq, 9), 9);
  expectPick(test::pickDown(*dag, neq, low), b, afterDraws(low, 1));
  expectPick(test::pickDown(*dag, neq, high), a, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, neq, low), b, afterDraws(low, 1));
}

TEST(NodeComparisonPickTest, ABoundLeavesOneOperandToMove) {
  GraphBuilder graph;
  const std::uint32_t a = graph.boolean();
  const std::uint32_t zero = graph.constant(0);
  const std::uint32_t one = graph.constant(1);
  const std::uint32_t atZero = graph.minimise(graph.node(NodeType::Leq, {a, zero}));
  const std::uint32_t belowOne = graph.minimise(graph.node(NodeType::Lt, {one, a}));
  const auto dag = graph.makeDag();
  expectPick(test::pickDown(*dag, atZero, 9), a, 9);  // the constant is at its minimum
  expectPick(test::pickUp(*dag, belowOne, 9), a, 9);  // and so is this one
  acceptMove(*dag, {{a, 1}});
  expectPick(test::pickUp(*dag, atZero, 9), a, 9);  // the constant is at its maximum
}

/// The order comparisons of two booleans: the one that a pick should find for each state.
class OrderPickTest : public testing::TestWithParam<NodeType> {};

TEST_P(OrderPickTest, FollowsTheTentativeValue) {
  const bool isLess = GetParam() == NodeType::Leq || GetParam() == NodeType::Lt;
  GraphBuilder graph;
  const std::uint32_t a = graph.boolean();
  const std::uint32_t b = graph.boolean();
  const std::uint32_t node = graph.minimise(graph.node(GetParam(), {a, b}));
  const auto dag = graph.makeDag();
  const std::uint32_t small = isLess ? a : b;
  const std::uint32_t large = isLess ? b : a;
  const std::uint32_t low = seedForTopBits({0});
  const std::uint32_t high = seedForTopBits({1});

  acceptMove(*dag, {{large, 1}});  // it holds
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  expectPick(test::pickDown(*dag, node, low), small, afterDraws(low, 1));
  expectPick(test::pickDown(*dag, node, high), large, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, low), small, afterDraws(low, 1));

  acceptMove(*dag, {{small, 1}, {large, 0}});  // it does not hold
  expectNoPick(test::pickDown(*dag, node, 9), 9);
  expectPick(test::pickUp(*dag, node, low), large, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), small, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, high), small, afterDraws(high, 1));

  dag->tValues[node].intValue = 1;  // as under a move that makes it hold
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  EXPECT_EQ(test::pickDown(*dag, node, 9).rng, 9U);  // small is at its maximum: no draw
  expectNoPick(test::pickDown(*dag, node, 9), 9);    // and large at its minimum
}

INSTANTIATE_TEST_SUITE_P(All, OrderPickTest,
                         testing::Values(NodeType::Leq, NodeType::Lt, NodeType::Geq, NodeType::Gt));

}  // namespace
}  // namespace ombrix
