#include "builder/preprocessor/constantfinder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <limits>
#include <string>
#include <vector>

#include "support/failures.h"
#include "support/passmodel.h"

namespace ombrix {
namespace {

using test::ints;
using test::PassModel;
using test::reals;

class ConstantFinderTest : public testing::Test {
protected:
  void SetUp() override { errno = 0; }

  OXExpression* find(OXExpression* e) {
    model.minimize(e);
    ConstantFinder(model.start()).run();
    return e;
  }
  OXExpression* number(std::int64_t value) { return model.constant(value); }
  OXExpression* number(double value) { return model.constant(value); }

  PassModel model;
};

TEST_F(ConstantFinderTest, ADecisionWithEqualBoundsIsFixed) {
  OXExpression* known = model.boolean(1, 1);
  OXExpression* unknown = model.boolean();
  find(model.make(OXOperator::Sum, {known, unknown}));
  EXPECT_TRUE(model.isFixed(known));
  EXPECT_FALSE(model.isFixed(unknown));
}

TEST_F(ConstantFinderTest, FixedOperandsAreEvaluated) {
  OXExpression* e =
      find(model.make(OXOperator::Sum, {number(std::int64_t{3}), number(std::int64_t{4})}));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.ints(e), ints(7, 7));
}

TEST_F(ConstantFinderTest, FixedDoublesAreEvaluated) {
  OXExpression* e = find(model.make(OXOperator::Div, {number(1.5), number(std::int64_t{2})}));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.reals(e), reals(0.75, 0.75));
}

// As a sum is that was typed when it still had a double operand.
TEST_F(ConstantFinderTest, ADoubleSumOfFixedIntegersIsFixedAtADouble) {
  OXExpression* e = model.make(OXOperator::Sum, {number(std::int64_t{3}), number(std::int64_t{4})});
  ModelRecord::setValueType(*e, kDoubleType);
  find(e);
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.reals(e), reals(7.0, 7.0));
  EXPECT_TRUE(model.conflicts().empty());
}

TEST_F(ConstantFinderTest, ConstantsAreFoundFromTheBottomUp) {
  OXExpression* sum =
      model.make(OXOperator::Sum, {number(std::int64_t{3}), number(std::int64_t{4})});
  OXExpression* e = find(model.make(OXOperator::Gt, {sum, number(std::int64_t{6})}));
  EXPECT_TRUE(model.isFixed(sum));
  EXPECT_EQ(model.ints(e), ints(1, 1));
}

TEST_F(ConstantFinderTest, OneUnfixedOperandLeavesAnExpressionAlone) {
  OXExpression* e = find(model.make(OXOperator::Sum, {number(std::int64_t{3}), model.boolean()}));
  EXPECT_FALSE(model.isFixed(e));
}

TEST_F(ConstantFinderTest, ABoundsPointIsFixedWithoutEvaluation) {
  // The evaluation would fail.
  OXExpression* e = model.make(OXOperator::Sqrt, {number(-4.0)});
  model.minimize(e);
  model.start().intersectDoubleBounds(Preprocessor::at(*e), 0.0, 0.0);
  ConstantFinder(model.state()).run();
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.reals(e), reals(0.0, 0.0));
}

TEST_F(ConstantFinderTest, FailuresOfTheEvaluationPassThrough) {
  test::expectFailure(5, "EvaluatorTools::evaluate", "Division by zero.", [this] {
    find(model.make(OXOperator::Div, {number(std::int64_t{1}), number(std::int64_t{0})}));
  });
  test::expectFailure(5, "MathDouble::log",
                      "Invalid log operation (NaN or negative number provided)",
                      [this] { find(model.make(OXOperator::Log, {number(-1.0)})); });
}

TEST_F(ConstantFinderTest, AContradictionIsNotedAndTheExpressionFixed) {
  OXExpression* e = model.make(OXOperator::Sum, {number(std::int64_t{3}), number(std::int64_t{4})});
  model.minimize(e);
  model.start().intersectIntBounds(Preprocessor::at(*e), 0, 5);
  ConstantFinder(model.state()).run();
  EXPECT_EQ(model.conflicts(), std::vector<OXExpression*>{e});
  EXPECT_TRUE(model.isFixed(e));
}

TEST_F(ConstantFinderTest, AZeroDecidesAProduct) {
  OXExpression* e = find(model.make(OXOperator::Prod, {model.boolean(), model.integer(0, 0)}));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.ints(e), ints(0, 0));
}

TEST_F(ConstantFinderTest, AZeroWithinToleranceDecidesADoubleProduct) {
  OXExpression* e = find(model.make(OXOperator::Prod, {model.boolean(), model.real(1e-8, 1e-8)}));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.reals(e), reals(0.0, 0.0));
}

