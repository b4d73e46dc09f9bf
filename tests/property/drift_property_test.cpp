#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "bench/driftgraph.h"
#include "support/graphs.h"

// Long walks over doubles that are hard to keep: terms of very different magnitude that nearly
// cancel, infinities, numbers that are none, comparisons within tolerance.
namespace ombrix {
namespace {

using test::GraphBuilder;
using test::recompute;
using test::sameValue;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class DriftProperty : public testing::TestWithParam<int> {};

// The graph has every node type over every kind of position set. A sum keeps about 1e-16 of its
// largest term per move, which is the more the wider the weights lie apart.
TEST_P(DriftProperty, aLongWalkLosesNextToNothing) {
  const int decades = GetParam();
  bench::DriftGraph graph(1, {8, 16, 32, 64, 128, 256, 512, 1024, 1500, 65536}, decades);
  for (std::uint32_t type = 0; type < kNbNodeTypes; ++type) {
    ASSERT_NE(graph.fields.nbNodesByType[type], 0U) << "type " << type;
  }
  Dag dag(graph.fields);
  dag.propagation.activeLevel = 1;
  for (int interval = 0; interval < 4 && !HasFailure(); ++interval) {
    for (int i = 0; i < 700; ++i) graph.move(dag);
    dag.propagation.synchronize(dag);
    const bench::Drift drift = measureDrift(dag, graph);
    EXPECT_EQ(drift.nbInconsistent, 0);
    EXPECT_EQ(drift.nbBeyond, 0);
    EXPECT_LT(drift.relative, 1e-11);
    RecordProperty("relativeDrift" + std::to_string(interval), std::to_string(drift.relative));
  }
}

INSTANTIATE_TEST_SUITE_P(Decades, DriftProperty, testing::Values(2, 6, 12));

/// Two decisions and a graph over them that is without a number, or infinite, at some of their
/// values. Walks over all of them many times, and after each move compares with a graph computed
/// from nothing.
class SpecialValues : public testing::Test {
protected:
  void walk() {
    graph.minimise(graph.constant(0));
    for (const std::uint32_t id : watched) graph.minimise(id);
    const auto dag = graph.makeDag();
    dag->propagation.activeLevel = graph.fields.nbObjectives();
    std::mt19937 random(3);
    for (int move = 0; move < 400 && !HasFailure(); ++move) {
      for (const std::uint32_t decision : {a, b, c}) {
        if (random() % 2 == 0) test::flip(*dag, decision);
      }
      if (dag->propagation.evaluateConstraints(*dag)) {
        dag->propagation.evaluateLevels(*dag, dag->propagation.activeLevel);
      }
      random() % 4 == 0 ? dag->propagation.reject(*dag) : dag->propagation.accept(*dag);
      expectFresh(*dag);
    }
    EXPECT_GT(nbSpecial, 50);
    EXPECT_GT(nbPlain, 50);
  }

  std::uint32_t watch(NodeType type, const std::vector<std::uint32_t>& operands) {
    watched.push_back(graph.node(type, operands));
    return watched.back();
  }

  GraphBuilder graph;
  const std::uint32_t a = graph.boolean();
  const std::uint32_t b = graph.boolean();
  const std::uint32_t c = graph.boolean();

private:
  /// Every node passes its check but for those without a number, which equal nothing.
  void expectFresh(const Dag& dag) {
    const auto fresh = recompute(dag);
    for (const std::uint32_t id : watched) {
      const std::uint8_t domain = graph.fields.domains[id];
      EXPECT_TRUE(sameValue(domain, dag.values[id], fresh->values[id]))
          << graph.fields.getTypeName(id) << " " << id;
      const double value = doubleValue(domain, dag.values[id]);
      EXPECT_EQ(dag.nodes[id]->isConsistent(dag, id), !std::isnan(value))
          << graph.fields.getTypeName(id) << " " << id;
      (std::isfinite(value) ? nbPlain : nbSpecial) += 1;
    }
  }

