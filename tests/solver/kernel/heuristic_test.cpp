#include "solver/kernel/heuristic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/failure.h"
#include "solver/kernel/clock.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "tests/support/failures.h"
#include "tests/support/graphs.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

using test::ScriptedMove;

/// Settles every candidate with one status and notes all calls.
class FixedStrategy : public HeuristicStrategy {
public:
  FixedStrategy(Heuristic& owner, MoveStatus answer, bool settles = true)
      : HeuristicStrategy(owner), status(answer), isDeciding(settles) {}

  void reset() override { log += "r"; }
  void beforeIteration() override { log += "b"; }
  bool decide(MoveStatus& result, Move& move) override {
    log += "d";
    move.evaluateAll();
    result = status;
    return isDeciding;
  }
  void afterMove(MoveStatus result) override { log += "a" + std::to_string(int(result)); }

  MoveStatus status;
  bool isDeciding;
  std::string log;
};

class NotingCallback : public HeuristicCallback {
public:
  explicit NotingCallback(Heuristic& observed) : heuristic(observed) {}

  void onStart() override {
    log += "s";
    if (stopAtStart) heuristic.stopRequested = true;
  }
  void onEnd() override { log += "e"; }
  void onIteration() override {
    log += "i";
    if (heuristic.nbIterations == stopAt) heuristic.stopRequested = true;
  }

  Heuristic& heuristic;
  std::string log;
  bool stopAtStart = false;
  std::uint64_t stopAt = 0;
};

/// One boolean that is maximised, and one beside it.
class HeuristicTest : public testing::Test {
protected:
  void start() {
    dag = builder.makeDag();
    heuristic = std::make_unique<Heuristic>(*dag, &rng);
  }
  ScriptedMove* addMove(std::vector<std::vector<std::uint32_t>> lines, std::uint32_t weight = 1) {
    heuristic->movePool.addMove(std::make_unique<ScriptedMove>(*dag, rng, lines, weight));
    heuristic->movePool.rebuild();
    return static_cast<ScriptedMove*>(heuristic->movePool.moves.back().get());
  }
  FixedStrategy* addStrategy(MoveStatus status, bool settles = true) {
    strategies.push_back(std::make_unique<FixedStrategy>(*heuristic, status, settles));
    heuristic->addStrategy(strategies.back().get());
    return strategies.back().get();
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
  std::unique_ptr<Heuristic> heuristic;
  std::vector<std::unique_ptr<FixedStrategy>> strategies;
};

TEST_F(HeuristicTest, RefusesAModelWithoutObjective) {
  builder.minimise(builder.boolean());
  start();
  // No Dag can be built over such a model, so the objective is taken away afterwards.
  builder.fields.objectives.clear();
  test::expectFailure(kInternal, "Heuristic::initObjectiveBounds",
                      "At least one objective is needed.",
                      [&] { heuristic->initObjectiveBounds(); });
  test::expectFailure(kInternal, "Heuristic::Heuristic", "At least one objective is needed.",
                      [&] { Heuristic worker(*dag, &rng); });
}

TEST_F(HeuristicTest, ObjectiveBoundsStartAtWhatTheDirectionNeverReaches) {
  const auto x = builder.boolean();
  const auto y = builder.floating(0, 1);
  builder.minimise(x);
  builder.maximise(builder.node(NodeType::Not, {x}));
  builder.minimise(y);
  builder.maximise(builder.node(NodeType::DoubleAbs, {y}));
  start();
  const auto& bounds = heuristic->objectiveBounds;
  ASSERT_EQ(bounds.size(), 4u);
  EXPECT_EQ(bounds[0].intValue, std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(bounds[1].intValue, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(bounds[2].doubleValue, -std::numeric_limits<double>::infinity());
  EXPECT_EQ(bounds[3].doubleValue, std::numeric_limits<double>::infinity());
  EXPECT_EQ(heuristic->objectiveIndex, 3u);
  EXPECT_EQ(heuristic->timeLimit, 2147483647u);
  EXPECT_EQ(heuristic->iterationLimit, 9223372036854775807u);
}

TEST_F(HeuristicTest, ALimitOfZeroEndsTheLoopBeforeTheFirstIteration) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  addMove({{x}});
  NotingCallback callback(*heuristic);
  heuristic->addCallback(&callback);
  heuristic->timeLimit = 0;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
  heuristic->timeLimit = kUnlimitedTime;
  heuristic->iterationLimit = 0;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
  EXPECT_EQ(callback.log, "sese");
}

TEST_F(HeuristicTest, TimeLimitCountsFromTheResetOn) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  addMove({{x}});
  heuristic->startTime -= 10;
  heuristic->timeLimit = 10;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
}

TEST_F(HeuristicTest, FailedCandidatesAreCountedButNoStrategySeesThem) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  ScriptedMove* move = addMove({{}});
  FixedStrategy* strategy = addStrategy(MoveStatus::Accepted);
  heuristic->iterationLimit = 3;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 3u);
  EXPECT_EQ(move->nbAttempted, 3u);
  EXPECT_EQ(move->nbInfeasibles, 3u);
  EXPECT_EQ(strategy->log, "rbbb") << "neither decide nor afterMove";
}

