#include "solver/node/nodedoublefunction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
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

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A function over a float that starts at 0 and may take every value.
class NodeDoubleFunctionTest : public OneNodeTest {
protected:
  void make(NodeType type) {
    graph = GraphBuilder();
    x = graph.floating(-kInfinity, kInfinity);
    build(graph.node(type, {x}));
  }
  OXValue at(double argument) {
    test::setAndAccept(*dag, x, argument);
    return dag->values[node];
  }
  void expectFails(NodeType type, double argument, const std::string& function,
                   const std::string& text) {
    make(type);
    test::expectFailure(5, function, text, [&] { at(argument); });
  }

  std::uint32_t x = 0;
};

TEST_F(NodeDoubleFunctionTest, RoundingsGiveIntegers) {
  make(NodeType::DoubleCeil);
  EXPECT_EQ(at(2.2).intValue, 3);
  EXPECT_EQ(at(3.0000005).intValue, 3);
  make(NodeType::DoubleFloor);
  EXPECT_EQ(at(-2.2).intValue, -3);
  EXPECT_EQ(at(2.9999995).intValue, 3);
  make(NodeType::DoubleRound);
  EXPECT_EQ(at(2.5).intValue, 3);
  EXPECT_EQ(at(-2.5).intValue, -2);
  EXPECT_EQ(at(2.4).intValue, 2);
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
}

TEST_F(NodeDoubleFunctionTest, FunctionsAreThoseOfTheCheckedMaths) {
  const std::vector<std::pair<NodeType, double (*)(double)>> functions = {
      {NodeType::DoubleExp, std::exp},
      {NodeType::DoubleCos, std::cos},
      {NodeType::DoubleSin, std::sin},
      {NodeType::DoubleTan, std::tan}};
  for (const auto& [type, function] : functions) {
    make(type);
    EXPECT_DOUBLE_EQ(at(0.75).doubleValue, function(0.75));
    test::expectConsistent(*dag);
  }
  make(NodeType::DoubleSqrt);
  EXPECT_DOUBLE_EQ(at(6.25).doubleValue, 2.5);
  make(NodeType::DoubleLog);
  EXPECT_DOUBLE_EQ(at(6.25).doubleValue, std::log(6.25));
}

TEST_F(NodeDoubleFunctionTest, EachRefusesWhatHasNoValue) {
  expectFails(NodeType::DoubleCeil, 1e19, "MathDouble::ceil",
              "Invalid ceil operation (out of bounds)");
  expectFails(NodeType::DoubleFloor, 1e19, "MathDouble::floor",
              "Invalid floor operation (out of bounds)");
  expectFails(NodeType::DoubleRound, -1e19, "MathDouble::floor",
              "Invalid floor operation (out of bounds)");
  expectFails(NodeType::DoubleSqrt, -1, "MathDouble::sqrt",
              "Invalid square root operation (NaN or negative number provided)");
  expectFails(NodeType::DoubleLog, -1, "MathDouble::log",
              "Invalid log operation (NaN or negative number provided)");
  expectFails(NodeType::DoubleExp, std::nan(""), "MathDouble::exp",
              "Invalid exponential operation (NaN provided)");
  expectFails(NodeType::DoubleCos, kInfinity, "MathDouble::cos",
              "Invalid cosine operation (NaN or infinity provided)");
  expectFails(NodeType::DoubleSin, kInfinity, "MathDouble::sin",
              "Invalid sine operation (NaN or infinity provided)");
  expectFails(NodeType::DoubleTan, kInfinity, "MathDouble::tan",
              "Invalid tangent operation (NaN or infinity provided)");
}

TEST(NodeDoublePowTest, FollowsThePowerOfTheCheckedMaths) {
  GraphBuilder graph;
  const std::uint32_t base = graph.floating(-10, 10);
  const std::uint32_t exponent = graph.floating(-10, 10);
  const std::uint32_t node = graph.minimise(graph.node(NodeType::DoublePow, {base, exponent}));
  const auto dag = graph.makeDag();
  EXPECT_EQ(dag->values[node].doubleValue, 1.0);
  test::setAndAccept(*dag, exponent, 3.0);
  test::setAndAccept(*dag, base, -2.0);
  EXPECT_EQ(dag->values[node].doubleValue, -8.0);
  test::setAndAccept(*dag, exponent, -1.0);
  EXPECT_EQ(dag->values[node].doubleValue, -kInfinity);
  test::expectFailure(5, "MathDouble::pow",
                      "Invalid pow operation (non integer exponent with negative base)",
                      [&] { test::setAndAccept(*dag, exponent, 0.5); });
}

// ---- picks

class DoubleFunctionPickTest : public OneNodeTest {
protected:
  void make(NodeType type) {
    graph = GraphBuilder();
    x = graph.boolean();
    build(graph.node(type, {x}));
  }
  void makePow(std::uint32_t base, std::uint32_t exponent) {
    build(graph.node(NodeType::DoublePow, {base, exponent}));
  }

  std::uint32_t x = 0;
};

TEST_F(DoubleFunctionPickTest, RisingFunctionsPassTheDirectionOn) {
  for (const NodeType type : {NodeType::DoubleCeil, NodeType::DoubleFloor, NodeType::DoubleRound,
                              NodeType::DoubleSqrt, NodeType::DoubleExp}) {
    make(type);
    expectNoPick(test::pickDown(*dag, node, 9), 9);
    expectPick(test::pickUp(*dag, node, 9), x, 9);
    acceptMove(*dag, {{x, 1}});
    expectPick(test::pickDown(*dag, node, 9), x, 9);
    expectNoPick(test::pickUp(*dag, node, 9), 9);
    if (type != NodeType::DoubleCeil) expectPick(test::pickAny(*dag, node, 9), x, 9);
  }
}

