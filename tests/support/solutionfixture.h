#ifndef OMBRIX_TESTS_SUPPORT_SOLUTIONFIXTURE_H
#define OMBRIX_TESTS_SUPPORT_SOLUTIONFIXTURE_H

#include <gtest/gtest.h>

#include "api/ombrix.h"

namespace ombrix::test {

/// A solver with short words for tests that look at the public solution of a small model.
class SolutionFixture : public ::testing::Test {
protected:
  OXExpression* boolean() { return model.createExpression(OXOperator::Bool); }
  OXExpression* constant(long long value) { return model.createConstant(value); }
  OXExpression* make(OXOperator op, OXExpression* a) { return model.createExpression(op, a); }
  OXExpression* make(OXOperator op, OXExpression* a, OXExpression* b) {
    return model.createExpression(op, a, b);
  }
  void minimize(OXExpression* expr) { model.addObjective(expr, OXObjectiveDirection::Minimize); }
  void maximize(OXExpression* expr) { model.addObjective(expr, OXObjectiveDirection::Maximize); }
  OXSolution& close() {
    if (model.getNbObjectives() == 0) minimize(constant(0));
    model.close();
    return *solver.getSolution();
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
};

}  // namespace ombrix::test

#endif