TEST_F(ConstantFinderTest, AnIntegerZeroDecidesADoubleProduct) {
  OXExpression* e =
      find(model.make(OXOperator::Prod, {model.real(0.0, 1.0), number(std::int64_t{0})}));
  EXPECT_EQ(model.reals(e), reals(0.0, 0.0));
}

TEST_F(ConstantFinderTest, AProductOfFixedOperandsIsEvaluated) {
  OXExpression* e =
      find(model.make(OXOperator::Prod, {number(std::int64_t{3}), number(std::int64_t{4})}));
  EXPECT_EQ(model.ints(e), ints(12, 12));
}

TEST_F(ConstantFinderTest, AFalsehoodDecidesAConjunctionAndATruthADisjunction) {
  OXExpression* conjunction = model.make(OXOperator::And, {model.boolean(), model.boolean(0, 0)});
  OXExpression* disjunction = model.make(OXOperator::Or, {model.boolean(), model.boolean(1, 1)});
  find(model.make(OXOperator::Sum, {conjunction, disjunction, model.boolean()}));
  EXPECT_EQ(model.ints(conjunction), ints(0, 0));
  EXPECT_EQ(model.ints(disjunction), ints(1, 1));
  EXPECT_TRUE(model.isFixed(conjunction));
  EXPECT_TRUE(model.isFixed(disjunction));
}

TEST_F(ConstantFinderTest, AConjunctionOfTruthsIsEvaluated) {
  OXExpression* e = find(model.make(OXOperator::And, {model.boolean(1, 1), model.boolean(1, 1)}));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.ints(e), ints(1, 1));
}

TEST_F(ConstantFinderTest, ADisjunctionOfFalsehoodsIsEvaluated) {
  OXExpression* e = find(model.make(OXOperator::Or, {model.boolean(0, 0), model.boolean(0, 0)}));
  EXPECT_EQ(model.ints(e), ints(0, 0));
}

OXExpression* makeAt(PassModel& m, const std::vector<OXExpression*>& elements, std::int64_t index) {
  return m.make(OXOperator::At, {m.array(elements), m.constant(index)});
}

TEST_F(ConstantFinderTest, AFixedElementAtAFixedIndexIsTheValue) {
  OXExpression* e = find(makeAt(model, {model.boolean(), number(std::int64_t{9})}, 1));
  EXPECT_TRUE(model.isFixed(e));
  EXPECT_EQ(model.ints(e), ints(9, 9));
}

TEST_F(ConstantFinderTest, AFixedIntegerElementOfADoubleArrayIsConverted) {
  OXExpression* e = find(makeAt(model, {number(0.5), number(std::int64_t{9})}, 1));
  EXPECT_EQ(model.reals(e), reals(9.0, 9.0));
}

TEST_F(ConstantFinderTest, AnUnfixedElementOrIndexLeavesAnAtAlone) {
  OXExpression* unfixedElement = makeAt(model, {model.boolean(), number(std::int64_t{9})}, 0);
  OXExpression* unfixedIndex = model.make(
      OXOperator::At,
      {model.array({number(std::int64_t{9}), number(std::int64_t{9})}), model.boolean()});
  find(model.make(OXOperator::Sum, {unfixedElement, unfixedIndex}));
  EXPECT_FALSE(model.isFixed(unfixedElement));
  EXPECT_FALSE(model.isFixed(unfixedIndex));
}

TEST_F(ConstantFinderTest, AFixedIndexOutsideTheArrayTellsNothing) {
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{2}, std::int64_t{1} << 32,
                                   std::numeric_limits<std::int64_t>::min()}) {
    PassModel m;
    OXExpression* e = makeAt(m, {m.constant(std::int64_t{8}), m.constant(std::int64_t{9})}, index);
    m.minimize(e);
    ConstantFinder(m.start()).run();
    EXPECT_FALSE(m.isFixed(e)) << index;
    EXPECT_TRUE(m.conflicts().empty());
  }
}

TEST_F(ConstantFinderTest, AnExpressionOverArraysIsNotEvaluated) {
  OXExpression* array = model.array({number(std::int64_t{2})});
  OXExpression* e = find(model.make(OXOperator::Scalar, {array, array}));
  EXPECT_FALSE(model.isFixed(e));
  EXPECT_FALSE(model.isFixed(array));
}

TEST_F(ConstantFinderTest, WhatNoRootReachesIsNotLookedAt) {
  OXExpression* e = model.make(OXOperator::Sum, {number(std::int64_t{3})});
  find(model.boolean());
  EXPECT_FALSE(model.isFixed(e));
}

}  // namespace
}  // namespace ombrix
