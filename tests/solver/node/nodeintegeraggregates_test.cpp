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
using test::openMove;
using test::seedForTopBits;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

/// A node over boolean or integer decisions, numbered from 0, which start at the given values.
class NodeAggregateTest : public OneNodeTest {
protected:
  void makeOver(NodeType decisionType, NodeType type, const std::vector<std::int64_t>& start,
                const std::vector<std::int64_t>& scalars) {
    graph = GraphBuilder();
    std::vector<std::uint32_t> decisions;
    for (std::size_t i = 0; i < start.size(); ++i)
      decisions.push_back(graph.fields.addNode(decisionType));
    build(graph.node(type, decisions, scalars));
    for (std::uint32_t i = 0; i < start.size(); ++i) dag->propagation.setValue(*dag, i, start[i]);
    acceptMove(*dag, {});
    EXPECT_TRUE(isConsistent());
  }
  void makeIntegers(NodeType type, const std::vector<std::int64_t>& start,
                    const std::vector<std::int64_t>& scalars = {}) {
    makeOver(NodeType::Integer, type, start, scalars);
  }
  void makeBooleans(NodeType type, const std::vector<std::int64_t>& start,
                    const std::vector<std::int64_t>& scalars = {}) {
    makeOver(NodeType::Boolean, type, start, scalars);
  }

  std::int64_t value() const { return dag->values[node].intValue; }
  /// Changes a decision behind the node's back.
  void falsify(std::uint32_t decision, std::int64_t changed) {
    dag->values[decision] = dag->tValues[decision] = OXValue::ofInt(changed);
  }
  void expectRejectLeavesNoTrace(
      std::initializer_list<std::pair<std::uint32_t, std::int64_t>> written) {
    const std::int64_t before = value();
    openMove(*dag, written);
    dag->propagation.reject(*dag);
    EXPECT_EQ(value(), before);
    EXPECT_EQ(dag->tValues[node].intValue, before);
    EXPECT_TRUE(isConsistent());
  }
};

// ---- boolean_sum

TEST_F(NodeAggregateTest, BooleanSumCountsTheOnes) {
  makeBooleans(NodeType::BooleanSum, {1, 0, 1});
  EXPECT_EQ(value(), 2);
  acceptMove(*dag, {{0, 0}, {1, 1}});
  EXPECT_EQ(value(), 2);
  EXPECT_TRUE(isConsistent());
  expectRejectLeavesNoTrace({{1, 0}, {2, 0}});
}

TEST_F(NodeAggregateTest, BooleanSumShowsWhatCanRiseAndWhatCanFall) {
  makeBooleans(NodeType::BooleanSum, {1, 0, 1, 0});
  const Node& sum = *dag->nodes[node];
  EXPECT_EQ(sum.nbNotMaxNodes(*dag, node), 2U);
  EXPECT_EQ(sum.nbNotMinNodes(*dag, node), 2U);
  EXPECT_EQ(sum.notMaxNodeAt(*dag, node, 0), 1U);
  EXPECT_EQ(sum.notMaxNodeAt(*dag, node, 1), 3U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 0), 0U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 1), 2U);
  EXPECT_TRUE(sum.isNotMaxNode(*dag, node, 1));
  EXPECT_FALSE(sum.isNotMaxNode(*dag, node, 2));
  EXPECT_FALSE(sum.isNotMinNode(*dag, node, 1));
  EXPECT_TRUE(sum.isNotMinNode(*dag, node, 2));
  std::uint32_t rng = seedForTopBits({1});
  EXPECT_EQ(sum.randomNotMaxNode(*dag, node, rng), 3U);
  rng = seedForTopBits({0});
  EXPECT_EQ(sum.randomNotMinNode(*dag, node, rng), 0U);
}

