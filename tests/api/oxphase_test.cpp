#include "api/oxphase.h"

#include <gtest/gtest.h>

#include "api/ombrix.h"
#include "tests/support/failures.h"
#include "tests/support/statemessages.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kStopped;

class OXPhaseTest : public ::testing::Test {
protected:
  OXPhaseTest() {
    addObjective();
    model().close();
  }
  OXModel& model() { return *solver.getModel(); }
  void addObjective() {
    OXExpression* x = model().createExpression(OXOperator::Bool);
    model().addObjective(x, OXObjectiveDirection::Minimize);
  }

  Ombrix solver;
};

TEST_F(OXPhaseTest, AFreshPhaseHasNoLimit) {
  OXPhase* phase = solver.createPhase();
  EXPECT_EQ(phase->getOmbrix(), &solver);
  EXPECT_EQ(phase->getTimeLimit(), 2147483647);
  EXPECT_EQ(phase->getIterationLimit(), 9223372036854775807LL);
  EXPECT_EQ(phase->getOptimizedObjective(), 0);
  EXPECT_EQ(phase->getStatistics()->getNbMoves(), 0);
  EXPECT_EQ(phase->toString(), "no time limit, no iteration limit, optimized objective = 0");
}

TEST_F(OXPhaseTest, PrintsItsLimits) {
  OXPhase* phase = solver.createPhase();
  phase->setTimeLimit(10);
  phase->setIterationLimit(5000);
  EXPECT_EQ(phase->toString(),
            "time limit = 10 sec, iteration limit = 5000, optimized objective = 0");
  EXPECT_EQ(phase->getTimeLimit(), 10);
  EXPECT_EQ(phase->getIterationLimit(), 5000);
}

TEST_F(OXPhaseTest, LimitsAreStrictlyPositive) {
  OXPhase* phase = solver.createPhase();
  expectFailure(0, "OXPhase::setTimeLimit", "Argument timeLimit must be strictly positive.",
                [&] { phase->setTimeLimit(0); });
  expectFailure(0, "OXPhase::setIterationLimit",
                "Argument iterationLimit must be strictly positive.",
                [&] { phase->setIterationLimit(-5); });
  phase->setTimeLimit(1);
  phase->setIterationLimit(1);
  EXPECT_EQ(phase->getTimeLimit(), 1);
}

TEST_F(OXPhaseTest, OptimizesAnObjectiveOfTheModel) {
  OXPhase* phase = solver.createPhase();
  phase->setOptimizedObjective(0);
  for (const int objective : {-1, 1}) {
    expectFailure(0, "OXPhase::setOptimizedObjective",
                  "Objective with index " + std::to_string(objective) +
                      " does not exist.\nOnly indices from 0 to 0 are currently allowed.",
                  [&] { phase->setOptimizedObjective(objective); });
  }
  EXPECT_EQ(phase->getOptimizedObjective(), 0);
}

TEST_F(OXPhaseTest, APhaseKeepsItsLastObjectiveWhenMoreAreAdded) {
  OXPhase* early = solver.createPhase();
  model().open();
  addObjective();
  model().close();
  EXPECT_EQ(early->getOptimizedObjective(), 0);
  EXPECT_EQ(solver.createPhase()->getOptimizedObjective(), 1);
}

TEST_F(OXPhaseTest, PhasesNeedAClosedModel) {
  OXPhase* phase = solver.createPhase();
  model().open();
  expectFailure(0, "Ombrix::createPhase", kStopped, [&] { solver.createPhase(); });
  expectFailure(0, "OXPhase::getOmbrix", kStopped, [&] { phase->getOmbrix(); });
  EXPECT_EQ(phase->toString(), "no time limit, no iteration limit, optimized objective = 0");
}

}  // namespace
}  // namespace ombrix
