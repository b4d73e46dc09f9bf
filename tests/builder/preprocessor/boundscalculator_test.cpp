#include "builder/preprocessor/boundscalculator.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "solver/kernel/saturating.h"
#include "support/failures.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

using test::ints;
using test::kInf;
using test::PassModel;
using test::reals;

/// A model with one objective over leaves, on which the pass has run.
class BoundsCalculatorTest : public testing::Test {
protected:
  void SetUp() override { errno = 0; }

  /// The interval of an operator over leaves with these intervals.
  IntInterval onInts(OXOperator op, const std::vector<IntInterval>& operands) {
    const std::vector<OXExpression*> fresh = leaves(operands);
    return model->ints(calculate(model->make(op, fresh)));
  }
  IntInterval onBools(OXOperator op, const std::vector<IntInterval>& operands) {
    const std::vector<OXExpression*> fresh = booleans(operands);
    return model->ints(calculate(model->make(op, fresh)));
  }
  DoubleInterval onReals(OXOperator op, const std::vector<DoubleInterval>& operands) {
    const std::vector<OXExpression*> fresh = leaves(operands);
    return model->reals(calculate(model->make(op, fresh)));
  }

  OXExpression* calculate(OXExpression* e) {
    model->minimize(e);
    BoundsCalculator(model->start()).run();
    return e;
  }

  void restart() { model = std::make_unique<PassModel>(); }

  std::vector<OXExpression*> leaves(const std::vector<IntInterval>& bounds) {
    restart();
    std::vector<OXExpression*> result;
    for (const IntInterval& x : bounds) result.push_back(model->integer(x.low, x.high));
    return result;
  }
  std::vector<OXExpression*> leaves(const std::vector<DoubleInterval>& bounds) {
    restart();
    std::vector<OXExpression*> result;
    for (const DoubleInterval& x : bounds) result.push_back(model->real(x.low, x.high));
    return result;
  }
  std::vector<OXExpression*> booleans(const std::vector<IntInterval>& bounds) {
    restart();
    std::vector<OXExpression*> result;
    for (const IntInterval& x : bounds) result.push_back(model->boolean(x.low, x.high));
    return result;
  }

  std::unique_ptr<PassModel> model = std::make_unique<PassModel>();
};

const IntInterval kFree = {0, 1};
const IntInterval kFalse = {0, 0};
const IntInterval kTrue = {1, 1};

TEST_F(BoundsCalculatorTest, SumsSaturate) {
  EXPECT_EQ(onInts(OXOperator::Sum, {ints(-1, 2), ints(3, 5)}), ints(2, 7));
  EXPECT_EQ(onInts(OXOperator::Sum, {ints(kIntMax, kIntMax), ints(0, 1)}), ints(kIntMax, kIntMax));
  EXPECT_EQ(onInts(OXOperator::Sum, {ints(kIntMin, 0), ints(-3, kIntMax)}), ints(kIntMin, kIntMax));
}

TEST_F(BoundsCalculatorTest, DoubleSums) {
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(-1.5, 2.0), reals(3.0, 5.0)}), reals(1.5, 7.0));
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(0.0, kInf), reals(1.0, 2.0)}), reals(1.0, kInf));
}

TEST_F(BoundsCalculatorTest, AnOperandThatIsPlusInfinityDecidesADoubleSum) {
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(kInf, kInf), reals(-kInf, 0.0)}), reals(kInf, kInf));
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(-kInf, -kInf), reals(kInf, kInf)}), reals(kInf, kInf));
}

TEST_F(BoundsCalculatorTest, AnOperandThatIsMinusInfinityDoesNotEndTheScan) {
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(0.0, 1.0), reals(-kInf, -kInf), reals(1.0, 2.0)}),
            reals(-kInf, -kInf));
  EXPECT_EQ(onReals(OXOperator::Sum, {reals(-kInf, -kInf), reals(0.0, kInf)}), reals(-kInf, kInf))
      << "the sum of opposite infinities has no value and leaves the bounds";
}

TEST_F(BoundsCalculatorTest, Products) {
  EXPECT_EQ(onInts(OXOperator::Prod, {ints(-2, 3), ints(-5, 1)}), ints(-15, 10));
  EXPECT_EQ(onInts(OXOperator::Prod, {ints(2, 3), ints(-5, -1), ints(0, 2)}), ints(-30, 0));
  EXPECT_EQ(onReals(OXOperator::Prod, {reals(-2.0, 3.0), reals(-5.0, 1.0)}), reals(-15.0, 10.0));
  EXPECT_EQ(onReals(OXOperator::Prod, {reals(0.0, kInf), reals(1.0, 2.0)}), reals(-kInf, kInf));
}