  std::vector<std::uint32_t> watched;
  int nbSpecial = 0;
  int nbPlain = 0;
};

TEST_F(SpecialValues, aQuotientWithoutNumberPassesAway) {
  const std::uint32_t quotient = watch(NodeType::DoubleDivide, {a, b});
  const std::uint32_t chosen = watch(NodeType::DoubleIf, {c, quotient, a});
  watch(NodeType::DoubleAbs, {chosen});
  for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleNeq, NodeType::DoubleGeq,
                              NodeType::DoubleGt, NodeType::DoubleLeq, NodeType::DoubleLt}) {
    watch(type, {chosen, b});
  }
  walk();
}

TEST_F(SpecialValues, anElementWithoutNumberIsReadAsItIs) {
  const std::uint32_t numbers = graph.doubleConstArray({0.5, kNaN, -kInfinity, kInfinity});
  const std::uint32_t index = graph.node(NodeType::BooleanSum, {a, b, c});
  const std::uint32_t element = watch(NodeType::DoubleAt, {numbers, index});
  const std::uint32_t array = graph.node(NodeType::Array, {a, element, b});
  watch(NodeType::DoubleAt, {array, graph.node(NodeType::BooleanSum, {a, c})});
  walk();
}

TEST_F(SpecialValues, infinitiesPassThroughWhatHasAnAnswerForThem) {
  const std::uint32_t high = watch(NodeType::DoubleIf, {a, graph.doubleConstant(kInfinity), b});
  const std::uint32_t low = watch(NodeType::DoubleIf, {b, graph.doubleConstant(-kInfinity), c});
  watch(NodeType::DoubleExp, {low});
  watch(NodeType::DoubleSqrt, {high});
  watch(NodeType::DoubleAbs, {low});
  watch(NodeType::DoubleDivide, {c, high});
  watch(NodeType::DoubleDistance, {high, low});
  for (const NodeType type : {NodeType::DoubleEq, NodeType::DoubleGt, NodeType::DoubleLeq}) {
    watch(type, {high, low});
  }
  walk();
}

/// A sum at its bound but for less than the tolerance is within its bounds, and counts as being
/// there: "double_leq" holds on both sides of the limit up to 1e-6 of it and no further.
TEST(ToleranceProperty, aValueWithinToleranceOfALimitKeepsToIt) {
  GraphBuilder graph;
  const std::vector<double> weights = {1000.0, 2.0e-4, 4.0e-4, 8.0e-4, 1.6e-3, -999.0};
  const std::vector<std::uint32_t> decisions = graph.booleans(6);
  const std::uint32_t sum = graph.doubleNode(NodeType::DoubleScalarSum, decisions, weights);
  const std::uint32_t limit = graph.doubleConstant(1000.0);
  const std::uint32_t within = graph.constraint(graph.node(NodeType::DoubleLeq, {sum, limit}));
  const std::uint32_t equal = graph.constraint(graph.node(NodeType::DoubleEq, {sum, limit}));
  const auto dag = graph.makeDag();
  std::mt19937 random(5);
  int nbEqual = 0;
  for (int move = 0; move < 2000; ++move) {
    test::flip(*dag, decisions[random() % decisions.size()]);
    dag->propagation.accept(*dag);
    double exact = 0.0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
      if (dag->values[decisions[i]].intValue != 0) exact += weights[i];
    }
    ASSERT_NEAR(dag->values[sum].doubleValue, exact, 1e-9);
    ASSERT_EQ(dag->values[equal].intValue != 0, approxEqual(exact, 1000.0)) << exact;
    ASSERT_EQ(dag->values[within].intValue != 0, exact <= 1000.0 || approxEqual(exact, 1000.0));
    nbEqual += dag->values[equal].intValue != 0 ? 1 : 0;
    ASSERT_NO_THROW(dag->check());
  }
  EXPECT_GT(nbEqual, 100);
}

}  // namespace
}  // namespace ombrix
