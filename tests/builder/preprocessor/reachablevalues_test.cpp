// The passes against the plain meaning of small random models: every assignment is tried. What a
// rule leaves out on purpose is told by hasException and tested beside its pass.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <string>

#include "builder/preprocessor/boundscalculator.h"
#include "builder/preprocessor/boundsinferrer.h"
#include "builder/preprocessor/constantfinder.h"
#include "builder/preprocessor/unaryfinder.h"
#include "support/smallmodel.h"

namespace ombrix {
namespace {

using test::SmallModel;

bool isDouble(const OXExpression& e) {
  return ModelRecord::valueType(e) == kDoubleType;
}

bool isInfinite(DoubleInterval x) {
  return std::isinf(x.low) || std::isinf(x.high);
}

constexpr std::size_t kNbOperators = 34;

/// The passes on one model, step by step.
class Passes {
public:
  Passes(std::uint32_t seedOfModel, std::uint32_t maxDecisions)
      : seed(seedOfModel), small(seedOfModel, maxDecisions), p(small.passModel().start()) {}

  /// False if the model is one of those that the rules treat apart, or has no value anywhere.
  bool calculate() {
    errno = 0;
    try {
      BoundsCalculator(p).run();
    } catch (const OXException&) {
      return false;
    }
    for (const OXExpression* e : small.expressions()) {
      if (small.isReachable(*e) && (hasException(*e) || isTooLarge(*e))) return false;
    }
    return true;
  }

  void infer() { BoundsInferrer(p).run(); }

  /// False if an evaluation failed.
  bool findConstants() {
    errno = 0;
    try {
      ConstantFinder(p).run();
    } catch (const OXException&) {
      return false;
    }
    return true;
  }

  /// False if a quotient was replaced by its divisor.
  bool findUnaries() {
    UnaryFinder(p).run();
    return std::none_of(small.expressions().begin(), small.expressions().end(),
                        [this](const OXExpression* e) {
                          return ModelRecord::op(*e) == OXOperator::Div && &p.canonical(*e) != e;
                        });
  }

  /// Expects that every value that occurs lies within the bounds, and is the bound where the
  /// expression is fixed. Returns the number of assignments tried.
  int expectValuesWithinBounds(bool feasibleOnly) {
    int nbAssignments = 0;
    small.forEachAssignment([&](const std::vector<OXValue>& values) {
      if (feasibleOnly && !small.isFeasible(values)) return;
      ++nbAssignments;
      for (const OXExpression* e : small.expressions()) expectWithinBounds(*e, values);
    });
    return nbAssignments;
  }

  void expectSameValues() {
    small.forEachAssignment([&](const std::vector<OXValue>& values) {
      if (!small.isFeasible(values)) return;
      for (const OXExpression* e : small.expressions()) {
        if (!small.isReachable(*e) || ModelRecord::op(*e) == OXOperator::Array) continue;
        EXPECT_TRUE(
            isClose(SmallModel::read(*e, values), SmallModel::read(p.canonical(*e), values)))
            << describe(*e);
      }
    });
  }

  int nbFixed() const { return static_cast<int>(std::count(p.fixed.begin(), p.fixed.end(), true)); }
  int nbReplaced() {
    int result = 0;
    for (const OXExpression* e : small.expressions()) result += &p.canonical(*e) != e ? 1 : 0;
    return result;
  }
  /// The number of reachable numbers that are known to be in a bounded interval.
  double totalWidth() {
    double result = 0.0;
    for (const OXExpression* e : small.expressions()) {
      const DoubleInterval x = p.doubleBounds(Preprocessor::at(*e));
      if (small.isReachable(*e) && !isInfinite(x)) result += x.high - x.low;
    }
    return result;
  }
  bool isInconsistent() const { return !p.conflicts.empty(); }
  std::size_t nbDecisions() { return ModelRecord::decisions(small.passModel().getModel()).size(); }
  /// Counts the reachable expressions of each operator.
  void countOperators(std::array<int, kNbOperators>& counts) {
    for (const OXExpression* e : small.expressions()) {
      if (small.isReachable(*e)) ++counts[static_cast<std::size_t>(ModelRecord::op(*e))];
    }
  }

private:
  /// The rules that are required though some value lies outside their result.
  bool hasException(const OXExpression& e) {
    switch (ModelRecord::op(e)) {
      case OXOperator::At:
        return !isDouble(e) && leavesPositionOut(e);
      case OXOperator::Pow:
        return hasNarrowPower(e);
      case OXOperator::Div:
        return isDouble(e) && isInfinite(operandBounds(e, 0)) && isInfinite(operandBounds(e, 1));
      default:
        return false;
    }
  }

  bool leavesPositionOut(const OXExpression& e) {
    const DoubleInterval index = operandBounds(e, 1);
    const double size = ModelRecord::nbOperands(*ModelRecord::operand(e, 0));
    return index.high >= 0.0 && index.high < size && index.low < index.high;
  }

  bool hasNarrowPower(const OXExpression& e) {
    const DoubleInterval base = operandBounds(e, 0);
    const DoubleInterval exponent = operandBounds(e, 1);
    if (exponent.low < 0.0) return true;
    const bool isSmall = std::max(std::fabs(base.low), std::fabs(base.high)) < 1.0;
    return isSmall && !isDouble(*ModelRecord::operand(e, 1));
  }