TEST_F(DoubleFunctionPickTest, LogPassesTheDirectionOn) {
  x = graph.boolean();
  const std::uint32_t positive = graph.node(NodeType::Sum, {x, graph.constant(1)});
  node = graph.minimise(graph.node(NodeType::DoubleLog, {positive}));
  dag = graph.makeDag();
  expectPick(test::pickUp(*dag, node, 9), x, 9);
  expectNoPick(test::pickDown(*dag, node, 9), 9);
}

TEST_F(DoubleFunctionPickTest, CeilChangesEitherWayByACoin) {
  make(NodeType::DoubleCeil);
  expectPick(test::pickAny(*dag, node, low), x, afterDraws(low, 1));
  expectNoPick(test::pickAny(*dag, node, high), afterDraws(high, 1));
}

TEST_F(DoubleFunctionPickTest, PeriodicFunctionsTakeAnyChange) {
  for (const NodeType type : {NodeType::DoubleCos, NodeType::DoubleSin, NodeType::DoubleTan}) {
    make(type);
    expectPick(test::pickDown(*dag, node, 9), x, 9);
    expectPick(test::pickUp(*dag, node, 9), x, 9);
    expectPick(test::pickAny(*dag, node, 9), x, 9);
  }
}

TEST_F(DoubleFunctionPickTest, PowMovesTheExponentByTheSideOfTheBase) {
  const std::uint32_t base = graph.boolean();
  const std::uint32_t exponent = graph.boolean();
  makePow(base, exponent);
  // 0 to the power of 0: below a base of 1 a higher exponent lowers.
  expectPick(test::pickDown(*dag, node, high), exponent, afterDraws(high, 1));
  expectNoPick(test::pickDown(*dag, node, low), afterDraws(low, 1));
  expectPick(test::pickUp(*dag, node, high), base, afterDraws(high, 1));  // at its minimum
  expectPick(test::pickUp(*dag, node, low), base, afterDraws(low, 1));
  acceptMove(*dag, {{exponent, 1}});
  expectNoPick(test::pickDown(*dag, node, high), afterDraws(high, 1));
  expectPick(test::pickUp(*dag, node, high), exponent, afterDraws(high, 1));
  acceptMove(*dag, {{base, 1}});
  expectPick(test::pickDown(*dag, node, high), exponent, afterDraws(high, 1));
  expectPick(test::pickDown(*dag, node, low), base, afterDraws(low, 1));
  expectNoPick(test::pickUp(*dag, node, high), afterDraws(high, 1));
  acceptMove(*dag, {{exponent, 0}});
  expectPick(test::pickUp(*dag, node, high), exponent, afterDraws(high, 1));
  expectPick(test::pickDown(*dag, node, high), base, afterDraws(high, 1));
}

TEST_F(DoubleFunctionPickTest, PowChangesWhatItsBoundsLeaveFree) {
  const std::uint32_t base = graph.boolean();
  const std::uint32_t exponent = graph.boolean();
  makePow(base, exponent);
  expectPick(test::pickAny(*dag, node, high), base, afterDraws(high, 1));
  expectPick(test::pickAny(*dag, node, low), exponent, afterDraws(low, 1));
  graph = GraphBuilder();
  x = graph.boolean();
  makePow(graph.constant(2), x);
  expectPick(test::pickAny(*dag, node, high), x, afterDraws(high, 1));
  graph = GraphBuilder();
  x = graph.boolean();
  makePow(x, graph.constant(2));
  expectPick(test::pickAny(*dag, node, high), x, afterDraws(high, 1));
  expectNoPick(test::pickAny(*dag, node, low), afterDraws(low, 1));
}

TEST_F(DoubleFunctionPickTest, NoneTakesATarget) {
  for (const NodeType type :
       {NodeType::DoubleExp, NodeType::DoubleCos, NodeType::DoubleCeil, NodeType::DoubleAbs}) {
    make(type);
    std::uint32_t rng = 9;
    std::uint32_t found = kNone;
    OXValue target = OXValue::ofDouble(1);
    OXValue value = OXValue::ofDouble(0);
    EXPECT_FALSE(dag->nodes[node]->pickForTarget(*dag, node, rng, target, found, value));
    EXPECT_EQ(rng, 9U);
  }
}

TEST_F(DoubleFunctionPickTest, ADoubleNodeDumpsItsFreshValue) {
  make(NodeType::DoubleSqrt);
  const std::string text = test::captured([&] { dag->nodes[node]->dump(*dag, node); });
  EXPECT_EQ(text,
            "Id= 1\nOperator= double_sqrt\nisInit=1\nvalue=0\nt_value=0\nmin=0\nmax=1\n"
            "childNode[0]= id=0 type=boolean value=0 t_value=0 min=0 max=1\n"
            "isValueInit=1\ncomputedValue=0\n");
}

TEST_F(DoubleFunctionPickTest, ADoubleNodeIsConsistentWithinTheTolerance) {
  make(NodeType::DoubleExp);
  dag->values[node].doubleValue = 1 + 1e-7;
  EXPECT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  dag->tValues[node].doubleValue = dag->values[node].doubleValue = 1.1;
  EXPECT_FALSE(dag->nodes[node]->isConsistent(*dag, node));
}

}  // namespace
}  // namespace ombrix
