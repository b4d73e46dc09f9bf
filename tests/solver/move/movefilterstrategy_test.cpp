#include "solver/move/movefilterstrategy.h"

#include <sstream>

#include "strategies_fixture.h"

namespace ombrix {
namespace {

/// A move of which only the counters matter.
class CountedMove : public test::ScriptedMove {
public:
  CountedMove(Dag& workerDag, std::uint32_t& state, std::uint32_t moveWeight, double scale)
      : ScriptedMove(workerDag, state, {}, moveWeight), factor(scale) {}
  double getSelectionFactor() const override { return factor; }

  void count(std::uint32_t improved, std::uint32_t accepted, std::uint32_t infeasible,
             std::uint32_t attempted) {
    nbImprovements = improved;
    nbAccepted = accepted;
    nbInfeasibles = infeasible;
    nbAttempted = attempted;
  }

private:
  double factor;
};

class MoveFilterStrategyTest : public StrategyTest {
protected:
  MoveFilterStrategyTest() {
    builder.maximise(builder.boolean());
    start();
    strategy = std::make_unique<MoveFilterStrategy>(*heuristic);
    strategy->explorationEnabled = false;
  }
  CountedMove* add(std::uint32_t weight, double factor = 1.0) {
    heuristic->movePool.addMove(std::make_unique<CountedMove>(*dag, rng, weight, factor));
    return static_cast<CountedMove*>(heuristic->movePool.moves.back().get());
  }
  void pass() {
    heuristic->nbIterations += strategy->period;
    strategy->beforeIteration();
  }
  std::vector<std::uint32_t> weights() const {
    std::vector<std::uint32_t> result;
    for (const auto& some : heuristic->movePool.moves) result.push_back(some->weight);
    return result;
  }