TEST_F(HeuristicTest, AnEmptyPoolEndsTheLoopSilently) {
  builder.maximise(builder.boolean());
  start();
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
  EXPECT_FALSE(heuristic->canContinue());
}

TEST_F(HeuristicTest, EveryStrategyIsAskedUntilOneSettlesAndToldOfTheResult) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  addMove({{x}});
  FixedStrategy* passing = addStrategy(MoveStatus::Improved, false);
  FixedStrategy* settling = addStrategy(MoveStatus::Accepted);
  FixedStrategy* unasked = addStrategy(MoveStatus::Rejected);
  heuristic->iterationLimit = 1;
  heuristic->run();
  EXPECT_EQ(passing->log, "rbda2");
  EXPECT_EQ(settling->log, "rbda2");
  EXPECT_EQ(unasked->log, "rba2");
  EXPECT_EQ(dag->values[x].intValue, 1);
}

TEST_F(HeuristicTest, ACandidateThatNobodySettlesIsRolledBackAndCountedAsRejected) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  ScriptedMove* move = addMove({{x}});
  addStrategy(MoveStatus::Improved, false);
  heuristic->iterationLimit = 1;
  heuristic->run();
  EXPECT_EQ(move->nbRejected, 1u);
  EXPECT_EQ(dag->values[x].intValue, 0);
  EXPECT_EQ(dag->tValues[x].intValue, 0);
}

TEST_F(HeuristicTest, AnAcceptedMoveIsNeverRecordedAnImprovedOneIsUncounted) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, y, builder.boolean()}));
  start();
  addMove({{x}, {y}});
  FixedStrategy* strategy = addStrategy(MoveStatus::Accepted);
  heuristic->iterationLimit = 1;
  heuristic->run();
  EXPECT_EQ(heuristic->bestIteration, 0u);
  EXPECT_EQ(heuristic->bestSolution.objectiveValues[0].intValue, 0);
  strategy->status = MoveStatus::Improved;
  heuristic->iterationLimit = 2;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 2u);
  EXPECT_EQ(heuristic->bestIteration, 1u) << "the iteration itself was not counted yet";
  EXPECT_EQ(heuristic->bestSolution.objectiveValues[0].intValue, 2);
  EXPECT_LE(heuristic->bestTime, 1) << "an offset from now on";
}

TEST_F(HeuristicTest, TheListenerIsToldOfEachNewBestOnceItIsSaved) {
  class Listener : public SearchListener {
  public:
    void onImprovement(const Heuristic& told) override {
      values.push_back(told.bestSolution.objectiveValues[0].intValue);
      iterations.push_back(told.bestIteration);
    }
    void onPhaseStart() override {}
    void onSliceEnd() override {}

    std::vector<std::int64_t> values;
    std::vector<std::uint64_t> iterations;
  } listener;
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, y, builder.boolean()}));
  start();
  addMove({{x}, {x}, {x}, {y}});
  addStrategy(MoveStatus::Improved);
  heuristic->listener = &listener;
  heuristic->iterationLimit = 4;
  heuristic->run();
  EXPECT_EQ(listener.values, (std::vector<std::int64_t>{1, 2}));
  EXPECT_EQ(listener.iterations, (std::vector<std::uint64_t>{0, 3}));
}

TEST_F(HeuristicTest, AnImprovementThatIsNoBetterThanTheBestIsNotRecorded) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  addMove({{y}});
  addStrategy(MoveStatus::Improved);
  heuristic->iterationLimit = 4;
  heuristic->run();
  EXPECT_EQ(heuristic->bestIteration, 0u);
  EXPECT_GT(heuristic->bestTime, 1) << "still the absolute clock";
}

TEST_F(HeuristicTest, WhileTheBestIsInfeasibleOnlyTheInfeasibilityIsCompared) {
  const auto x = builder.boolean();
  builder.constraint(builder.boolean());
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  addMove({{x}});
  addStrategy(MoveStatus::Improved);
  heuristic->iterationLimit = 1;
  heuristic->run();
  EXPECT_EQ(heuristic->bestSolution.objectiveValues[0].intValue, 0);
}

TEST_F(HeuristicTest, OnlyObjectivesUpToTheCurrentOneAreCompared) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {builder.boolean(), builder.boolean()}));
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  addMove({{x}});
  addStrategy(MoveStatus::Improved);
  heuristic->objectiveIndex = 0;
  heuristic->iterationLimit = 1;
  heuristic->run();
  EXPECT_EQ(heuristic->bestIteration, 0u);
  EXPECT_EQ(heuristic->bestSolution.objectiveValues[1].intValue, 0);
}