TEST_F(NodeAggregateTest, BooleanSumWithoutACandidateAnswersNone) {
  makeBooleans(NodeType::BooleanSum, {1, 1});
  const Node& sum = *dag->nodes[node];
  std::uint32_t rng = 7;
  EXPECT_EQ(sum.randomNotMaxNode(*dag, node, rng), kNone);
  expectNoPick(test::pickUp(*dag, node, 7), 7);
  acceptMove(*dag, {{0, 0}, {1, 0}});
  EXPECT_EQ(sum.randomNotMinNode(*dag, node, rng), kNone);
  expectNoPick(test::pickDown(*dag, node, 7), 7);
  EXPECT_EQ(rng, 7U);
}

TEST_F(NodeAggregateTest, BooleanSumPicksAmongItsOnesOrZeros) {
  makeBooleans(NodeType::BooleanSum, {1, 0, 1, 0});
  expectPick(test::pickDown(*dag, node, high), 2, afterDraws(high, 1));
  expectPick(test::pickUp(*dag, node, low), 1, afterDraws(low, 1));
  const test::Pick any = test::pickAny(*dag, node, 3);
  EXPECT_EQ(any.rng, afterDraws(3, 2));
}

// ---- sum

TEST_F(NodeAggregateTest, SumIgnoresACoefficientOfZero) {
  makeBooleans(NodeType::ScalarSum, {0, 1}, {0, 5});
  acceptMove(*dag, {{0, 1}});
  EXPECT_EQ(value(), 5);
  EXPECT_TRUE(isConsistent());
  const Node& sum = *dag->nodes[node];
  EXPECT_FALSE(sum.isNotMinNode(*dag, node, 0));
  EXPECT_FALSE(sum.isNotMaxNode(*dag, node, 0));
}

TEST_F(NodeAggregateTest, SumSwapsTheSetsForANegativeCoefficient) {
  makeBooleans(NodeType::ScalarSum, {1, 1, 0}, {2, -3, -1});
  EXPECT_EQ(value(), -1);
  const Node& sum = *dag->nodes[node];
  EXPECT_EQ(sum.nbNotMinNodes(*dag, node), 2U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 0), 0U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 1), 2U);
  EXPECT_EQ(sum.nbNotMaxNodes(*dag, node), 1U);
  EXPECT_EQ(sum.notMaxNodeAt(*dag, node, 0), 1U);
  acceptMove(*dag, {{0, 0}, {1, 0}, {2, 1}});
  EXPECT_EQ(value(), -1);
  EXPECT_TRUE(isConsistent());
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 0), 1U);
  EXPECT_TRUE(sum.isNotMaxNode(*dag, node, 0));
  EXPECT_TRUE(sum.isNotMaxNode(*dag, node, 2));
  std::uint32_t rng = 7;
  EXPECT_EQ(sum.randomNotMinNode(*dag, node, rng), 1U);
  EXPECT_EQ(rng, 7U);
  EXPECT_EQ(sum.randomNotMaxNode(*dag, node, rng),
            0U + (afterDraws(7, 1) >= 2147483648U ? 2U : 0U));
}

TEST_F(NodeAggregateTest, SumWrapsWithoutAFailure) {
  makeIntegers(NodeType::ScalarSum, {kLargest, 1}, {1, 1});
  EXPECT_EQ(value(), kSmallest);
  acceptMove(*dag, {{0, kSmallest}, {1, -1}});
  EXPECT_EQ(value(), kLargest);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{0, 0}, {1, 0}});
  EXPECT_EQ(value(), 0);
}