  std::unique_ptr<MoveFilterStrategy> strategy;
};

using Weights = std::vector<std::uint32_t>;

TEST_F(MoveFilterStrategyTest, APassComesOncePerPeriod) {
  add(1);
  heuristic->nbIterations = 999;
  strategy->beforeIteration();
  EXPECT_EQ(strategy->lastFilter, 0u);
  EXPECT_TRUE(strategy->scores.empty());
  heuristic->nbIterations = 1000;
  strategy->beforeIteration();
  EXPECT_EQ(strategy->lastFilter, 1000u);
  EXPECT_EQ(strategy->scores.size(), 1u);
  EXPECT_EQ(heuristic->movePool.weightedMoves.size(), 1u) << "the pool was rebuilt";
  strategy->reset();
  EXPECT_EQ(strategy->lastFilter, 0u);
}

TEST_F(MoveFilterStrategyTest, ThePeriodHoldsBeyondThirtyTwoBits) {
  add(1);
  heuristic->nbIterations = (std::uint64_t{1} << 32) + 500;
  strategy->lastFilter = 4294966796u;  // 1000 iterations ago
  strategy->beforeIteration();
  EXPECT_EQ(strategy->lastFilter, 500u);
  strategy->scores.clear();
  heuristic->nbIterations += 999;
  strategy->beforeIteration();
  EXPECT_TRUE(strategy->scores.empty());
}

TEST_F(MoveFilterStrategyTest, ScoresFollowTheFormula) {
  CountedMove* good = add(1);
  CountedMove* heavy = add(1, 0.5);
  CountedMove* failing = add(1);
  add(1);  // never tried
  good->count(4, 10, 1, 20);
  heavy->count(2, 6, 0, 20);
  failing->count(0, 1, 1000, 1001);
  pass();
  const double improved = 4 / 2.0 + 0.5 * 2 / 1.0;
  const double accepted = 10 / 2.0 + 0.5 * 6 / 1.0 + 1 / 1001.0;
  ASSERT_EQ(strategy->scores.size(), 4u);
  EXPECT_DOUBLE_EQ(strategy->scores[0], 1 + 10 * 10 / accepted + 30 * 4 / improved);
  EXPECT_DOUBLE_EQ(strategy->scores[1], 0.5 + 10 * 3 / accepted + 30 * 1 / improved);
  EXPECT_DOUBLE_EQ(strategy->scores[2], 0.0);
  EXPECT_DOUBLE_EQ(strategy->scores[3], 1.0);
}

TEST_F(MoveFilterStrategyTest, WithoutAnyImprovementTheScoresAreTheFactors) {
  add(1)->count(0, 10, 0, 20);
  add(1, 0.25)->count(0, 3, 0, 20);
  pass();
  EXPECT_EQ(strategy->scores, (CacheLineVector<double>{1.0, 0.25}));
}

TEST_F(MoveFilterStrategyTest, OneUnitLeavesEachMoveThatHasTooMuch) {
  add(6)->count(0, 5, 0, 10);
  add(2)->count(0, 5, 0, 10);
  pass();
  EXPECT_EQ(weights(), (Weights{5, 3}));
  pass();
  EXPECT_EQ(weights(), (Weights{4, 4}));
  pass();
  EXPECT_EQ(weights(), (Weights{4, 4})) << "equal shares";
  EXPECT_EQ(rng, 1u) << "single candidates leave no choice";
}

TEST_F(MoveFilterStrategyTest, AFailingMoveLosesItsWeightUnitByUnit) {
  add(2)->count(3, 5, 0, 10);
  add(2)->count(0, 0, 1000, 1000);
  pass();
  EXPECT_EQ(weights(), (Weights{3, 1}));
  pass();
  EXPECT_EQ(weights(), (Weights{4, 0}));
  pass();
  EXPECT_EQ(weights(), (Weights{4, 0}));
}

TEST_F(MoveFilterStrategyTest, AMoveThatWasAcceptedOnceKeepsAUnit) {
  add(2)->count(3, 5, 0, 10);
  add(2)->count(0, 1, 1000, 1001);
  pass();
  pass();
  pass();
  EXPECT_EQ(weights(), (Weights{3, 1}));
}

TEST_F(MoveFilterStrategyTest, WithoutAMoveBelowItsDueWeightNothingMoves) {
  // Shares of 4/3 are cut to 1: nothing is below, one is above.
  add(2)->count(0, 1, 0, 1);
  add(1)->count(0, 1, 0, 1);
  add(1)->count(0, 1, 0, 1);
  pass();
  EXPECT_TRUE(strategy->increased.empty());
  EXPECT_EQ(strategy->decreased.size(), 1u);
  EXPECT_EQ(weights(), (Weights{2, 1, 1}));
}

TEST_F(MoveFilterStrategyTest, UnitsAreDrawnAndTheSumIsConstant) {
  for (const std::uint32_t weight : {9u, 9u, 0u, 0u, 0u}) add(weight)->count(0, 1, 0, 2);
  test::Draws draws(rng);
  Weights expected{9, 9, 0, 0, 0};
  for (int i = 0; i < 2; ++i) ++expected[2 + draws.index(3)];
  for (int i = 0; i < 2; ++i) --expected[draws.index(2)];
  pass();
  EXPECT_EQ(weights(), expected);
  EXPECT_EQ(rng, draws.state);
}

TEST_F(MoveFilterStrategyTest, ADrawThatFindsNoWeightDoesNotCount) {
  add(0)->count(5, 5, 0, 5);
  for (int i = 0; i < 3; ++i) add(1)->count(0, 0, 1000, 1000);
  test::Draws draws(rng);
  Weights expected{3, 1, 1, 1};
  for (int nbTaken = 0; nbTaken < 3;) {
    std::uint32_t& weight = expected[1 + draws.index(3)];
    if (weight == 0) continue;
    --weight;
    ++nbTaken;
  }
  pass();
  EXPECT_EQ(weights(), (Weights{3, 0, 0, 0}));
  EXPECT_EQ(weights(), expected);
  EXPECT_EQ(rng, draws.state);
}

TEST_F(MoveFilterStrategyTest, WhenEveryMoveFailsNothingMoves) {
  add(2)->count(0, 0, 1000, 1000);
  add(1)->count(0, 0, 1000, 1000);
  pass();
  EXPECT_EQ(weights(), (Weights{2, 1}));
}

TEST_F(MoveFilterStrategyTest, ExplorationGivesADroppedMoveAUnitOfTheFirstHeaviest) {
  strategy->explorationEnabled = true;
  // Every move fails, so that the pass before moves nothing.
  const auto addFailing = [&](std::uint32_t weight, double factor) {
    add(weight, factor)->count(0, 0, 1000, 1000);
  };
  for (const std::uint32_t weight : {1u, 3u, 3u}) addFailing(weight, 1.0);
  for (int i = 0; i < 2; ++i) addFailing(0, 0.0);
  addFailing(0, 1.0);
  test::Draws draws(rng);
  draws.step();
  pass();
  EXPECT_EQ(weights(), (Weights{1, 2, 3, 0, 0, 1})) << "the dropped ones before it have no share";
  EXPECT_EQ(rng, draws.state);
}

TEST_F(MoveFilterStrategyTest, ExplorationCanDropTheHeaviestMove) {
  strategy->explorationEnabled = true;
  add(1)->count(0, 1, 0, 1);
  add(0);
  strategy->period = 1;
  pass();
  EXPECT_EQ(weights(), (Weights{0, 1}));
}

TEST_F(MoveFilterStrategyTest, WithoutADroppedMoveExplorationDrawsNothing) {
  strategy->explorationEnabled = true;
  add(1);
  add(1);
  pass();
  EXPECT_EQ(rng, 1u);
}

TEST_F(MoveFilterStrategyTest, StatisticsAreThreeLines) {
  std::ostringstream out;
  strategy->printStatistics(out);
  strategy->explorationEnabled = true;
  strategy->printStatistics(out);
  EXPECT_EQ(out.str(),
            "move filter exploration enabled: no\nmove filter period: 1000\n"
            "move filter infeasible ratio: 0.99\n"
            "move filter exploration enabled: yes\nmove filter period: 1000\n"
            "move filter infeasible ratio: 0.99\n");
}

}  // namespace
}  // namespace ombrix
