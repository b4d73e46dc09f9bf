#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "solver/kernel/random.h"
#include "support/graphs.h"
#include "support/widths.h"

namespace ombrix {
namespace {

using test::GraphBuilder;

/// One family of nodes over position sets: what its operands are, and its value in plain terms.
struct Family {
  const char* name;
  NodeType type;
  enum class Operands { Booleans, Integers, Factors } operands;
  enum class Scalars { None, One, All } scalars;
  std::function<std::int64_t(const std::vector<std::int64_t>& terms, std::int64_t scalar)> value;
};

std::int64_t sumOf(const std::vector<std::int64_t>& terms) {
  std::int64_t sum = 0;
  for (std::int64_t term : terms) sum += term;
  return sum;
}

std::int64_t largest(const std::vector<std::int64_t>& terms) {
  return *std::max_element(terms.begin(), terms.end());
}

std::int64_t smallest(const std::vector<std::int64_t>& terms) {
  return *std::min_element(terms.begin(), terms.end());
}

std::int64_t productOf(const std::vector<std::int64_t>& terms, std::int64_t scalar) {
  for (std::int64_t term : terms) scalar *= term;
  return scalar;
}

const std::vector<Family>& families() {
  using Terms = const std::vector<std::int64_t>&;
  using enum Family::Operands;
  using enum Family::Scalars;
  static const std::vector<Family> all = {
      {"And", NodeType::And, Booleans, None, [](Terms t, std::int64_t) { return smallest(t); }},
      {"Or", NodeType::Or, Booleans, None, [](Terms t, std::int64_t) { return largest(t); }},
      {"Xor", NodeType::Xor, Booleans, None, [](Terms t, std::int64_t) { return sumOf(t) % 2; }},
      {"BooleanSum", NodeType::BooleanSum, Booleans, None,
       [](Terms t, std::int64_t) { return sumOf(t); }},
      {"Sum", NodeType::Sum, Integers, None, [](Terms t, std::int64_t) { return sumOf(t); }},
      {"ScalarSum", NodeType::ScalarSum, Integers, All,
       [](Terms t, std::int64_t) { return sumOf(t); }},
      {"Product", NodeType::Product, Factors, None, productOf},
      {"ScalarProduct", NodeType::ScalarProduct, Factors, One, productOf},
      {"Max", NodeType::Max, Integers, None, [](Terms t, std::int64_t) { return largest(t); }},
      {"ScalarMax", NodeType::ScalarMax, Integers, All,
       [](Terms t, std::int64_t) { return largest(t); }},
      {"Min", NodeType::Min, Integers, None, [](Terms t, std::int64_t) { return smallest(t); }},
      {"ScalarMin", NodeType::ScalarMin, Integers, All,
       [](Terms t, std::int64_t) { return smallest(t); }},
  };
  return all;
}

/// A node of one family and width over random operands, walked by random moves. After each
/// evaluation the tentative value, and after each move the whole state, is compared with the plain
/// meaning of the family.
class Walk {
public:
  Walk(const Family& walked, std::uint32_t nbOperands, std::uint32_t seed)
      : family(walked), n(nbOperands), rng(seed) {
    for (std::uint32_t i = 0; i < n; ++i) operands.push_back(makeOperand(i));
    if (n > 3) operands[n - 1] = operands[0];
    if (family.scalars == Family::Scalars::One) scalars = {-3};
    for (std::uint32_t i = 0; i < n && family.scalars == Family::Scalars::All; ++i)
      scalars.push_back(static_cast<std::int64_t>(randomIndex(rng, 7)) - 3);
    node = graph.minimise(graph.node(family.type, operands, scalars));
    dag = graph.makeDag();
  }

  void startAtOnes() {
    for (std::uint32_t decision : decisions)
      dag->propagation.setValue(*dag, decision, std::int64_t{1});
    evaluate();
    dag->propagation.accept(*dag);
    expectSettled();
  }