  /// Where sums lose digits or integers could wrap, bounds and values part.
  bool isTooLarge(const OXExpression& e) {
    if (ModelRecord::op(e) == OXOperator::Array || ModelRecord::op(e) == OXOperator::Scalar) {
      return false;
    }
    const DoubleInterval x = p.doubleBounds(Preprocessor::at(e));
    for (const double end : {x.low, x.high}) {
      if (isDouble(e) && std::isinf(end)) continue;
      if (std::fabs(end) > 1e6) return true;
    }
    return false;
  }

  DoubleInterval operandBounds(const OXExpression& e, std::int32_t position) {
    return p.doubleBounds(Preprocessor::at(*ModelRecord::operand(e, position)));
  }

  void expectWithinBounds(const OXExpression& e, const std::vector<OXValue>& values) {
    if (!small.isReachable(e) || ModelRecord::op(e) == OXOperator::Array) return;
    const DoubleInterval x = p.doubleBounds(Preprocessor::at(e));
    const double value = SmallModel::read(e, values);
    EXPECT_TRUE(value >= x.low || (isDouble(e) && isClose(value, x.low)))
        << value << " below " << x.low << describe(e);
    EXPECT_TRUE(value <= x.high || (isDouble(e) && isClose(value, x.high)))
        << value << " above " << x.high << describe(e);
    if (p.isFixed(e)) {
      EXPECT_TRUE(isClose(value, x.low)) << value << " is not " << x.low << describe(e);
    }
  }

  static bool isClose(double a, double b) { return approxEqual(a, b) || std::fabs(a - b) < 1e-6; }

  std::string describe(const OXExpression& e) const {
    return " at " + e.toString() + " in the model of seed " + std::to_string(seed);
  }

  std::uint32_t seed;
  SmallModel small;
  Preprocessor& p;
};

/// What happened over many models, so that a test cannot pass by looking at nothing.
struct Tally {
  int nbModels = 0;
  int nbFeasible = 0;
  int nbInconsistent = 0;
  int nbNarrowed = 0;
  int nbFixed = 0;
  int nbReplaced = 0;
  std::array<int, kNbOperators> nbOfOperators{};
};

void checkModel(std::uint32_t seed, std::uint32_t maxDecisions, Tally& tally,
                std::size_t minDecisions = 1) {
  Passes passes(seed, maxDecisions);
  if (passes.nbDecisions() < minDecisions || !passes.calculate()) return;
  ++tally.nbModels;
  passes.countOperators(tally.nbOfOperators);
  passes.expectValuesWithinBounds(false);
  const double width = passes.totalWidth();
  passes.infer();
  tally.nbNarrowed += passes.totalWidth() < width ? 1 : 0;
  const int nbFeasible = passes.expectValuesWithinBounds(true);
  if (passes.isInconsistent()) {
    EXPECT_EQ(nbFeasible, 0) << "seed " << seed;
    ++tally.nbInconsistent;
    return;
  }
  const int nbFixed = passes.nbFixed();
  const bool hasValues = passes.findConstants();
  if (!hasValues) {
    EXPECT_EQ(nbFeasible, 0) << "seed " << seed;
    return;
  }
  tally.nbFeasible += nbFeasible > 0 ? 1 : 0;
  tally.nbFixed += passes.nbFixed() > nbFixed ? 1 : 0;
  passes.expectValuesWithinBounds(true);
  if (!passes.findUnaries()) return;
  tally.nbReplaced += passes.nbReplaced() > 0 ? 1 : 0;
  passes.expectSameValues();
}

TEST(ReachableValues, LieWithinTheBoundsOfEveryPass) {
  Tally tally;
  for (std::uint32_t seed = 1; seed <= 4000 && !testing::Test::HasFailure(); ++seed) {
    checkModel(seed, 5, tally);
  }
  EXPECT_GT(tally.nbModels, 1500);
  EXPECT_GT(tally.nbFeasible, 500);
  EXPECT_GT(tally.nbInconsistent, 50);
  EXPECT_GT(tally.nbNarrowed, 200);
  EXPECT_GT(tally.nbFixed, 50);
  EXPECT_GT(tally.nbReplaced, 200);
  for (std::size_t op = 0; op < kNbOperators; ++op) {
    EXPECT_GT(tally.nbOfOperators[op], 10) << "operator " << op;
  }
}

TEST(ReachableValues, LieWithinTheBoundsOfModelsOfTenDecisions) {
  Tally tally;
  for (std::uint32_t seed = 100001; seed <= 100060 && !testing::Test::HasFailure(); ++seed) {
    checkModel(seed, 10, tally);
  }
  EXPECT_GT(tally.nbModels, 20);
}

TEST(ReachableValues, LieWithinTheBoundsOfModelsOfUpToFourteenDecisions) {
  Tally tally;
  // Seeds next to each other begin with the same number of decisions.
  for (std::uint32_t i = 1; i <= 150 && !testing::Test::HasFailure(); ++i) {
    checkModel(i * 2654435761U, 14, tally, 12);
  }
  EXPECT_GT(tally.nbModels, 10);
  EXPECT_GT(tally.nbFeasible, 5);
}

}  // namespace
}  // namespace ombrix
