#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

/// One family of double nodes over position sets, with its value in plain terms.
struct Family {
  const char* name;
  NodeType type;
  bool isProduct;
  bool hasScalars;
  std::function<double(const std::vector<double>& terms)> value;
};

double sumOf(const std::vector<double>& terms) {
  double sum = 0.0;
  for (double term : terms) sum += term;
  return sum;
}

double productOf(const std::vector<double>& terms) {
  double product = 1.0;
  for (double term : terms) product *= term;
  return product;
}

double largest(const std::vector<double>& terms) {
  return *std::max_element(terms.begin(), terms.end());
}

double smallest(const std::vector<double>& terms) {
  return *std::min_element(terms.begin(), terms.end());
}

const std::vector<Family>& families() {
  static const std::vector<Family> all = {
      {"Sum", NodeType::DoubleSum, false, false, sumOf},
      {"ScalarSum", NodeType::DoubleScalarSum, false, true, sumOf},
      {"Product", NodeType::DoubleProduct, true, false, productOf},
      {"ScalarProduct", NodeType::DoubleScalarProduct, true, true, productOf},
      {"Max", NodeType::DoubleMax, false, false, largest},
      {"ScalarMax", NodeType::DoubleScalarMax, false, true, largest},
      {"Min", NodeType::DoubleMin, false, false, smallest},
      {"ScalarMin", NodeType::DoubleScalarMin, false, true, smallest},
  };
  return all;
}

/// A node of one family and width over floats and booleans, walked by random moves and compared
/// with the plain meaning of the family.
class Walk {
public:
  Walk(const Family& walked, std::uint32_t nbOperands, std::uint32_t seed)
      : family(walked), n(nbOperands), rng(seed) {
    for (std::uint32_t i = 0; i < n; ++i) operands.push_back(makeOperand(i));
    if (n > 3) operands[n - 1] = operands[0];
    if (family.isProduct && family.hasScalars) scalars = {-1.5};
    for (std::uint32_t i = 0; i < n && !family.isProduct && family.hasScalars; ++i)
      scalars.push_back(0.5 * static_cast<double>(randomIndex(rng, 7)) - 1.5);
    node = graph.minimise(graph.doubleNode(family.type, operands, scalars));
    dag = graph.makeDag();
    for (std::uint32_t operand : operands) {
      dag->values[operand] = dag->fixedFields->domains[operand] == kDoubleDomain
                                 ? OXValue::ofDouble(1.0)
                                 : OXValue::ofInt(1);
      dag->nodes[operand]->init(*dag, operand);
    }
    dag->nodes[node]->init(*dag, node);
  }

  void move(std::uint32_t nbChanges) {
    for (std::uint32_t k = 0; k < nbChanges; ++k) write(operands[randomIndex(rng, n)]);
    evaluate();
    const std::vector<OXValue> before = dag->values.copy();
    if (randomPercent(rng, 70)) {
      dag->propagation.accept(*dag);
    } else {
      dag->propagation.reject(*dag);
      for (std::uint32_t id = 0; id < before.size(); ++id)
        ASSERT_EQ(dag->values[id].intValue, before[id].intValue);
    }
    expectNear(dag->values, "committed");
    ASSERT_TRUE(dag->nodes[node]->isConsistent(*dag, node));
  }

  std::uint32_t width() const { return n; }

private:
  std::uint32_t makeOperand(std::uint32_t i) {
    if (!family.isProduct) return i % 5 == 4 ? graph.boolean() : graph.floating(-2, 3);
    // Few factors can be 0, so that the product is not 0 most of the time.
    if (i == 4) return graph.boolean();
    return i < 3 ? graph.floating(0, 2) : graph.floating(0.5, 1.5);
  }

  void write(std::uint32_t decision) {
    if (dag->fixedFields->domains[decision] != kDoubleDomain) {
      test::flip(*dag, decision);
      return;
    }
    const std::uint32_t kind = randomIndex(rng, 8);
    double value = 0.8 + 0.4 * randomUnit(rng);
    if (kind == 0) value = dag->fixedFields->minValues[decision].doubleValue;
    if (kind == 1) value = dag->fixedFields->maxValues[decision].doubleValue;
    if (kind == 2) value = 1.0;
    dag->propagation.setValue(*dag, decision, value);
  }

  std::vector<double> terms(const NodeValues& values) const {
    std::vector<double> result;
    for (std::uint32_t i = 0; i < n; ++i) {
      const double value = doubleValue(dag->fixedFields->domains[operands[i]], values[operands[i]]);
      result.push_back(!family.isProduct && family.hasScalars ? value * scalars[i] : value);
    }
    if (family.isProduct && family.hasScalars) result.push_back(scalars[0]);
    return result;
  }

  void expectNear(const NodeValues& values, const char* when) const {
    const std::vector<double> all = terms(values);
    const double expected = family.value(all);
    double size = 1.0;
    for (double term : all) size += std::fabs(term);
    if (family.isProduct) size = std::fabs(expected);
    ASSERT_NEAR(values[node].doubleValue, expected, 1e-12 * size) << when;
  }

  void evaluate() {
    ASSERT_TRUE(dag->propagation.evaluateConstraints(*dag));
    ASSERT_TRUE(dag->propagation.evaluateLevels(*dag, 1));
    expectNear(dag->tValues, "tentative");
  }

  const Family& family;
  const std::uint32_t n;
  std::uint32_t rng;
  GraphBuilder graph;
  std::vector<std::uint32_t> operands;
  std::vector<double> scalars;
  std::uint32_t node = 0;
  std::unique_ptr<Dag> dag;
};

class DoubleFamilyTest : public testing::TestWithParam<std::tuple<std::size_t, std::uint32_t>> {
protected:
  void walk(int nbMoves) {
    const auto [family, width] = GetParam();
    Walk walk(families()[family], width, 21 + width);
    for (int i = 0; i < nbMoves; ++i) {
      walk.move(i % 5 == 0 ? 2 * walk.width() : 1 + static_cast<std::uint32_t>(i) % 4);
      if (HasFatalFailure()) return;
    }
  }
};

TEST_P(DoubleFamilyTest, RandomMovesKeepItsMeaning) {
  walk(60);
}

std::string nameOf(const testing::TestParamInfo<DoubleFamilyTest::ParamType>& tested) {
  return std::string(families()[std::get<0>(tested.param)].name) + "Of" +
         std::to_string(std::get<1>(tested.param));
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, DoubleFamilyTest,
                         testing::Combine(testing::Range<std::size_t>(0, 8), test::everyWidth()),
                         nameOf);

class WidestDoubleFamilyTest : public DoubleFamilyTest {};

TEST_P(WidestDoubleFamilyTest, RandomMovesKeepItsMeaning) {
  walk(4);
}

INSTANTIATE_TEST_SUITE_P(Widest, WidestDoubleFamilyTest,
                         testing::Combine(testing::Values(1, 4), test::widestWidths()), nameOf);

}  // namespace
}  // namespace ombrix