  void move(std::uint32_t nbFlips) {
    for (std::uint32_t k = 0; k < nbFlips; ++k) {
      const std::uint32_t decision = decisions[randomIndex(rng, nbDecisions())];
      test::flip(*dag, decision);
    }
    evaluate();
    const std::vector<OXValue> before = dag->values.copy();
    if (randomBool(rng)) {
      dag->propagation.accept(*dag);
    } else {
      dag->propagation.reject(*dag);
      for (std::uint32_t id = 0; id < before.size(); ++id)
        ASSERT_EQ(dag->values[id].intValue, before[id].intValue);
    }
    expectSettled();
  }

  std::uint32_t nbDecisions() const { return static_cast<std::uint32_t>(decisions.size()); }

private:
  std::uint32_t makeOperand(std::uint32_t i) {
    using enum Family::Operands;
    const std::uint32_t first = decide();
    if (family.operands == Booleans || (family.operands == Factors && i >= 6)) return first;
    return graph.node(NodeType::ScalarSum, {first, decide()},
                      {static_cast<std::int64_t>(randomIndex(rng, 4)) + 1, -2});
  }

  std::uint32_t decide() {
    decisions.push_back(graph.boolean());
    return decisions.back();
  }

  std::int64_t expected(const NodeValues& values) const {
    std::vector<std::int64_t> terms;
    for (std::uint32_t i = 0; i < n; ++i) {
      const std::int64_t value = values[operands[i]].intValue;
      terms.push_back(family.scalars == Family::Scalars::All ? value * scalars[i] : value);
    }
    return family.value(terms, family.scalars == Family::Scalars::One ? scalars[0] : 1);
  }

  void evaluate() {
    ASSERT_TRUE(dag->propagation.evaluateConstraints(*dag));
    ASSERT_TRUE(dag->propagation.evaluateLevels(*dag, 1));
    ASSERT_EQ(dag->tValues[node].intValue, expected(dag->tValues));
  }

  void expectSettled() {
    ASSERT_EQ(dag->values[node].intValue, expected(dag->values));
    ASSERT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  }

  const Family& family;
  const std::uint32_t n;
  std::uint32_t rng;
  GraphBuilder graph;
  std::vector<std::uint32_t> decisions;
  std::vector<std::uint32_t> operands;
  std::vector<std::int64_t> scalars;
  std::uint32_t node = 0;
  std::unique_ptr<Dag> dag;
};

class FamilyTest : public testing::TestWithParam<std::tuple<std::size_t, std::uint32_t>> {
protected:
  const Family& family() const { return families()[std::get<0>(GetParam())]; }
  std::uint32_t width() const { return std::get<1>(GetParam()); }
};

TEST_P(FamilyTest, RandomMovesKeepItsMeaningFromAllZeros) {
  Walk walk(family(), width(), 11 + width());
  for (int i = 0; i < 40; ++i) {
    walk.move(1 + static_cast<std::uint32_t>(i) % 4);
    if (HasFatalFailure()) return;
  }
}

TEST_P(FamilyTest, RandomMovesKeepItsMeaningFromAllOnes) {
  Walk walk(family(), width(), 12 + width());
  walk.startAtOnes();
  for (int i = 0; i < 40; ++i) {
    walk.move(1 + static_cast<std::uint32_t>(i) % 3);
    if (HasFatalFailure()) return;
  }
  for (int i = 0; i < 8; ++i) {
    walk.move(walk.nbDecisions());
    if (HasFatalFailure()) return;
  }
}

std::string nameOf(const testing::TestParamInfo<FamilyTest::ParamType>& tested) {
  return std::string(families()[std::get<0>(tested.param)].name) + "Of" +
         std::to_string(std::get<1>(tested.param));
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, FamilyTest,
                         testing::Combine(testing::Range<std::size_t>(0, 12), test::everyWidth()),
                         nameOf);

class WidestFamilyTest : public FamilyTest {};

TEST_P(WidestFamilyTest, RandomMovesKeepItsMeaning) {
  Walk walk(family(), width(), 13);
  walk.startAtOnes();
  for (int i = 0; i < 4; ++i) {
    walk.move(3);
    if (HasFatalFailure()) return;
  }
  walk.move(walk.nbDecisions());
}

INSTANTIATE_TEST_SUITE_P(Widest, WidestFamilyTest,
                         testing::Combine(testing::Values(0, 1, 4, 8), test::widestWidths()),
                         nameOf);

}  // namespace
}  // namespace ombrix