TEST_F(NodeAggregateTest, SumFollowsARepeatedOperandOnceForEachPosition) {
  const std::uint32_t decision = graph.boolean();
  node = graph.minimise(graph.node(NodeType::ScalarSum, {decision, decision}, {2, 3}));
  dag = graph.makeDag();
  acceptMove(*dag, {{decision, 1}});
  EXPECT_EQ(value(), 5);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, SumPicksByTheSignOfTheCoefficient) {
  makeBooleans(NodeType::ScalarSum, {1, 0}, {2, -3});
  expectPick(test::pickDown(*dag, node, low), 0, afterDraws(low, 1));
  expectPick(test::pickDown(*dag, node, high), 1, afterDraws(high, 1));
  expectNoPick(test::pickUp(*dag, node), 1);  // at its maximum
  acceptMove(*dag, {{0, 0}, {1, 1}});
  expectPick(test::pickUp(*dag, node, low), 0, afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), 1, afterDraws(high, 1));
  expectNoPick(test::pickDown(*dag, node), 1);  // at its minimum
  const std::uint32_t secondDown = seedForTopBits({1, 1});
  expectPick(test::pickAny(*dag, node, secondDown), 1, afterDraws(secondDown, 2));
}

TEST_F(NodeAggregateTest, SumCheckNoticesEachStaleSet) {
  // The sum stays right, since the terms cancel: only the sets tell.
  makeBooleans(NodeType::Sum, {1, 0});
  falsify(0, 0);
  falsify(1, 1);
  EXPECT_FALSE(isConsistent());
  EXPECT_NE(dump().find("isNotMinNodesInit=0\nisNotMaxNodesInit=0\n"), std::string::npos);
}

TEST_F(NodeAggregateTest, SumDumpsItsSetsAndCoefficients) {
  makeBooleans(NodeType::ScalarSum, {1, 0}, {2, -3});
  EXPECT_NE(dump().find("isNotMinNodesInit=1\nisNotMaxNodesInit=1\nnotMinNodes= 0 1\n"
                        "notMaxNodes=\ncoefficients 2 -3 \n"),
            std::string::npos)
      << dump();
}

TEST(NodeViewTest, OtherNodesAnswerTheDefaultsOfTheViewOfASum) {
  GraphBuilder graph;
  const std::uint32_t node = graph.minimise(graph.node(NodeType::And, graph.booleans(2)));
  const auto dag = graph.makeDag();
  const Node& other = *dag->nodes[node];
  std::uint32_t rng = 7;
  EXPECT_EQ(other.nbNotMaxNodes(*dag, node), 0U);
  EXPECT_EQ(other.nbNotMinNodes(*dag, node), 0U);
  EXPECT_EQ(other.notMaxNodeAt(*dag, node, 1), 0U);
  EXPECT_EQ(other.notMinNodeAt(*dag, node, 1), 0U);
  EXPECT_FALSE(other.isNotMaxNode(*dag, node, 1));
  EXPECT_FALSE(other.isNotMinNode(*dag, node, 1));
  EXPECT_EQ(other.randomNotMaxNode(*dag, node, rng), 0U);
  EXPECT_EQ(other.randomNotMinNode(*dag, node, rng), 0U);
  EXPECT_EQ(rng, 7U);
}

// ---- product