TEST_F(BoundsCalculatorTest, Extremes) {
  EXPECT_EQ(onInts(OXOperator::Max, {ints(-1, 2), ints(0, 1)}), ints(0, 2));
  EXPECT_EQ(onInts(OXOperator::Min, {ints(-1, 2), ints(0, 1)}), ints(-1, 1));
  EXPECT_EQ(onReals(OXOperator::Max, {reals(-1.0, 2.0), reals(0.0, 1.0)}), reals(0.0, 2.0));
  EXPECT_EQ(onReals(OXOperator::Min, {reals(-1.0, 2.0), reals(0.0, 1.0)}), reals(-1.0, 1.0));
}

TEST_F(BoundsCalculatorTest, IntegerComparisons) {
  const std::vector<IntInterval> below = {ints(0, 2), ints(3, 5)};
  const std::vector<IntInterval> same = {ints(4, 4), ints(4, 4)};
  const std::vector<IntInterval> overlapping = {ints(0, 3), ints(3, 5)};
  EXPECT_EQ(onInts(OXOperator::Eq, below), kFalse);
  EXPECT_EQ(onInts(OXOperator::Eq, same), kTrue);
  EXPECT_EQ(onInts(OXOperator::Eq, overlapping), kFree);
  EXPECT_EQ(onInts(OXOperator::Neq, below), kTrue);
  EXPECT_EQ(onInts(OXOperator::Neq, same), kFalse);
  EXPECT_EQ(onInts(OXOperator::Neq, overlapping), kFree);
  EXPECT_EQ(onInts(OXOperator::Geq, below), kFalse);
  EXPECT_EQ(onInts(OXOperator::Geq, same), kTrue);
  EXPECT_EQ(onInts(OXOperator::Geq, overlapping), kFree);
  EXPECT_EQ(onInts(OXOperator::Leq, below), kTrue);
  EXPECT_EQ(onInts(OXOperator::Leq, overlapping), kTrue);
  EXPECT_EQ(onInts(OXOperator::Gt, same), kFalse);
  EXPECT_EQ(onInts(OXOperator::Gt, overlapping), kFalse);
  EXPECT_EQ(onInts(OXOperator::Lt, below), kTrue);
  EXPECT_EQ(onInts(OXOperator::Lt, overlapping), kFree);
  EXPECT_EQ(onInts(OXOperator::Lt, same), kFalse);
}

TEST_F(BoundsCalculatorTest, DoubleComparisonsForgiveTheTolerance) {
  const std::vector<DoubleInterval> almost = {reals(1.0, 1.0), reals(1.0 + 1e-7, 1.0 + 1e-7)};
  restart();
  const auto compare = [this](OXOperator op, const std::vector<DoubleInterval>& operands) {
    const auto both = leaves(operands);
    return model->ints(calculate(model->make(op, both)));
  };
  EXPECT_EQ(compare(OXOperator::Eq, almost), kTrue);
  EXPECT_EQ(compare(OXOperator::Neq, almost), kFalse);
  EXPECT_EQ(compare(OXOperator::Geq, almost), kTrue);
  EXPECT_EQ(compare(OXOperator::Leq, almost), kTrue);
  EXPECT_EQ(compare(OXOperator::Gt, almost), kFalse);
  EXPECT_EQ(compare(OXOperator::Lt, almost), kFalse);
  EXPECT_EQ(compare(OXOperator::Eq, {reals(0.0, 1.0), reals(1.5, 2.0)}), kFalse);
  EXPECT_EQ(compare(OXOperator::Neq, {reals(0.0, 1.0), reals(1.5, 2.0)}), kTrue);
  EXPECT_EQ(compare(OXOperator::Lt, {reals(0.0, 1.0), reals(0.5, 2.0)}), kFree);
}

TEST_F(BoundsCalculatorTest, AComparisonOfAnIntegerAndADoubleIsADoubleOne) {
  OXExpression* x = model->integer(1, 1);
  OXExpression* y = model->real(1.0 + 1e-7, 1.0 + 1e-7);
  EXPECT_EQ(model->ints(calculate(model->make(OXOperator::Eq, {x, y}))), kTrue);
}