TEST_F(HeuristicTest, AStoppedRunGoesOnWhereItStopped) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  ScriptedMove* move = addMove({{x}});
  addStrategy(MoveStatus::Rejected);
  NotingCallback callback(*heuristic);
  heuristic->addCallback(&callback);
  callback.stopAt = 2;
  heuristic->iterationLimit = 5;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 2u);
  EXPECT_FALSE(heuristic->stopRequested);
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 5u);
  EXPECT_EQ(move->nbAttempted, 5u);
  EXPECT_EQ(callback.log, "siiesiiie");
  heuristic->removeCallback(&callback);
  EXPECT_TRUE(heuristic->callbacks.empty());
}

TEST_F(HeuristicTest, ACallbackCanStopARunBeforeItsFirstIteration) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  addMove({{x}});
  NotingCallback callback(*heuristic);
  heuristic->addCallback(&callback);
  callback.stopAtStart = true;
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
  EXPECT_EQ(callback.log, "se");
}

TEST_F(HeuristicTest, ResetStartsAnewFromThePresentState) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  ScriptedMove* move = addMove({{x}, {}}, 2);
  FixedStrategy* strategy = addStrategy(MoveStatus::Improved);
  heuristic->iterationLimit = 2;
  heuristic->run();
  move->weight = 7;
  strategy->log.clear();
  heuristic->stopRequested = true;
  heuristic->reset();
  EXPECT_FALSE(heuristic->stopRequested);
  EXPECT_EQ(heuristic->nbIterations, 0u);
  EXPECT_EQ(heuristic->bestIteration, 0u);
  EXPECT_EQ(heuristic->bestTime, heuristic->startTime);
  EXPECT_LE(clockSeconds() - heuristic->startTime, 1);
  EXPECT_EQ(heuristic->bestSolution.objectiveValues[0].intValue, 1);
  EXPECT_EQ(move->weight, 2u);
  EXPECT_EQ(move->nbAttempted, 0u);
  EXPECT_EQ(move->nbAccepted, 0u);
  EXPECT_EQ(move->nbRejected, 0u);
  EXPECT_EQ(move->nbImprovements, 0u);
  EXPECT_EQ(move->nbInfeasibles, 0u);
  EXPECT_EQ(heuristic->movePool.weightedMoves.size(), 2u);
  EXPECT_EQ(strategy->log, "r");
}

TEST_F(HeuristicTest, MovesAreDrawnByTheirWeightWithOneStepEach) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  ScriptedMove* first = addMove({}, 1);
  ScriptedMove* second = addMove({}, 3);
  heuristic->movePool.rebuild();
  rng = 12345;
  test::Draws draws(12345);
  std::uint32_t expectedFirst = 0;
  for (int i = 0; i < 1000; ++i) expectedFirst += draws.index(4) == 0 ? 1 : 0;
  heuristic->iterationLimit = 1000;
  heuristic->run();
  EXPECT_EQ(first->nbAttempted, expectedFirst);
  EXPECT_EQ(second->nbAttempted, 1000 - expectedFirst);
  EXPECT_EQ(rng, draws.state);
}

// ---- the bound test

TEST_F(HeuristicTest, AnObjectiveAtItsBoundEndsTheLoopAtOnce) {
  const auto x = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  addMove({{x}});
  addStrategy(MoveStatus::Improved);
  heuristic->objectiveBounds[0] = OXValue::ofInt(0);
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 0u);
  heuristic->objectiveBounds[0] = OXValue::ofInt(1);
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 1u);
}

TEST_F(HeuristicTest, AnObjectiveAtTheBoundOfItsNodeIsProvedOptimal) {
  const auto x = builder.boolean();
  builder.maximise(x);
  start();
  addMove({{x}});
  addStrategy(MoveStatus::Improved);
  heuristic->run();
  EXPECT_EQ(heuristic->nbIterations, 1u);
}

TEST_F(HeuristicTest, NoBoundIsReachedWhileAConstraintIsInactive) {
  builder.constraint(builder.boolean());
  builder.minimise(builder.constant(3));
  start();
  EXPECT_FALSE(heuristic->isObjectiveBoundReached());
  dag->propagation.activeConstraints.setSize(1);
  EXPECT_TRUE(heuristic->isObjectiveBoundReached());
}

