#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "solver/node/trust.h"
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
using test::seedForTopBits;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kSumText = "Cannot compute the sum of two opposite infinite numbers";
constexpr const char* kProductText = "Cannot compute the product of zero and infinity";
constexpr const char* kEvalText = "Cannot compute product of zero and infinity";

TEST(TrustTest, AChangeFromOrToZeroIsBigAboveAlmostOne) {
  EXPECT_TRUE(isBigChange(0, 1));
  EXPECT_TRUE(isBigChange(-1, 0));
  EXPECT_FALSE(isBigChange(0, 0.5));
  EXPECT_FALSE(isBigChange(0, 0.999999));
  EXPECT_FALSE(isBigChange(0, 0));
}

TEST(TrustTest, AnyOtherChangeIsBigIfItNearlyCancels) {
  EXPECT_TRUE(isBigChange(1, 4e-7));
  EXPECT_FALSE(isBigChange(1, 6e-7));
  EXPECT_TRUE(isBigChange(4e-7, 1));
  EXPECT_TRUE(isBigChange(1, -1e-3));
  EXPECT_TRUE(isBigChange(1, -1));
  EXPECT_FALSE(isBigChange(3, 2));
  EXPECT_FALSE(isBigChange(kNan, 1));
  EXPECT_FALSE(isBigChange(kInfinity, 1));
}

/// A node over decisions, numbered as they are listed; floats take every value and start at 0.
class NodeDoubleAggregateTest : public OneNodeTest {
protected:
  void makeFloats(NodeType type, const std::vector<double>& start,
                  const std::vector<double>& scalars = {}, double min = -kInfinity,
                  double max = kInfinity) {
    graph = GraphBuilder();
    decisions.clear();
    for (std::size_t i = 0; i < start.size(); ++i) decisions.push_back(graph.floating(min, max));
    build(graph.doubleNode(type, decisions, scalars));
    for (std::uint32_t i = 0; i < start.size(); ++i)
      dag->propagation.setValue(*dag, decisions[i], start[i]);
    dag->propagation.accept(*dag);
  }
  void makeBooleans(NodeType type, const std::vector<int>& start,
                    const std::vector<double>& scalars = {}) {
    graph = GraphBuilder();
    decisions = graph.booleans(static_cast<std::uint32_t>(start.size()));
    build(graph.doubleNode(type, decisions, scalars));
    for (std::uint32_t i = 0; i < start.size(); ++i)
      dag->propagation.setValue(*dag, decisions[i], static_cast<std::int64_t>(start[i]));
    dag->propagation.accept(*dag);
    EXPECT_TRUE(isConsistent());
  }
  void open(std::initializer_list<std::pair<std::size_t, double>> written) {
    for (const auto& [which, value] : written)
      dag->propagation.setValue(*dag, decisions[which], value);
    ASSERT_TRUE(dag->propagation.evaluateConstraints(*dag));
    ASSERT_TRUE(dag->propagation.evaluateLevels(*dag, 1));
  }
  void accept(std::initializer_list<std::pair<std::size_t, double>> written) {
    open(written);
    dag->propagation.accept(*dag);
  }

  double value() const { return dag->values[node].doubleValue; }
  bool pickFor(double wanted, std::uint32_t seed) {
    rng = seed;
    found = kNone;
    OXValue target = OXValue::ofDouble(wanted);
    return dag->nodes[node]->pickForTarget(*dag, node, rng, target, found, decisionValue);
  }

  std::vector<std::uint32_t> decisions;
  std::uint32_t rng = 0;
  std::uint32_t found = kNone;
  OXValue decisionValue = OXValue::ofInt(0);
};

// ---- sum