TEST_F(BoundsCalculatorTest, AConditionalIsItsSelectedBranchOrTheHull) {
  for (const auto& [condition, expected] : std::vector<std::pair<IntInterval, IntInterval>>{
           {kTrue, ints(2, 4)}, {kFalse, ints(-3, 7)}, {kFree, ints(-3, 7)}}) {
    restart();
    OXExpression* e = model->make(OXOperator::Iif, {model->boolean(condition.low, condition.high),
                                                    model->integer(2, 4), model->integer(-3, 7)});
    EXPECT_EQ(model->ints(calculate(e)), expected);
  }
}

TEST_F(BoundsCalculatorTest, ADoubleConditionalReadsItsBranchesAsDoubles) {
  OXExpression* e = model->make(OXOperator::Iif,
                                {model->boolean(), model->integer(2, 4), model->real(-0.5, 1.0)});
  EXPECT_EQ(model->reals(calculate(e)), reals(-0.5, 4.0));
}

TEST_F(BoundsCalculatorTest, ABooleanConditional) {
  EXPECT_EQ(onBools(OXOperator::Iif, {kTrue, kTrue, kFalse}), kTrue);
  EXPECT_EQ(onBools(OXOperator::Iif, {kFalse, kTrue, kFalse}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Iif, {kFree, kTrue, kFalse}), kFree);
  EXPECT_EQ(onBools(OXOperator::Iif, {kFree, kTrue, kTrue}), kTrue);
  EXPECT_EQ(onBools(OXOperator::Iif, {kFree, kFalse, kFalse}), kFalse);
}

TEST_F(BoundsCalculatorTest, LogicalOperators) {
  EXPECT_EQ(onBools(OXOperator::Not, {kFalse}), kTrue);
  EXPECT_EQ(onBools(OXOperator::Not, {kTrue}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Not, {kFree}), kFree);
  EXPECT_EQ(onBools(OXOperator::And, {kTrue, kTrue}), kTrue);
  EXPECT_EQ(onBools(OXOperator::And, {kTrue, kFree}), kFree);
  EXPECT_EQ(onBools(OXOperator::And, {kFree, kFalse}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Or, {kFalse, kFalse}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Or, {kFalse, kFree}), kFree);
  EXPECT_EQ(onBools(OXOperator::Or, {kFree, kTrue}), kTrue);
}

TEST_F(BoundsCalculatorTest, AnExclusiveOrIsKnownWhenAllOperandsAgree) {
  EXPECT_EQ(onBools(OXOperator::Xor, {kFalse, kFalse}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Xor, {kTrue, kTrue}), kFalse);
  EXPECT_EQ(onBools(OXOperator::Xor, {kTrue, kTrue, kTrue}), kTrue);
  EXPECT_EQ(onBools(OXOperator::Xor, {kTrue, kFalse}), kFree) << "all known, but not alike";
}

TEST_F(BoundsCalculatorTest, AbsoluteValuesAndDistances) {
  EXPECT_EQ(onInts(OXOperator::Abs, {ints(-5, 3)}), ints(0, 5));
  EXPECT_EQ(onInts(OXOperator::Abs, {ints(kIntMin, -2)}), ints(2, kIntMax));
  EXPECT_EQ(onReals(OXOperator::Abs, {reals(-5.0, -3.0)}), reals(3.0, 5.0));
  EXPECT_EQ(onInts(OXOperator::Dist, {ints(0, 2), ints(5, 9)}), ints(3, 9));
  EXPECT_EQ(onReals(OXOperator::Dist, {reals(5.0, 9.0), reals(0.0, 2.0)}), reals(3.0, 9.0));
}

TEST_F(BoundsCalculatorTest, QuotientsAndRemainders) {
  EXPECT_EQ(onInts(OXOperator::Div, {ints(-7, 12), ints(2, 3)}), ints(-3, 6));
  EXPECT_EQ(onReals(OXOperator::Div, {reals(-1.0, 2.0), reals(2.0, 4.0)}), reals(-0.5, 1.0));
  EXPECT_EQ(onInts(OXOperator::Mod, {ints(0, 10), ints(3, 3)}), ints(0, 2));
  EXPECT_EQ(onInts(OXOperator::Mod, {ints(-10, 10), ints(3, 3)}), ints(-2, 10));
}

