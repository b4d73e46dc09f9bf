#include "api/oxstatistics.h"

#include <gtest/gtest.h>

#include "api/ombrix.h"
#include "builder/solverrecord.h"
#include "tests/support/failures.h"
#include "tests/support/statemessages.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::kStarted;

class OXStatisticsTest : public ::testing::Test {
protected:
  OXStatisticsTest() {
    OXModel& model = *solver.getModel();
    model.addObjective(model.createConstant(0), OXObjectiveDirection::Minimize);
    model.close();
  }
  OXStatistics& addPhase(const SearchCounters& counters) {
    OXStatistics& statistics = *solver.createPhase()->getStatistics();
    SolverRecord::refresh(statistics, counters);
    return statistics;
  }

  Ombrix solver;
  OXStatistics& totals = SolverRecord::statistics(solver);
};

TEST_F(OXStatisticsTest, TellsTheCountersAndTheirShares) {
  const OXStatistics& phase = addPhase({3, 1000, 2000, 500, 10, 800});
  EXPECT_EQ(phase.getOmbrix(), &solver);
  EXPECT_EQ(phase.getRunningTime(), 3);
  EXPECT_EQ(phase.getNbIterations(), 1000);
  EXPECT_EQ(phase.getNbMoves(), 2000);
  EXPECT_EQ(phase.getNbAcceptedMoves(), 500);
  EXPECT_EQ(phase.getNbImprovingMoves(), 10);
  EXPECT_EQ(phase.getNbRejectedMoves(), 1500);
  EXPECT_EQ(phase.getNbInfeasibleMoves(), 800);
  EXPECT_EQ(phase.getPercentAcceptedMoves(), 25.0);
  EXPECT_EQ(phase.getPercentImprovingMoves(), 0.5);
  EXPECT_EQ(phase.getPercentRejectedMoves(), 75.0);
  EXPECT_EQ(phase.getPercentInfeasibleMoves(), 40.0);
}

TEST_F(OXStatisticsTest, WithoutMovesEveryShareIsZero) {
  EXPECT_EQ(totals.getPercentAcceptedMoves(), 0.0);
  EXPECT_EQ(totals.getPercentImprovingMoves(), 0.0);
  EXPECT_EQ(totals.getPercentRejectedMoves(), 0.0);
  EXPECT_EQ(totals.getPercentInfeasibleMoves(), 0.0);
}

TEST_F(OXStatisticsTest, PrintsThreeLines) {
  EXPECT_EQ(addPhase({3, 1000, 2000, 500, 10, 800}).toString(),
            "running time = 3 sec, nb iterations = 1000, nb moves = 2000\n"
            "accepted = 500 (25%), improving = 10 (0.5%)\n"
            "rejected = 1500 (75%), infeasible = 800 (40%)\n");
}

TEST_F(OXStatisticsTest, TheTotalsAreTheSumsOverThePhases) {
  addPhase({1, 10, 100, 50, 5, 20});
  addPhase({2, 20, 200, 70, 6, 30});
  SolverRecord::refreshTotals(totals);
  EXPECT_EQ(totals.toString(),
            "running time = 3 sec, nb iterations = 30, nb moves = 300\n"
            "accepted = 120 (40%), improving = 11 (3.66667%)\n"
            "rejected = 180 (60%), infeasible = 50 (16.6667%)\n");
}

TEST_F(OXStatisticsTest, AResetKeepsTheRunningTime) {
  OXStatistics& phase = addPhase({3, 1000, 2000, 500, 10, 800});
  SolverRecord::resetCounters(phase);
  EXPECT_EQ(phase.toString(),
            "running time = 3 sec, nb iterations = 0, nb moves = 0\n"
            "accepted = 0 (0%), improving = 0 (0%)\n"
            "rejected = 0 (0%), infeasible = 0 (0%)\n");
}

TEST_F(OXStatisticsTest, InfoNeedsAStartedSolverBeforeAnything) {
  expectFailure(0, "OXStatistics::getInfo", kStarted, [&] { totals.getInfo(); });
  solver.getModel()->open();
  expectFailure(0, "OXStatistics::getInfo", kStarted, [&] { totals.getInfo(); });
}

TEST_F(OXStatisticsTest, InfoRoundsSharesUpToOneDecimal) {
  solver.getParam()->setVerbosity(0);
  solver.solve();
  EXPECT_EQ(addPhase({3, 1000, 2000, 500, 10, 801}).getInfo(),
            "mov = 2000, inf = 40.1%, acc = 25%, imp = 10");
  EXPECT_EQ(addPhase({3, 1000, 2000, 3, 1, 3}).getInfo(),
            "mov = 2000, inf = 0.2%, acc = 0.2%, imp = 1");
}

TEST_F(OXStatisticsTest, InfoHidesSharesThatRoundUpToATenth) {
  solver.getParam()->setVerbosity(0);
  solver.solve();
  EXPECT_EQ(addPhase({3, 1000, 2000, 1, 0, 2}).getInfo(),
            "mov = 2000, inf < 0.1%, acc < 0.1%, imp = 0");
}

TEST_F(OXStatisticsTest, TheOwnerIsToldInEveryState) {
  SolverRecord::setState(solver, OXState::Running);
  EXPECT_EQ(totals.getOmbrix(), &solver);
  SolverRecord::setState(solver, OXState::Stopped);
}

}  // namespace
}  // namespace ombrix
