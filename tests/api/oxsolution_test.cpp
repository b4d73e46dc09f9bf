#include "api/oxsolution.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "api/ombrix.h"
#include "support/solutionfixture.h"
#include "tests/support/failures.h"

namespace ombrix {
namespace {

using test::expectFailure;

class OXSolutionTest : public test::SolutionFixture {};

TEST_F(OXSolutionTest, AfterClosingEveryDecisionIsZero) {
  OXExpression* x = boolean();
  OXExpression* sum = make(OXOperator::Sum, x, constant(5));
  OXSolution& solution = close();
  EXPECT_EQ(solution.getOmbrix(), &solver);
  EXPECT_EQ(solution.getIntValue(x), 0);
  EXPECT_EQ(solution.getIntValue(sum), 5);
  EXPECT_EQ(solution.getValue(sum), 5);
}

TEST_F(OXSolutionTest, SettingADecisionForgetsWhatFollowsFromIt) {
  OXExpression* x = boolean();
  OXExpression* y = boolean();
  OXExpression* sum = make(OXOperator::Sum, x, y);
  OXExpression* real = make(OXOperator::Prod, sum, model.createConstant(0.5));
  OXSolution& solution = close();
  EXPECT_EQ(solution.getDoubleValue(real), 0.0);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getDoubleValue(real), 0.5);
  solution.setValue(y, 1);
  EXPECT_EQ(solution.getIntValue(sum), 2);
  EXPECT_EQ(solution.getDoubleValue(real), 1.0);
  EXPECT_EQ(solution.getIntValue(x), 1);
}

TEST_F(OXSolutionTest, ClearPutsDecisionsBackToZero) {
  OXExpression* x = boolean();
  OXExpression* sum = make(OXOperator::Sum, x, constant(5));
  OXSolution& solution = close();
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getIntValue(sum), 6);
  solution.clear();
  EXPECT_EQ(solution.getIntValue(x), 0);
  EXPECT_EQ(solution.getIntValue(sum), 5);
}

TEST_F(OXSolutionTest, AConstantHasItsValueWhereverItIsMet) {
  OXExpression* three = constant(3);
  OXExpression* half = model.createConstant(0.5);
  OXExpression* one = constant(1);
  OXSolution& solution = close();
  EXPECT_EQ(solution.getIntValue(three), 3);
  EXPECT_EQ(solution.getDoubleValue(half), 0.5);
  EXPECT_EQ(solution.getIntValue(one), 1);
}

/// Constants that stand by themselves as constraint and objectives, with no expression around them.
class StandingConstants : public testing::TestWithParam<bool> {
protected:
  void SetUp() override {
    solver.getParam()->setAdvancedParam("preprocessingEnabled", GetParam() ? 1 : 0);
    model.createExpression(OXOperator::Bool);
    model.addObjective(seven, OXObjectiveDirection::Maximize);
    model.addObjective(half, OXObjectiveDirection::Minimize);
  }

  void closeWithConstraint(long long value) {
    constraint = model.createConstant(value);
    model.addConstraint(constraint);
    model.addObjective(constraint, OXObjectiveDirection::Minimize);
    model.close();
    solver.getParam()->setVerbosity(0);
    solver.createPhase()->setIterationLimit(100);
  }

  void expectValues(long long constraintValue) {
    const OXSolution& solution = *solver.getSolution();
    EXPECT_EQ(solution.getIntValue(constraint), constraintValue);
    EXPECT_EQ(solution.getValue(constraint), constraintValue);
    EXPECT_EQ(solution.getIntValue(seven), 7);
    EXPECT_EQ(solution.getDoubleValue(half), 2.5);
    EXPECT_EQ(model.getConstraint(0)->getIntValue(), constraintValue);
    EXPECT_EQ(model.getObjective(0)->getIntValue(), 7);
    EXPECT_EQ(model.getObjective(1)->getDoubleValue(), 2.5);
    EXPECT_EQ(model.getObjective(2)->getIntValue(), constraintValue);
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXExpression* seven = model.createConstant(7);
  OXExpression* half = model.createConstant(2.5);
  OXExpression* constraint = nullptr;
};

TEST_P(StandingConstants, HaveTheirValueBeforeAndAfterASolve) {
  closeWithConstraint(1);
  expectValues(1);
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Optimal);
  solver.solve();
  expectValues(1);
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Optimal);
}

TEST_P(StandingConstants, HaveTheirValueWhereTheConstraintCannotHoldToo) {
  closeWithConstraint(0);
  expectValues(0);
  solver.solve();
  expectValues(0);
  EXPECT_EQ(solver.getSolution()->getStatus(),
            GetParam() ? OXSolutionStatus::Inconsistent : OXSolutionStatus::Infeasible);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutPreprocessing, StandingConstants, testing::Bool());

TEST_F(OXSolutionTest, EvaluatesArraysThroughTheirReaders) {
  OXExpression* x = boolean();
  OXExpression* row = model.createExpression(OXOperator::Array, constant(4), constant(6));
  OXExpression* other = model.createExpression(OXOperator::Array, x, constant(10));
  OXExpression* at = make(OXOperator::At, row, x);
  OXExpression* scalar = make(OXOperator::Scalar, row, other);
  OXSolution& solution = close();
  EXPECT_EQ(solution.getIntValue(at), 4);
  EXPECT_EQ(solution.getIntValue(scalar), 60);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getIntValue(at), 6);
  EXPECT_EQ(solution.getIntValue(scalar), 64);
}