TEST_F(NodeDoubleAggregateTest, SumAddsItsTerms) {
  makeFloats(NodeType::DoubleScalarSum, {1.5, 2.5}, {2, -0.5});
  EXPECT_EQ(value(), 1.75);
  accept({{0, 0.5}, {1, 1.0}});
  EXPECT_EQ(value(), 0.5);
  EXPECT_TRUE(isConsistent());
  open({{0, 7.0}});
  dag->propagation.reject(*dag);
  EXPECT_EQ(value(), 0.5);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeDoubleAggregateTest, SumRecomputesWhatAHugeTermLeaves) {
  makeFloats(NodeType::DoubleSum, {1e16, 0.1, 0.2});
  EXPECT_NE(value() - 1e16, 0.1 + 0.2);  // the digits are not there
  accept({{0, 0.0}});
  EXPECT_EQ(value(), 0.1 + 0.2);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeDoubleAggregateTest, SumOfZeroTrustsSmallStepsOnly) {
  // A sum that is wrong on purpose shows whether it was recomputed.
  makeFloats(NodeType::DoubleSum, {0.0, 5.0});
  dag->values[node] = dag->tValues[node] = OXValue::ofDouble(0.0);
  open({{0, 0.5}});
  EXPECT_EQ(dag->tValues[node].doubleValue, 0.5);
  dag->propagation.reject(*dag);
  open({{0, 1.0}});
  EXPECT_EQ(dag->tValues[node].doubleValue, 6.0);
}

TEST_F(NodeDoubleAggregateTest, SumRefusesInfinities) {
  makeFloats(NodeType::DoubleSum, {0.0, 0.0});
  test::expectFailure(5, "NodeDoubleScalarSumTemplate::eval", kSumText, [&] {
    accept({{0, kInfinity}, {1, -kInfinity}});
  });
  makeFloats(NodeType::DoubleSum, {0.0, 0.0});
  test::expectFailure(5, "NodeDoubleScalarSumTemplate::eval", kSumText, [&] {
    accept({{0, kInfinity}});
  });
  GraphBuilder other;
  other.node(NodeType::DoubleSum,
             {other.doubleConstant(kInfinity), other.doubleConstant(-kInfinity)});
  test::expectFailure(5, "NodeDoubleScalarSumTemplate::computeValue", kSumText,
                      [&] { other.makeDag(); });
}

TEST_F(NodeDoubleAggregateTest, AValueWithinToleranceOfABoundButInsideItCanStillReachIt) {
  makeFloats(NodeType::DoubleSum, {0.5}, {}, 0.0, 1.0);
  const Node& sum = *dag->nodes[node];
  accept({{0, 1.0 - 1e-9}});
  EXPECT_TRUE(sum.isNotMaxNode(*dag, node, 0));
  accept({{0, 1.0}});
  EXPECT_FALSE(sum.isNotMaxNode(*dag, node, 0));
  EXPECT_TRUE(sum.isNotMinNode(*dag, node, 0));
  accept({{0, 0.0}});
  EXPECT_FALSE(sum.isNotMinNode(*dag, node, 0));
}

TEST_F(NodeDoubleAggregateTest, SumShowsWhatCanRiseAndWhatCanFall) {
  makeBooleans(NodeType::DoubleScalarSum, {1, 1, 0, 0}, {2, -3, -1, 0});
  const Node& sum = *dag->nodes[node];
  EXPECT_EQ(sum.nbNotMinNodes(*dag, node), 2U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 0), 0U);
  EXPECT_EQ(sum.notMinNodeAt(*dag, node, 1), 2U);
  EXPECT_EQ(sum.nbNotMaxNodes(*dag, node), 1U);
  EXPECT_EQ(sum.notMaxNodeAt(*dag, node, 0), 1U);
  EXPECT_FALSE(sum.isNotMinNode(*dag, node, 3));
  EXPECT_FALSE(sum.isNotMaxNode(*dag, node, 3));
  std::uint32_t state = 7;
  EXPECT_EQ(sum.randomNotMaxNode(*dag, node, state), 1U);
  EXPECT_EQ(state, 7U);
}

TEST_F(NodeDoubleAggregateTest, SumPicksByTheSignOfTheCoefficient) {
  makeBooleans(NodeType::DoubleScalarSum, {1, 0}, {2, -3});
  expectPick(test::pickDown(*dag, node, low), decisions[0], afterDraws(low, 1));
  expectPick(test::pickDown(*dag, node, high), decisions[1], afterDraws(high, 1));
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  const std::uint32_t firstDown = seedForTopBits({0, 1});
  expectPick(test::pickAny(*dag, node, firstDown), decisions[0], afterDraws(firstDown, 2));
}