TEST_F(NodeAggregateTest, ProductKeepsZerosOutOfItsFactors) {
  makeIntegers(NodeType::ScalarProduct, {0, 3}, {2});
  EXPECT_EQ(value(), 0);
  acceptMove(*dag, {{0, 5}, {1, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{1, -4}});
  EXPECT_EQ(value(), -40);
  EXPECT_TRUE(isConsistent());
  expectRejectLeavesNoTrace({{0, 0}, {1, 7}});
}

TEST_F(NodeAggregateTest, ProductCheckNoticesAStaleFactor) {
  makeIntegers(NodeType::Product, {0, 3});
  falsify(1, 5);
  EXPECT_FALSE(isConsistent());
}

TEST_F(NodeAggregateTest, ProductCheckNoticesAStaleZero) {
  makeIntegers(NodeType::Product, {0, 0, 3});
  falsify(0, 1);  // the factors and the value stay right
  EXPECT_FALSE(isConsistent());
}

TEST_F(NodeAggregateTest, ProductOverflowsWithoutAFailure) {
  makeIntegers(NodeType::Product, {1, 1});
  acceptMove(*dag, {{0, kSmallest}});
  EXPECT_EQ(value(), kSmallest);
  acceptMove(*dag, {{1, -1}});
  EXPECT_EQ(value(), kSmallest);
  acceptMove(*dag, {{1, 1}});
  EXPECT_EQ(value(), kSmallest);
}

TEST_F(NodeAggregateTest, ProductPicksAnyOperandEitherWay) {
  makeBooleans(NodeType::Product, {1, 0});
  const std::uint32_t firstDown = seedForTopBits({0, 1});
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  expectPick(test::pickDown(*dag, node, secondUp), 1, afterDraws(secondUp, 2));
  expectPick(test::pickUp(*dag, node, firstDown), 0, afterDraws(firstDown, 2));
  expectPick(test::pickAny(*dag, node, firstDown), 0, afterDraws(firstDown, 2));
}

TEST_F(NodeAggregateTest, ProductDumpsItsZerosAndScalar) {
  makeIntegers(NodeType::ScalarProduct, {0, 3}, {2});
  EXPECT_NE(dump().find("isZeroNodesInit=1\nzeroNodes= 0\nscalar =2\n"), std::string::npos)
      << dump();
}

// ---- maximum and minimum

TEST_F(NodeAggregateTest, MaxKeepsItsValueWhileASupportIsLeft) {
  makeIntegers(NodeType::Max, {3, 7, 7});
  acceptMove(*dag, {{1, 1}});
  EXPECT_EQ(value(), 7);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, MaxReadsTheOthersWhenAllSupportsFall) {
  makeIntegers(NodeType::Max, {3, 7, 7});
  acceptMove(*dag, {{1, 1}, {2, 2}});
  EXPECT_EQ(value(), 3);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{0, -5}});
  EXPECT_EQ(value(), 2);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, MaxGainsASupportThatRisesToItsValue) {
  makeIntegers(NodeType::Max, {3, 7});
  acceptMove(*dag, {{0, 7}});
  EXPECT_EQ(value(), 7);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{1, 0}});
  EXPECT_EQ(value(), 7);
  acceptMove(*dag, {{1, 9}});
  EXPECT_EQ(value(), 9);
  EXPECT_TRUE(isConsistent());
  expectRejectLeavesNoTrace({{1, 1}, {0, 8}});
}