TEST_F(BoundsCalculatorTest, ADivisorThatCanOnlyBeZeroFails) {
  test::expectFailure(5, "BoundsCalculator::divIntBounds", "Division by zero.", [this] {
    onInts(OXOperator::Div, {ints(1, 2), ints(0, 0)});
  });
  test::expectFailure(5, "BoundsCalculator::divDoubleBounds", "Division by zero.", [this] {
    onReals(OXOperator::Div, {reals(1.0, 2.0), reals(0.0, 0.0)});
  });
  test::expectFailure(5, "BoundsCalculator::modBounds", "Division by zero.", [this] {
    onInts(OXOperator::Mod, {ints(1, 2), ints(0, 0)});
  });
}

TEST_F(BoundsCalculatorTest, RoundingOfDoublesAndOfIntegers) {
  const auto round = [this](OXOperator op, DoubleInterval x) {
    const auto operands = leaves(std::vector<DoubleInterval>{x});
    return model->ints(calculate(model->make(op, operands)));
  };
  EXPECT_EQ(round(OXOperator::Ceil, reals(1.2, 3.0000005)), ints(2, 3));
  EXPECT_EQ(round(OXOperator::Floor, reals(1.9999995, 3.7)), ints(2, 3));
  EXPECT_EQ(round(OXOperator::Round, reals(0.5, 0.5)), ints(1, 1));
  EXPECT_EQ(round(OXOperator::Ceil, reals(-kInf, kInf)), ints(kIntMin, kIntMax));
  EXPECT_EQ(onInts(OXOperator::Floor, {ints(-3, 4)}), ints(-3, 4));
}

TEST_F(BoundsCalculatorTest, FunctionsOfDoubles) {
  EXPECT_EQ(onReals(OXOperator::Sqrt, {reals(-4.0, 9.0)}), reals(0.0, 3.0));
  EXPECT_EQ(onReals(OXOperator::Log, {reals(-1.0, 1.0)}), reals(-kInf, 0.0));
  EXPECT_EQ(onReals(OXOperator::Exp, {reals(-kInf, 0.0)}), reals(0.0, 1.0));
  EXPECT_EQ(onReals(OXOperator::Cos, {reals(0.0, 2.0)}), reals(-1.0, 1.0));
  EXPECT_EQ(onReals(OXOperator::Cos, {reals(0.0, 0.0)}), reals(1.0, 1.0));
  EXPECT_EQ(onReals(OXOperator::Sin, {reals(0.0, 0.0)}), reals(0.0, 0.0));
  EXPECT_EQ(onReals(OXOperator::Tan, {reals(-1.0, 1.0)}), reals(std::tan(-1.0), std::tan(1.0)));
  EXPECT_EQ(onReals(OXOperator::Tan, {reals(1.0, 2.0)}), reals(-kInf, kInf));
}

TEST_F(BoundsCalculatorTest, APointOfACosineIsFixed) {
  OXExpression* e = model->make(OXOperator::Cos, {model->real(2.0, 2.0)});
  calculate(e);
  EXPECT_EQ(model->reals(e), reals(std::cos(2.0), std::cos(2.0)));
  EXPECT_TRUE(model->isFixed(e));
}

TEST_F(BoundsCalculatorTest, FunctionsWithoutValueFailByTheirOwnName) {
  test::expectFailure(5, "MathDouble::sin", "Invalid sine operation (NaN or infinity provided)",
                      [this] { onReals(OXOperator::Sin, {reals(kInf, kInf)}); });
}

TEST_F(BoundsCalculatorTest, PowersGoByTheTypeOfTheExponent) {
  OXExpression* base = model->real(-2.0, 3.0);
  OXExpression* e = model->make(OXOperator::Pow, {base, model->integer(0, 2)});
  EXPECT_EQ(model->reals(calculate(e)), reals(-9.0, 9.0));
  EXPECT_EQ(onReals(OXOperator::Pow, {reals(0.5, 2.0), reals(2.0, 3.0)}), reals(0.125, 8.0));
}

/// Three elements and an index.
OXExpression* makeAt(PassModel& m, const std::vector<OXExpression*>& elements,
                     OXExpression* index) {
  return m.make(OXOperator::At, {m.array(elements), index});
}