TEST_F(NodeDoubleAggregateTest, WithinToleranceOfItsBoundASumPicksNothing) {
  makeBooleans(NodeType::DoubleScalarSum, {1, 1}, {1, 1e-7});
  acceptMove(*dag, {{decisions[1], 0}});
  expectNoPick(test::pickUp(*dag, node, 9), 9);
}

TEST_F(NodeDoubleAggregateTest, SumCarriesATargetToARandomOperand) {
  makeFloats(NodeType::DoubleScalarSum, {1.0, 2.0}, {2, -4}, -100, 100);
  EXPECT_EQ(value(), -6.0);
  EXPECT_FALSE(pickFor(-6.0000001, 9));
  EXPECT_EQ(rng, 9U);
  EXPECT_TRUE(pickFor(-2.0, low));
  EXPECT_EQ(found, decisions[0]);
  EXPECT_EQ(decisionValue.doubleValue, 3.0);
  EXPECT_EQ(rng, afterDraws(low, 1));
  EXPECT_TRUE(pickFor(-2.0, high));
  EXPECT_EQ(found, decisions[1]);
  EXPECT_EQ(decisionValue.doubleValue, 1.0);
  makeFloats(NodeType::DoubleSum, {1.0}, {}, -100, 100);
  EXPECT_TRUE(pickFor(4.5, 9));
  EXPECT_EQ(decisionValue.doubleValue, 4.5);
  EXPECT_EQ(rng, 9U);  // one operand: no draw
}

TEST_F(NodeDoubleAggregateTest, SumCarriesATargetToABooleanAndFromAComparison) {
  makeBooleans(NodeType::DoubleScalarSum, {0}, {2.5});
  EXPECT_TRUE(pickFor(2.5, 9));
  EXPECT_EQ(found, decisions[0]);
  graph = GraphBuilder();
  const std::uint32_t x = graph.floating(0, 10);
  const std::uint32_t sum = graph.doubleNode(NodeType::DoubleScalarSum, {x}, {2});
  node = graph.minimise(graph.node(NodeType::DoubleEq, {sum, graph.doubleConstant(7)}));
  dag = graph.makeDag();
  rng = 9;
  OXValue target = OXValue::ofInt(1);
  EXPECT_TRUE(dag->nodes[node]->pickForTarget(*dag, node, rng, target, found, decisionValue));
  EXPECT_EQ(found, x);
  EXPECT_EQ(decisionValue.doubleValue, 3.5);
}

TEST_F(NodeDoubleAggregateTest, OnlyTheSumTakesATarget) {
  for (const NodeType type : {NodeType::DoubleProduct, NodeType::DoubleMin, NodeType::DoubleMax}) {
    makeFloats(type, {1.0, 2.0});
    EXPECT_FALSE(pickFor(5.0, 9));
    EXPECT_EQ(rng, 9U);
  }
}

TEST_F(NodeDoubleAggregateTest, SumDumpsItsFreshValueAndItsSets) {
  makeBooleans(NodeType::DoubleScalarSum, {1, 0}, {2, -3.5});
  EXPECT_NE(dump().find("isValueInit=1\ncomputedValue=2\nisNotMinNodesInit=1\n"
                        "isNotMaxNodesInit=1\nnotMinNodes= 0 1\nnotMaxNodes=\n"
                        "coefficients 2 -3.5 \n"),
            std::string::npos)
      << dump();
}

TEST_F(NodeDoubleAggregateTest, SumCheckNoticesStaleSetsAndMarks) {
  makeBooleans(NodeType::DoubleSum, {1, 0});
  std::swap(dag->values[decisions[0]], dag->values[decisions[1]]);
  EXPECT_FALSE(isConsistent());
  std::swap(dag->values[decisions[0]], dag->values[decisions[1]]);
  EXPECT_TRUE(isConsistent());
  dag->nodes[node]->operandChanged(1, *dag->fixedFields, node);
  EXPECT_FALSE(isConsistent());
}

