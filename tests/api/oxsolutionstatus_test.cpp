#include "api/oxsolution.h"

#include <gtest/gtest.h>

#include "api/ombrix.h"
#include "support/solutionfixture.h"

namespace ombrix {
namespace {

class OXSolutionStatusTest : public test::SolutionFixture {};

TEST_F(OXSolutionStatusTest, TheStatusBeforeAnySearchIsThatOfAllZero) {
  OXExpression* x = boolean();
  OXExpression* y = boolean();
  model.addConstraint(make(OXOperator::Or, x, y));
  minimize(make(OXOperator::Sum, x, y));
  OXSolution& solution = close();
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Infeasible);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Feasible);
}

TEST_F(OXSolutionStatusTest, AMinimizedObjectiveIsMeasuredAgainstTheBoundOfTheUser) {
  OXExpression* x = boolean();
  minimize(make(OXOperator::Sum, x, constant(2)));
  OXSolution& solution = close();
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Feasible);
  solver.getParam()->setIntObjectiveBound(0, 2);
  solution.setIntValue(x, 0);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Optimal);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Feasible);
}

TEST_F(OXSolutionStatusTest, AMaximizedObjectiveIsMeasuredAgainstItsComputedBound) {
  OXExpression* x = boolean();
  maximize(make(OXOperator::Sum, x, constant(2)));
  OXSolution& solution = close();
  solver.getParam()->setIntObjectiveBound(0, 2);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Feasible);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Optimal);
}

TEST_F(OXSolutionStatusTest, EveryObjectiveMustReachItsBound) {
  OXExpression* x = boolean();
  OXExpression* y = boolean();
  maximize(make(OXOperator::Sum, x, constant(2)));
  maximize(make(OXOperator::Sum, y, constant(2)));
  OXSolution& solution = close();
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Feasible);
  solution.setIntValue(y, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Optimal);
}

TEST_F(OXSolutionStatusTest, AConstantObjectiveHasReachedItsBound) {
  model.addConstraint(constant(1));
  minimize(constant(3));
  EXPECT_EQ(close().getStatus(), OXSolutionStatus::Optimal);
}

TEST_F(OXSolutionStatusTest, TheStatusOfASearchStandsThoughADecisionWasSetBefore) {
  // The search counts the bound of the user for a maximized objective, a status computed from the
  // values does not: so the two differ here.
  OXExpression* x = boolean();
  OXExpression* sum = make(OXOperator::Sum, x, boolean());
  maximize(sum);
  OXSolution& solution = close();
  solver.getParam()->setIntObjectiveBound(0, 1);
  solver.getParam()->setVerbosity(0);
  solver.getParam()->setNbThreads(1);
  solution.setIntValue(x, 1);
  solver.solve();
  EXPECT_EQ(solution.getIntValue(sum), 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Optimal);
}

TEST_F(OXSolutionStatusTest, AnInconsistentModelIsSoWhateverTheDecisions) {
  OXExpression* x = boolean();
  model.addConstraint(constant(0));
  minimize(x);
  OXSolution& solution = close();
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Inconsistent);
  solution.setIntValue(x, 1);
  EXPECT_EQ(solution.getStatus(), OXSolutionStatus::Inconsistent);
}

}  // namespace
}  // namespace ombrix