TEST_F(HeuristicTest, EveryObjectiveUpToTheCurrentOneMustBeAtItsBound) {
  const auto x = builder.boolean();
  builder.maximise(x);
  builder.minimise(builder.boolean());
  start();
  EXPECT_FALSE(heuristic->isObjectiveBoundReached()) << "the first is open";
  test::setAndAccept(*dag, x, 1);
  EXPECT_TRUE(heuristic->isObjectiveBoundReached());
  test::setAndAccept(*dag, x, 0);
  heuristic->objectiveIndex = 1;
  EXPECT_FALSE(heuristic->isObjectiveBoundReached());
}

TEST_F(HeuristicTest, ObjectivesBehindTheCurrentOnePlayNoPart) {
  builder.minimise(builder.boolean());
  builder.maximise(builder.boolean());
  start();
  heuristic->objectiveIndex = 0;
  EXPECT_TRUE(heuristic->isObjectiveBoundReached());
}

TEST_F(HeuristicTest, DoubleBoundsAreReachedWithinTheTolerance) {
  const auto y = builder.floating(-10, 10);
  builder.minimise(y);
  start();
  heuristic->objectiveBounds[0] = OXValue::ofDouble(2.0);
  const auto reachedAt = [&](double value) {
    test::setAndAccept(*dag, y, value);
    return heuristic->isObjectiveBoundReached();
  };
  EXPECT_FALSE(reachedAt(2.1));
  EXPECT_TRUE(reachedAt(2.0 + 1e-7));
  EXPECT_TRUE(reachedAt(1.0));
  heuristic->initObjectiveBounds();
  EXPECT_FALSE(reachedAt(1.0));
  EXPECT_TRUE(reachedAt(-10.0 + 1e-7)) << "the bound of the node itself";
}

TEST_F(HeuristicTest, MaximisedDoubleBoundsAreMirrored) {
  const auto y = builder.floating(-10, 10);
  builder.maximise(y);
  start();
  heuristic->objectiveBounds[0] = OXValue::ofDouble(2.0);
  const auto reachedAt = [&](double value) {
    test::setAndAccept(*dag, y, value);
    return heuristic->isObjectiveBoundReached();
  };
  EXPECT_FALSE(reachedAt(1.9));
  EXPECT_TRUE(reachedAt(2.0 - 1e-7));
  EXPECT_TRUE(reachedAt(3.0));
  heuristic->initObjectiveBounds();
  EXPECT_FALSE(reachedAt(3.0));
  EXPECT_TRUE(reachedAt(10.0 - 1e-7));
}

// ---- the worker as it is used

TEST(HeuristicAutoAnnealing, ConsultsItsSixStrategiesInTheirOrder) {
  test::GraphBuilder builder;
  const auto dag = builder.makeDag();
  std::uint32_t rng = 7;
  const HeuristicAutoAnnealing heuristic(*dag, &rng);
  const auto& chain = heuristic.strategies;
  ASSERT_EQ(chain.size(), 6u);
  // The filter settles nothing; a restart takes what the objective alone would leave to annealing.
  EXPECT_NE(dynamic_cast<const MoveFilterStrategy*>(chain[0]), nullptr);
  EXPECT_NE(dynamic_cast<const FeasibilityStrategy*>(chain[1]), nullptr);
  EXPECT_NE(dynamic_cast<const PreviousObjectivesStrategy*>(chain[2]), nullptr);
  EXPECT_NE(dynamic_cast<const RestartStrategy*>(chain[3]), nullptr);
  EXPECT_NE(dynamic_cast<const CurrentObjectiveStrategy*>(chain[4]), nullptr);
  EXPECT_NE(dynamic_cast<const AnnealingStrategy*>(chain[5]), nullptr);
}

TEST(HeuristicAutoAnnealing, SolvesASmallModelToItsProvedOptimum) {
  test::GraphBuilder builder;
  const auto x = builder.booleans(6);
  const auto sum = builder.node(NodeType::BooleanSum, x);
  builder.constraint(builder.node(NodeType::Leq, {sum, builder.constant(3)}));
  const auto value = builder.node(NodeType::ScalarSum, x, {6, 5, 4, 3, 2, 1});
  builder.maximise(builder.node(NodeType::Min, {value, builder.constant(15)}));
  const auto dag = builder.makeDag();
  std::uint32_t rng = 7;
  HeuristicAutoAnnealing heuristic(*dag, &rng);
  std::vector<std::vector<std::uint32_t>> flips;
  for (const auto decision : x) flips.push_back({decision});
  heuristic.movePool.addMove(std::make_unique<ScriptedMove>(*dag, rng, flips));
  heuristic.reset();
  heuristic.iterationLimit = 100;
  heuristic.run();
  EXPECT_EQ(heuristic.bestSolution.objectiveValues[0].intValue, 15);
  EXPECT_EQ(heuristic.bestSolution.nbViolated, 0);
  EXPECT_LT(heuristic.nbIterations, 100u) << "the bound of the objective ends the run";
  test::expectConsistent(*dag);
}

}  // namespace
}  // namespace ombrix