// ---- product

TEST_F(NodeDoubleAggregateTest, ProductFollowsItsFactors) {
  makeFloats(NodeType::DoubleScalarProduct, {1.5, 2.0}, {2});
  EXPECT_EQ(value(), 6.0);
  accept({{0, 3.0}});
  EXPECT_EQ(value(), 12.0);
  open({{1, 0.5}});
  dag->propagation.reject(*dag);
  EXPECT_EQ(value(), 12.0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeDoubleAggregateTest, ProductLeavesAndReachesZero) {
  makeFloats(NodeType::DoubleProduct, {0.0, 0.5, 3.0});
  accept({{0, 0.25}});  // from 0, by little: recomputed all the same
  EXPECT_EQ(value(), 0.375);
  accept({{1, 0.0}});  // to 0, by little: the increment is exact
  EXPECT_EQ(value(), 0.0);
  accept({{1, 4.0}});
  EXPECT_EQ(value(), 3.0);
  accept({{1, 0.0}});
  EXPECT_EQ(value(), 0.0);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeDoubleAggregateTest, ProductStaysAsItIsIfTheChangesCancel) {
  makeFloats(NodeType::DoubleProduct, {2.0, 3.0, 0.1});
  const double before = value();
  accept({{0, 3.0}, {1, 2.0}});
  EXPECT_EQ(value(), before);
  EXPECT_TRUE(isConsistent());
}

TEST_F(NodeDoubleAggregateTest, ProductRefusesInfinities) {
  makeFloats(NodeType::DoubleProduct, {1.0, 1.0});
  test::expectFailure(5, "NodeDoubleScalarProductTemplate::eval", kProductText, [&] {
    accept({{0, kInfinity}});
  });
  makeFloats(NodeType::DoubleProduct, {1.0, 1.0});
  test::expectFailure(5, "NodeDoubleScalarProductTemplate::eval", kProductText, [&] {
    accept({{0, kInfinity}, {1, 0.0}});
  });
  GraphBuilder other;
  other.node(NodeType::DoubleProduct, {other.doubleConstant(kInfinity), other.doubleConstant(0)});
  test::expectFailure(5, "NodeDoubleScalarProductTemplate::computeValue", kProductText,
                      [&] { other.makeDag(); });
}

TEST_F(NodeDoubleAggregateTest, ProductPicksAnyOperandEitherWay) {
  makeBooleans(NodeType::DoubleProduct, {1, 0});
  const std::uint32_t firstDown = seedForTopBits({0, 1});
  const std::uint32_t secondUp = seedForTopBits({1, 0});
  expectPick(test::pickDown(*dag, node, secondUp), decisions[1], afterDraws(secondUp, 2));
  expectPick(test::pickUp(*dag, node, firstDown), decisions[0], afterDraws(firstDown, 2));
  expectPick(test::pickAny(*dag, node, firstDown), decisions[0], afterDraws(firstDown, 2));
}

TEST_F(NodeDoubleAggregateTest, ProductCheckNoticesAMark) {
  makeBooleans(NodeType::DoubleProduct, {1, 0});
  dag->nodes[node]->operandChanged(1, *dag->fixedFields, node);
  EXPECT_FALSE(isConsistent());
}

// ---- minimum and maximum

TEST_F(NodeDoubleAggregateTest, ExtremaFollowTheirTerms) {
  for (const double sign : {1.0, -1.0}) {
    makeFloats(sign > 0 ? NodeType::DoubleMax : NodeType::DoubleMin,
               {sign * 3.5, sign * 7.5, sign * 7.5});
    accept({{1, sign * 1.0}});  // one of two equal supports
    EXPECT_EQ(value(), sign * 7.5);
    EXPECT_TRUE(isConsistent());
    accept({{2, sign * 2.0}});  // the last of them
    EXPECT_EQ(value(), sign * 3.5);
    EXPECT_TRUE(isConsistent());
    accept({{1, sign * 3.5}});  // another reaches the value
    EXPECT_EQ(value(), sign * 3.5);
    accept({{0, 0.0}});
    EXPECT_EQ(value(), sign * 3.5);
    EXPECT_TRUE(isConsistent());
    accept({{0, sign * 9.0}});
    EXPECT_EQ(value(), sign * 9.0);
    EXPECT_TRUE(isConsistent());
    open({{0, 0.0}, {2, sign * 8.0}});
    dag->propagation.reject(*dag);
    EXPECT_EQ(value(), sign * 9.0);
    EXPECT_TRUE(isConsistent());
  }
}

TEST_F(NodeDoubleAggregateTest, OfEqualTermsTheLastIsTheSupport) {
  makeBooleans(NodeType::DoubleScalarMin, {0, 0, 0}, {1, 2, 3});
  EXPECT_NE(dump().find("supportNodePos=2\n"), std::string::npos) << dump();
  makeFloats(NodeType::DoubleMin, {5, 5, 5, 5});
  accept({{0, 4}, {2, 4}});  // a fall: the last among the changed
  EXPECT_NE(dump().find("supportNodePos=2\n"), std::string::npos) << dump();
  accept({{1, 4}});  // the value stays: the last among all
  EXPECT_NE(dump().find("supportNodePos=2\n"), std::string::npos) << dump();
  accept({{3, 4}});
  EXPECT_NE(dump().find("supportNodePos=3\n"), std::string::npos) << dump();
  accept({{0, 9}, {1, 8}, {2, 8}, {3, 9}});  // a rise: the last among all
  EXPECT_NE(dump().find("supportNodePos=2\n"), std::string::npos) << dump();
}

/// Random moves among few distinct values, so that equal terms abound. The support that each move
/// should leave follows from a walk over all positions, or over the changed ones in the order in
/// which the set holds them.
class SupportWalkTest : public NodeDoubleAggregateTest,
                        public testing::WithParamInterface<std::uint32_t> {
protected:
  std::uint32_t support() const {
    const std::string label = "supportNodePos=";
    const std::string text = dump();
    return static_cast<std::uint32_t>(std::stoul(text.substr(text.find(label) + label.size())));
  }
  std::uint32_t lastSmallest(const std::vector<std::uint32_t>& positions) const {
    std::uint32_t best = positions.front();
    for (const std::uint32_t i : positions) {
      if (term(i) <= term(best)) best = i;
    }
    return best;
  }
  double term(std::uint32_t i) const { return dag->values[decisions[i]].doubleValue; }
};

TEST_P(SupportWalkTest, TheSupportIsTheLastOfEqualTermsInItsWalk) {
  const std::uint32_t n = GetParam();
  makeFloats(NodeType::DoubleMin, std::vector<double>(n, 5.0));
  std::vector<std::uint32_t> all(n);
  std::iota(all.begin(), all.end(), 0);
  std::uint32_t state = n;
  for (int move = 0; move < 200; ++move) {
    std::vector<std::uint32_t> changed;
    for (std::uint32_t k = randomIndex(state, 4) + 1; k > 0; --k) {
      const std::uint32_t i = move % 9 == 0 ? lastSmallest(all) : randomIndex(state, n);
      const double wanted = move % 9 == 0 ? 5.0 : 2.0 + randomIndex(state, 4);
      if (std::find(changed.begin(), changed.end(), i) != changed.end() || term(i) == wanted)
        continue;
      dag->propagation.setValue(*dag, decisions[i], wanted);
      changed.push_back(i);
    }
    if (n <= 1024) std::sort(changed.begin(), changed.end());
    const double before = value();
    dag->propagation.accept(*dag);
    ASSERT_EQ(support(), lastSmallest(value() < before ? changed : all)) << "move " << move;
    ASSERT_TRUE(isConsistent());
  }
}

INSTANTIATE_TEST_SUITE_P(Widths, SupportWalkTest, testing::Values(1, 5, 20, 100, 1100));

TEST_F(NodeDoubleAggregateTest, ExtremaRefuseInfiniteTerms) {
  const std::vector<std::pair<NodeType, std::string>> extrema = {
      {NodeType::DoubleMin, "NodeDoubleScalarMinTemplate"},
      {NodeType::DoubleMax, "NodeDoubleScalarMaxTemplate"}};
  for (const auto& [type, name] : extrema) {
    for (const double term : {kInfinity, -kInfinity, kNan}) {
      makeFloats(type, {1.0, 1.0});
      test::expectFailure(5, name + "::eval", kEvalText, [&] { accept({{0, term}}); });
    }
    GraphBuilder other;
    other.node(type, {other.doubleConstant(kInfinity)});
    test::expectFailure(5, name + "::computeValue", kProductText, [&] { other.makeDag(); });
  }
}

TEST_F(NodeDoubleAggregateTest, MaxPicksItsSupportDownAndACandidateUp) {
  makeBooleans(NodeType::DoubleScalarMax, {0, 0, 1, 0}, {2, 3, 1, 1});
  expectPick(test::pickDown(*dag, node, 9), decisions[2], 9);
  expectPick(test::pickUp(*dag, node, high), decisions[1], afterDraws(high, 1));
  acceptMove(*dag, {{decisions[1], 1}});
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  acceptMove(*dag, {{decisions[1], 0}, {decisions[2], 0}});
  expectNoPick(test::pickDown(*dag, node, 9), 9);
}

TEST_F(NodeDoubleAggregateTest, MinPicksACandidateDownAndItsSupportUp) {
  makeBooleans(NodeType::DoubleScalarMin, {1, 0}, {-2, -3});
  expectPick(test::pickDown(*dag, node, 9), decisions[1], 9);
  expectPick(test::pickUp(*dag, node, 9), decisions[0], 9);
}

TEST_F(NodeDoubleAggregateTest, ExtremaChangeOnlyAtTheEndsOfTheirBounds) {
  makeBooleans(NodeType::DoubleScalarMax, {0, 0}, {2, 3});
  const std::uint32_t thenHigh = seedForTopBits({0, 1});
  expectPick(test::pickAny(*dag, node, thenHigh), decisions[1], afterDraws(thenHigh, 2));
  acceptMove(*dag, {{decisions[0], 1}});
  expectNoPick(test::pickAny(*dag, node, 9), 9);
  acceptMove(*dag, {{decisions[1], 1}});
  expectPick(test::pickAny(*dag, node, 9), decisions[1], afterDraws(9, 1));
}

TEST_F(NodeDoubleAggregateTest, TheEndsOfTheBoundsAreMetWithinTheTolerance) {
  makeBooleans(NodeType::DoubleScalarMax, {1, 0}, {3, 3.0000001});
  expectNoPick(test::pickUp(*dag, node, 9), 9);
  expectPick(test::pickAny(*dag, node, 9), decisions[0], afterDraws(9, 1));
}

TEST_F(NodeDoubleAggregateTest, ExtremaDumpTheirCandidatesAndSupport) {
  makeBooleans(NodeType::DoubleScalarMin, {0, 0}, {2, -3});
  EXPECT_NE(
      dump().find(
          "isDecreaseCandidatesInit=1\ndecreaseCandidates= 1\nisSupportInit=1\nsupportNodePos=1\n"
          "coefficients 2 -3 \n"),
      std::string::npos)
      << dump();
  makeBooleans(NodeType::DoubleMax, {0, 1});
  EXPECT_NE(dump().find("isIncreaseCandidatesInit=1\nincreaseCandidates=\nisSupportInit=1\n"
                        "supportNodePos=1\ncoefficients 1 1 \n"),
            std::string::npos)
      << dump();
}

TEST_F(NodeDoubleAggregateTest, ExtremumCheckNoticesAStaleSupportAndMark) {
  makeBooleans(NodeType::DoubleMax, {0, 1});
  std::swap(dag->values[decisions[0]], dag->values[decisions[1]]);  // the value stays right
  EXPECT_FALSE(isConsistent());
  std::swap(dag->values[decisions[0]], dag->values[decisions[1]]);
  EXPECT_TRUE(isConsistent());
  dag->nodes[node]->operandChanged(1, *dag->fixedFields, node);
  EXPECT_FALSE(isConsistent());
}

}  // namespace
}  // namespace ombrix