TEST_F(NodeAggregateTest, MaxStaysWhenASupportIsExchangedForAnother) {
  makeIntegers(NodeType::Max, {3, 7});
  acceptMove(*dag, {{0, 7}, {1, 3}});
  EXPECT_EQ(value(), 7);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, MinMirrorsTheMaximum) {
  makeIntegers(NodeType::Min, {7, 3, 3});
  acceptMove(*dag, {{1, 9}});
  EXPECT_EQ(value(), 3);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{2, 8}});
  EXPECT_EQ(value(), 7);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{2, 7}});
  EXPECT_EQ(value(), 7);
  EXPECT_TRUE(isConsistent());
  acceptMove(*dag, {{1, -1}});
  EXPECT_EQ(value(), -1);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, ExtremaMeetTheLimitsOfTheRange) {
  makeIntegers(NodeType::Max, {kSmallest, kSmallest});
  EXPECT_EQ(value(), kSmallest);
  acceptMove(*dag, {{0, kLargest}});
  EXPECT_EQ(value(), kLargest);
  acceptMove(*dag, {{0, kSmallest}});
  EXPECT_EQ(value(), kSmallest);
  EXPECT_TRUE(isConsistent());
  makeIntegers(NodeType::Min, {kLargest, kLargest});
  acceptMove(*dag, {{1, kSmallest}});
  acceptMove(*dag, {{1, kLargest}});
  EXPECT_EQ(value(), kLargest);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, ScalarExtremaUseTheCoefficients) {
  makeBooleans(NodeType::ScalarMax, {1, 0, 0}, {-2, 3, 0});
  EXPECT_EQ(value(), 0);
  acceptMove(*dag, {{1, 1}});
  EXPECT_EQ(value(), 3);
  EXPECT_TRUE(isConsistent());
  makeBooleans(NodeType::ScalarMin, {1, 0, 0}, {-2, 3, 0});
  EXPECT_EQ(value(), -2);
  acceptMove(*dag, {{0, 0}});
  EXPECT_EQ(value(), 0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeAggregateTest, ExtremumCheckNoticesStaleSupportsAndCandidates) {
  // The value stays right in both cases.
  makeBooleans(NodeType::Max, {1, 1});
  falsify(0, 0);
  EXPECT_FALSE(isConsistent());
  EXPECT_NE(dump().find("isSupportsInit=0\nsupports= 0 1\nincreaseCandidates=\n"),
            std::string::npos)
      << dump();
}

TEST_F(NodeAggregateTest, ExtremaDumpTheirSets) {
  makeBooleans(NodeType::ScalarMax, {0, 0, 1}, {2, 3, 1});
  EXPECT_NE(dump().find("isSupportsInit=1\nsupports= 2\nincreaseCandidates= 0 1\n"
                        "coefficients 2 3 1 \n"),
            std::string::npos)
      << dump();
  makeBooleans(NodeType::ScalarMin, {0, 0}, {2, -3});
  EXPECT_NE(dump().find("isSupportsInit=1\nsupports= 0 1\ndecreaseCandidates= 1\n"
                        "coefficients 2 -3 \n"),
            std::string::npos)
      << dump();
}

TEST_F(NodeAggregateTest, MaxPicksSupportsDownAndCandidatesUp) {
  makeBooleans(NodeType::ScalarMax, {0, 0, 1, 0}, {2, 3, 1, 1});  // 1, between 0 and 3
  expectPick(test::pickDown(*dag, node, 9), 2, 9);
  expectPick(test::pickUp(*dag, node, high), 1, afterDraws(high, 1));
  acceptMove(*dag, {{1, 1}});
  expectNoPick(test::pickUp(*dag, node, 9), 9);  // at its maximum
  acceptMove(*dag, {{1, 0}, {2, 0}});
  expectNoPick(test::pickDown(*dag, node, 9), 9);  // at its minimum
}

TEST_F(NodeAggregateTest, ExtremaReverseThePickForANegativeCoefficient) {
  makeBooleans(NodeType::ScalarMax, {1, 1}, {-2, -3});  // -2, between -2 and 0
  acceptMove(*dag, {{0, 0}});                           // 0: supported by the first
  expectPick(test::pickDown(*dag, node, 9), 0, 9);
  acceptMove(*dag, {{0, 1}});
  expectPick(test::pickUp(*dag, node, high), 1, afterDraws(high, 1));
  makeBooleans(NodeType::ScalarMin, {1, 0}, {-2, -3});  // -2, between -3 and 0
  expectPick(test::pickDown(*dag, node, 9), 1, 9);
  expectPick(test::pickUp(*dag, node, 9), 0, 9);
}

TEST_F(NodeAggregateTest, MinPicksCandidatesDownAndSupportsUp) {
  makeBooleans(NodeType::ScalarMin, {1, 1, 1}, {2, 3, 2});  // 2, between 0 and 2
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  acceptMove(*dag, {{1, 0}});
  expectPick(test::pickUp(*dag, node, 9), 1, 9);
  expectNoPick(test::pickDown(*dag, node, 9), 9);
}

TEST_F(NodeAggregateTest, ExtremaChangeOnlyAtTheEndsOfTheirBounds) {
  makeBooleans(NodeType::ScalarMax, {0, 0}, {2, 3});
  const std::uint32_t thenHigh = seedForTopBits({0, 1});
  expectPick(test::pickAny(*dag, node, thenHigh), 1, afterDraws(thenHigh, 2));
  acceptMove(*dag, {{0, 1}});
  expectNoPick(test::pickAny(*dag, node, 9), 9);  // inside
  acceptMove(*dag, {{1, 1}});
  expectPick(test::pickAny(*dag, node, 9), 1, afterDraws(9, 1));  // one draw before, no choice
}

TEST(NodeExtremumTest, FixedByItsBoundsNeverChanges) {
  GraphBuilder graph;
  const std::uint32_t node =
      graph.minimise(graph.node(NodeType::Max, {graph.constant(2), graph.boolean()}));
  const auto dag = graph.makeDag();
  expectNoPick(test::pickAny(*dag, node, 9), 9);
}

TEST(NodeExtremumTest, CandidatesNearTheLimitsOfTheRangeStayConsistent) {
  GraphBuilder graph;
  const std::uint32_t integer = graph.integer();
  const std::uint32_t decision = graph.boolean();
  for (const NodeType type : {NodeType::ScalarMax, NodeType::ScalarMin})
    graph.minimise(graph.node(type, {integer, decision}, {3, 5}));
  const auto dag = graph.makeDag();
  for (const std::int64_t value : {std::int64_t{7}, std::int64_t{-7}, std::int64_t{0}, kLargest / 3,
                                   kSmallest / 3, std::int64_t{1}}) {
    acceptMove(*dag, {{integer, value}, {decision, value % 2 == 0 ? 1 : 0}});
    for (const std::uint32_t node : dag->fixedFields->objectives)
      EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node)) << value;
  }
}