TEST_F(OXSolutionTest, AValueThatDoesNotExistFailsWithItsReason) {
  OXExpression* x = boolean();
  OXExpression* row = model.createExpression(OXOperator::Array, constant(4), constant(6));
  OXExpression* index = make(OXOperator::Sum, x, constant(1));
  OXExpression* at = make(OXOperator::At, row, index);
  OXExpression* next = make(OXOperator::Sum, at);
  OXSolution& solution = close();
  EXPECT_EQ(solution.getIntValue(next), 6);
  solution.setIntValue(x, 1);
  try {
    solution.getIntValue(next);
    FAIL();
  } catch (const OXException& failure) {
    EXPECT_EQ(failure.getCode(), 5);
    EXPECT_EQ(failure.getExplanation(),
              "Index out of bounds for " + at->toString() + " (index: 2, array size: 2).");
  }
  EXPECT_EQ(solution.getIntValue(index), 2);
  solution.setIntValue(x, 0);
  EXPECT_EQ(solution.getIntValue(next), 6);
}

TEST_F(OXSolutionTest, AReadDoesNotFailForAnErrorNumberLeftBehind) {
  OXExpression* root = make(OXOperator::Sqrt, make(OXOperator::Sum, boolean(), constant(4)));
  OXSolution& solution = close();
  errno = EDOM;
  EXPECT_EQ(solution.getDoubleValue(root), 2.0);
}

TEST_F(OXSolutionTest, ADoubleSumStaysDoubleWhenItsDoublesAreReplaced) {
  OXExpression* sum = make(OXOperator::Sum, boolean(), model.createConstant(0.5));
  minimize(sum);
  close();
  model.open();
  sum->setOperand(1, 3);
  OXSolution& solution = close();
  EXPECT_TRUE(sum->isDouble());
  EXPECT_EQ(solution.getDoubleValue(sum), 3.0);
}

TEST_F(OXSolutionTest, ChecksTheExpressionItIsGiven) {
  Ombrix otherSolver;
  OXExpression* foreign = otherSolver.getModel()->createExpression(OXOperator::Bool);
  OXSolution& solution = close();
  const char* null = "Argument expr cannot be null.";
  const char* foreignText = "Argument expr does not belong to this instance of Ombrix.";
  expectFailure(0, "OXSolution::setIntValue", null, [&] { solution.setIntValue(nullptr, 1); });
  expectFailure(0, "OXSolution::setDoubleValue", null,
                [&] { solution.setDoubleValue(nullptr, 1); });
  expectFailure(0, "OXSolution::setValue", null, [&] { solution.setValue(nullptr, 1); });
  expectFailure(0, "OXSolution::getIntValue", null, [&] { solution.getIntValue(nullptr); });
  expectFailure(0, "OXSolution::getValue", null, [&] { solution.getValue(nullptr); });
  expectFailure(0, "OXSolution::getDoubleValue", null, [&] { solution.getDoubleValue(nullptr); });
  expectFailure(0, "OXSolution::setIntValue", foreignText,
                [&] { solution.setIntValue(foreign, 1); });
  expectFailure(0, "OXSolution::setValue", foreignText, [&] { solution.setValue(foreign, 1.0); });
  expectFailure(0, "OXSolution::getIntValue", foreignText, [&] { solution.getIntValue(foreign); });
  expectFailure(0, "OXSolution::getDoubleValue", foreignText,
                [&] { solution.getDoubleValue(foreign); });
}

TEST_F(OXSolutionTest, ChecksTypesBeforeDecisions) {
  OXExpression* x = boolean();
  OXExpression* array = make(OXOperator::Array, x);
  OXExpression* real = make(OXOperator::Sqrt, x);
  OXExpression* sum = make(OXOperator::Sum, x);
  OXSolution& solution = close();
  const char* mustBeInt =
      "Cannot use this method. The given expression must be boolean or integer.";
  const char* mustBeDouble = "Cannot use this method. The given expression must be double.";
  expectFailure(2, "OXSolution::getIntValue", mustBeInt, [&] { solution.getIntValue(array); });
  expectFailure(2, "OXSolution::getDoubleValue", mustBeDouble,
                [&] { solution.getDoubleValue(array); });
  expectFailure(2, "OXSolution::getDoubleValue", mustBeDouble, [&] { solution.getDoubleValue(x); });
  expectFailure(2, "OXSolution::setIntValue", mustBeInt, [&] { solution.setIntValue(real, 1); });
  expectFailure(2, "OXSolution::setDoubleValue", mustBeDouble,
                [&] { solution.setDoubleValue(x, 1.0); });
  expectFailure(0, "OXSolution::setIntValue", "Only decisions can be set.",
                [&] { solution.setIntValue(sum, 2); });
  expectFailure(0, "OXSolution::setDoubleValue", "Only decisions can be set.",
                [&] { solution.setDoubleValue(real, 2.0); });
}

TEST_F(OXSolutionTest, ABooleanTakesZeroAndOneOnly) {
  OXExpression* x = boolean();
  OXSolution& solution = close();
  for (const long long value : {2LL, -1LL}) {
    expectFailure(0, "OXSolution::setIntValue", "The only allowed values are 0 or 1",
                  [&] { solution.setIntValue(x, value); });
  }
  EXPECT_EQ(solution.getIntValue(x), 0);
}

TEST_F(OXSolutionTest, ADeepModelIsEvaluatedWithoutRecursion) {
  OXExpression* x = boolean();
  OXExpression* last = x;
  for (int i = 0; i < 200000; ++i) last = make(OXOperator::Sum, last);
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  minimize(x);
  OXSolution& solution = close();
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getIntValue(last), 1);
}

}  // namespace
}  // namespace ombrix
