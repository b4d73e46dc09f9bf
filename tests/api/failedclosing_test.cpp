#include <gtest/gtest.h>

#include "api/ombrix.h"
#include "tests/support/failures.h"

namespace ombrix {
namespace {

using test::expectFailure;

const char* const kRepair =
    "The closing of the model failed on the way: open the model, repair it and close it again.";

/// A model that is valid but whose transformation fails: the scalar product of arrays of different
/// lengths has no value.
class FailedClosingTest : public ::testing::Test {
protected:
  FailedClosingTest() {
    shorter = model.createExpression(OXOperator::Array, decision);
    OXExpression* longer = model.createExpression(OXOperator::Array, decision, decision);
    product = model.createExpression(OXOperator::Scalar, shorter, longer);
    model.addObjective(product, OXObjectiveDirection::Minimize);
    EXPECT_THROW(model.close(), OXException);
  }

  Ombrix solver;
  OXModel& model = *solver.getModel();
  OXExpression* decision = model.createExpression(OXOperator::Bool);
  OXExpression* shorter = nullptr;
  OXExpression* product = nullptr;
};

TEST_F(FailedClosingTest, LeavesTheModelClosed) {
  EXPECT_TRUE(model.isClosed());
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(FailedClosingTest, WhatNeedsTheGraphSaysHowToGoOn) {
  expectFailure(6, "Ombrix::solve", kRepair, [&] { solver.solve(); });
  expectFailure(6, "OXSolution::getStatus", kRepair, [&] { solver.getSolution()->getStatus(); });
  expectFailure(6, "Ombrix::saveEnvironment", kRepair,
                [&] { solver.saveEnvironment("never_written.oxm"); });
}

TEST_F(FailedClosingTest, WhatDoesNotNeedItWorks) {
  decision->setValue(1);
  EXPECT_EQ(decision->getIntValue(), 1);
  solver.createPhase();
  EXPECT_FALSE(solver.toString().empty());
}

TEST_F(FailedClosingTest, OpeningLeadsBackAndARepairCloses) {
  model.open();
  shorter->addOperand(decision);
  model.close();
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Feasible);
  decision->setValue(1);
  EXPECT_EQ(product->getIntValue(), 2);
}

}  // namespace
}  // namespace ombrix