// Twice the end of the range is that end when it saturates, and next to 0 when it wraps.
TEST_F(NodeAggregateTest, CandidatesFallOutBySaturatingReachAndComeInByPlainReach) {
  makeIntegers(NodeType::ScalarMax, {0, 0}, {2, 1});
  acceptMove(*dag, {{1, 5}});
  EXPECT_NE(dump().find("increaseCandidates= 0 1\n"), std::string::npos);
  acceptMove(*dag, {{1, kLargest}});  // at its own maximum: nothing can rise
  EXPECT_NE(dump().find("increaseCandidates=\n"), std::string::npos);
  acceptMove(*dag, {{1, 0}});
  EXPECT_NE(dump().find("increaseCandidates= 1\n"), std::string::npos);
  EXPECT_TRUE(isConsistent());
  makeIntegers(NodeType::ScalarMin, {0, 0}, {2, 1});
  acceptMove(*dag, {{1, -5}});
  EXPECT_NE(dump().find("decreaseCandidates= 0 1\n"), std::string::npos);
  acceptMove(*dag, {{1, kSmallest}});
  EXPECT_NE(dump().find("decreaseCandidates=\n"), std::string::npos);
  acceptMove(*dag, {{1, 0}});
  EXPECT_NE(dump().find("decreaseCandidates= 1\n"), std::string::npos);
  EXPECT_TRUE(isConsistent());
}

// ---- array

TEST(NodeArrayTest, ClearsItsMarksAndHasNoValue) {
  GraphBuilder graph;
  const std::uint32_t first = graph.boolean();
  const std::uint32_t index = graph.boolean();
  const std::uint32_t array = graph.node(NodeType::Array, {first, index});
  const std::uint32_t node = graph.minimise(graph.node(NodeType::At, {array, index}));
  const auto dag = graph.makeDag();
  EXPECT_TRUE(dag->nodes[array]->isConsistent(*dag, array));
  acceptMove(*dag, {{first, 1}});
  EXPECT_EQ(dag->values[node].intValue, 1);
  EXPECT_EQ(dag->values[array].intValue, 0);
  expectNoPick(test::pickDown(*dag, array), 1);
  expectNoPick(test::pickUp(*dag, array), 1);
  expectNoPick(test::pickAny(*dag, array), 1);
}

}  // namespace
}  // namespace ombrix
