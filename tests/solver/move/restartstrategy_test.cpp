#include "solver/move/restartstrategy.h"

#include <sstream>

#include "strategies_fixture.h"

namespace ombrix {
namespace {

class RestartStrategyTest : public StrategyTest {
protected:
  /// Maximises x + y behind a constraint that holds while broken is 0.
  void start() {
    x = builder.boolean();
    y = builder.boolean();
    broken = builder.boolean();
    builder.constraint(builder.node(NodeType::Not, {broken}));
    builder.maximise(builder.node(NodeType::Sum, {x, y}));
    StrategyTest::start();
    strategy = std::make_unique<RestartStrategy>(*heuristic);
    strategy->minIterationsBetweenRestarts = 10;
    strategy->restartingRatio = 30;
    strategy->restartingSize = 3;
    strategy->reset();
  }
  void pass(int nbMoves, MoveStatus status = MoveStatus::Rejected) {
    for (int i = 0; i < nbMoves; ++i) strategy->afterMove(status);
  }

  std::uint32_t x = 0;
  std::uint32_t y = 0;
  std::uint32_t broken = 0;
  std::unique_ptr<RestartStrategy> strategy;
};

TEST_F(RestartStrategyTest, Defaults) {
  start();
  const RestartStrategy fresh(*heuristic);
  EXPECT_EQ(fresh.restartingRatio, 5u);
  EXPECT_EQ(fresh.minIterationsBetweenRestarts, 100000u);
  EXPECT_EQ(fresh.restartingSize, 200u);
}

TEST_F(RestartStrategyTest, WithoutAnImprovementARestartComesRightAfterTheMinimum) {
  start();
  pass(11);
  EXPECT_EQ(strategy->nbIterations, 11u);
  EXPECT_FALSE(strategy->isRestarting) << "the minimum itself is not above it";
  pass(1);
  EXPECT_TRUE(strategy->isRestarting);
  EXPECT_EQ(strategy->nbRestarts, 1u);
  EXPECT_EQ(strategy->lastRunLength, 11u);
  EXPECT_EQ(strategy->lastRunBest, 0u);
  EXPECT_EQ(strategy->startValue.intValue, 0);
  EXPECT_EQ(strategy->nbIterations, 12u);
}

TEST_F(RestartStrategyTest, ALateImprovementPutsTheRestartOff) {
  start();
  pass(6);
  test::setAndAccept(*dag, x, 1);
  pass(1, MoveStatus::Improved);
  EXPECT_EQ(strategy->lastImprovement, 6u);
  EXPECT_EQ(strategy->bestValue.intValue, 1);
  pass(13);
  EXPECT_EQ(strategy->nbIterations, 20u);
  EXPECT_FALSE(strategy->isRestarting) << "6 * 100 / 20 is 30";
  pass(1);
  EXPECT_FALSE(strategy->isRestarting) << "and 30 is not below the ratio";
  pass(1);
  EXPECT_TRUE(strategy->isRestarting) << "6 * 100 / 21 is 28";
}

TEST_F(RestartStrategyTest, AWorseValueIsNoImprovementOfTheRun) {
  start();
  test::setAndAccept(*dag, x, 1);
  pass(1, MoveStatus::Improved);
  test::setAndAccept(*dag, x, 0);
  pass(1, MoveStatus::Accepted);
  test::setAndAccept(*dag, y, 1);
  pass(1, MoveStatus::Improved);
  EXPECT_EQ(strategy->lastImprovement, 0u) << "1 again is not better than the 1 of this run";
}

TEST_F(RestartStrategyTest, ARatioOfZeroNeverRestarts) {
  start();
  strategy->restartingRatio = 0;
  pass(1000);
  EXPECT_EQ(strategy->nbRestarts, 0u);
}

TEST_F(RestartStrategyTest, WhileRestartingEveryCandidateIsTaken) {
  start();
  test::setAndAccept(*dag, x, 1);
  EXPECT_EQ(verdict(*strategy, {x}), std::nullopt);
  pass(12);
  EXPECT_EQ(verdict(*strategy, {x}), MoveStatus::Accepted);
  EXPECT_EQ(verdict(*strategy, {x, y}), MoveStatus::Accepted);
  EXPECT_EQ(verdict(*strategy, {y}), MoveStatus::Improved);
}

TEST_F(RestartStrategyTest, ARestartEndsAfterSoManyAcceptedMovesAndStartsARun) {
  start();
  pass(12);
  pass(5, MoveStatus::Infeasible);
  pass(1, MoveStatus::Improved);
  pass(1, MoveStatus::Accepted);
  EXPECT_TRUE(strategy->isRestarting);
  test::setAndAccept(*dag, y, 1);
  pass(1, MoveStatus::Accepted);
  EXPECT_FALSE(strategy->isRestarting);
  EXPECT_EQ(strategy->nbRestartingIterations, 8u);
  EXPECT_EQ(strategy->endValue.intValue, 1);
  EXPECT_EQ(strategy->bestValue.intValue, 1);
  EXPECT_EQ(strategy->nbIterations, 0u);
  EXPECT_EQ(strategy->nbAccepted, 0u);
}

TEST_F(RestartStrategyTest, NothingAdvancesWhileInfeasible) {
  start();
  test::setAndAccept(*dag, broken, 1);
  pass(50);
  EXPECT_EQ(strategy->nbIterations, 0u);
  test::setAndAccept(*dag, broken, 0);
  pass(12);
  test::setAndAccept(*dag, broken, 1);
  pass(50, MoveStatus::Accepted);
  EXPECT_EQ(strategy->nbRestartingIterations, 0u);
  EXPECT_TRUE(strategy->isRestarting);
}

TEST_F(RestartStrategyTest, AnotherObjectiveStartsAnotherRunAndEndsARestart) {
  const auto z = builder.boolean();
  builder.maximise(z);
  start();
  EXPECT_EQ(strategy->objectiveIndex, 1u);
  pass(12);
  EXPECT_TRUE(strategy->isRestarting);
  test::setAndAccept(*dag, z, 1);
  heuristic->objectiveIndex = 0;
  strategy->beforeIteration();
  EXPECT_FALSE(strategy->isRestarting);
  EXPECT_EQ(strategy->nbIterations, 0u);
  EXPECT_EQ(strategy->objectiveIndex, 0u);
  EXPECT_EQ(strategy->bestValue.intValue, 1);
  EXPECT_EQ(strategy->nbRestarts, 1u) << "the statistics stay";
}

TEST_F(RestartStrategyTest, StatisticsTellTheLastRun) {
  start();
  std::ostringstream out;
  strategy->printStatistics(out);
  EXPECT_EQ(out.str(),
            "Restarting ratio: 30, min iterations between restarts: 10, restarting size: 3\n"
            "0 restart\n");
  pass(12);
  test::setAndAccept(*dag, x, 1);
  pass(3, MoveStatus::Accepted);
  out.str("");
  strategy->printStatistics(out);
  EXPECT_EQ(out.str(),
            "Restarting ratio: 30, min iterations between restarts: 10, restarting size: 3\n"
            "1 restarts with 3 restarting iterations, \n"
            "last run: 11 iterations, while best was obtained at iteration #0\n"
            "last climbing path: 0 --> 1\n");
}

TEST_F(RestartStrategyTest, StatisticsWriteADoubleObjectiveAsADouble) {
  builder.minimise(builder.floating(-1, 1));
  start();
  heuristic->objectiveIndex = 0;
  strategy->reset();
  pass(12);
  strategy->startValue = OXValue::ofDouble(0.5);
  strategy->endValue = OXValue::ofDouble(-0.25);
  std::ostringstream out;
  strategy->printStatistics(out);
  EXPECT_NE(out.str().find("last climbing path: 0.5 --> -0.25\n"), std::string::npos);
}

}  // namespace
}  // namespace ombrix