TEST_F(BoundsCalculatorTest, AnIntegerAtLeavesThePositionOfTheUpperBoundOut) {
  const auto hullAt = [this](IntInterval index) {
    restart();
    return model->ints(calculate(
        makeAt(*model, {model->integer(0, 1), model->integer(10, 11), model->integer(20, 21)},
               model->integer(index.low, index.high))));
  };
  EXPECT_EQ(hullAt(ints(0, 2)), ints(0, 11));
  EXPECT_EQ(hullAt(ints(0, 3)), ints(0, 21));
  EXPECT_EQ(hullAt(ints(1, 2)), ints(10, 11));
  EXPECT_EQ(hullAt(ints(-5, 9)), ints(0, 21));
  EXPECT_EQ(hullAt(ints(1, 1)), ints(kIntMin, kIntMax)) << "nothing lies between equal ends";
  EXPECT_EQ(hullAt(ints(5, 9)), ints(kIntMin, kIntMax));
  EXPECT_EQ(hullAt(ints(-5, -1)), ints(kIntMin, kIntMax));
}

TEST_F(BoundsCalculatorTest, ADoubleAtTakesBothEndsIn) {
  const auto hullAt = [this](IntInterval index) {
    restart();
    return model->reals(calculate(
        makeAt(*model, {model->real(0.5, 1.0), model->integer(10, 11), model->real(20.5, 21.0)},
               model->integer(index.low, index.high))));
  };
  EXPECT_EQ(hullAt(ints(0, 1)), reals(0.5, 11.0));
  EXPECT_EQ(hullAt(ints(1, 2)), reals(10.0, 21.0));
  EXPECT_EQ(hullAt(ints(1, 1)), reals(-kInf, kInf));
}

TEST_F(BoundsCalculatorTest, ThePositionPastTheEndOfADoubleArrayIsTheLastElement) {
  const auto hullAt = [this](IntInterval index) {
    restart();
    return model->reals(calculate(makeAt(*model, {model->real(0.5, 1.0), model->real(20.5, 21.0)},
                                         model->integer(index.low, index.high))));
  };
  EXPECT_EQ(hullAt(ints(1, 2)), reals(20.5, 21.0));
  EXPECT_EQ(hullAt(ints(0, 9)), reals(0.5, 21.0));
}

TEST_F(BoundsCalculatorTest, AnEmptyArrayTellsNothing) {
  OXExpression* e = makeAt(*model, {}, model->integer(-1, 3));
  EXPECT_EQ(model->ints(calculate(e)), ints(kIntMin, kIntMax));
}

TEST_F(BoundsCalculatorTest, EveryPointIsFixed) {
  OXExpression* point = model->make(OXOperator::Sum, {model->integer(2, 2), model->integer(3, 3)});
  OXExpression* root = model->make(OXOperator::Max, {point, model->integer(0, 9)});
  calculate(root);
  EXPECT_TRUE(model->isFixed(point));
  EXPECT_FALSE(model->isFixed(root));
}

TEST_F(BoundsCalculatorTest, AnArrayIsNeverFixed) {
  OXExpression* array = model->array({model->boolean()});
  calculate(model->make(OXOperator::At, {array, model->boolean()}));
  EXPECT_FALSE(model->isFixed(array));
}

TEST_F(BoundsCalculatorTest, AContradictionKeepsTheBoundsAndGoesOn) {
  OXExpression* b = model->boolean(1, 1);
  OXExpression* e = model->make(OXOperator::Not, {b});
  OXExpression* root = model->make(OXOperator::Sum, {e, b});
  model->minimize(root);
  Preprocessor& p = model->start();
  p.fixTo(Preprocessor::at(*e), 1);
  BoundsCalculator(p).run();
  EXPECT_EQ(model->conflicts(), std::vector<OXExpression*>{e});
  EXPECT_EQ(model->ints(root), ints(2, 2));
}

TEST_F(BoundsCalculatorTest, WhatNoRootReachesKeepsItsBounds) {
  OXExpression* unreached = model->make(OXOperator::Sum, {model->boolean()});
  calculate(model->make(OXOperator::Sum, {model->boolean()}));
  EXPECT_EQ(model->ints(unreached), ints(kIntMin, kIntMax));
}

TEST_F(BoundsCalculatorTest, OperandsComeFirstHoweverDeepAndShared) {
  OXExpression* e = model->boolean();
  for (int depth = 0; depth < 40; ++depth) e = model->make(OXOperator::Sum, {e, e});
  EXPECT_EQ(model->ints(calculate(e)), ints(0, std::int64_t{1} << 40));
}

}  // namespace
}  // namespace ombrix
