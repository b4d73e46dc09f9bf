#include "solver/move/move.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/graphs.h"
#include "tests/support/scriptedmove.h"

namespace ombrix {
namespace {

using test::ScriptedMove;

class MoveTest : public testing::Test {
protected:
  void start() {
    dag = builder.makeDag();
    move = std::make_unique<ScriptedMove>(*dag, rng, std::vector<std::vector<std::uint32_t>>{});
  }

  test::GraphBuilder builder;
  std::unique_ptr<Dag> dag;
  std::uint32_t rng = 1;
  std::unique_ptr<ScriptedMove> move;
};

TEST_F(MoveTest, NamesShowTheSizeFirst) {
  EXPECT_EQ(formatMoveName(1, "SimpleFlip"), "1-SimpleFlip");
  EXPECT_EQ(formatMoveName(4, formatMoveName(2, "ForkCycle")), "4-2-ForkCycle");
}

TEST_F(MoveTest, StartsWithItsInitialWeightAndNoCounts) {
  start();
  const ScriptedMove heavy(*dag, rng, {}, 8);
  EXPECT_EQ(heavy.initialWeight, 8u);
  EXPECT_EQ(heavy.weight, 8u);
  EXPECT_EQ(heavy.nbAttempted, 0u);
  EXPECT_EQ(heavy.getName(), "Scripted");
  EXPECT_EQ(move->weight, 1u);
  EXPECT_EQ(move->getSelectionFactor(), 1.0);
}

TEST_F(MoveTest, FinishCountsAndKeepsOrForgets) {
  const auto x = builder.boolean();
  start();
  const auto valueAfter = [&](MoveStatus status) {
    test::setAndAccept(*dag, x, 0);
    move->flip(x);
    move->finish(status);
    return dag->values[x].intValue;
  };
  EXPECT_EQ(valueAfter(MoveStatus::Rejected), 0);
  EXPECT_EQ(valueAfter(MoveStatus::Infeasible), 0);
  EXPECT_EQ(valueAfter(MoveStatus::Accepted), 1);
  EXPECT_EQ(valueAfter(MoveStatus::Improved), 1);
  EXPECT_EQ(valueAfter(MoveStatus::Improved), 1);
  EXPECT_EQ(move->nbAttempted, 5u);
  EXPECT_EQ(move->nbRejected, 1u);
  EXPECT_EQ(move->nbInfeasibles, 1u);
  EXPECT_EQ(move->nbAccepted, 3u);
  EXPECT_EQ(move->nbImprovements, 2u);
  EXPECT_EQ(move->nbAttempted, move->nbAccepted + move->nbRejected + move->nbInfeasibles);
}

TEST_F(MoveTest, StatisticsAreSixLines) {
  start();
  move->nbAttempted = 10;
  move->nbAccepted = 4;
  move->nbRejected = 3;
  move->nbImprovements = 2;
  move->nbInfeasibles = 1;
  std::ostringstream out;
  move->printStatistics(out);
  EXPECT_EQ(out.str(),
            "Move :Scripted\nNbImprovements : 2\nNbAccepted : 4\nNbRejected : 3\n"
            "NbInfeasibles : 1\nNbAttempted : 10\n");
}

TEST_F(MoveTest, EvaluateStopsAtABrokenActiveConstraint) {
  const auto x = builder.boolean();
  builder.constraint(builder.node(NodeType::Not, {x}));
  const auto objective = builder.minimise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  dag->propagation.activateAllConstraints();
  move->flip(x);
  EXPECT_FALSE(move->evaluate(1));
  EXPECT_EQ(dag->tValues[objective].intValue, 0) << "nothing above was evaluated";
  move->finish(MoveStatus::Infeasible);
  dag->propagation.activeConstraints.clear();
  move->flip(x);
  EXPECT_TRUE(move->evaluate(0));
  EXPECT_EQ(dag->tValues[objective].intValue, 0) << "level 0 holds the constraints only";
  EXPECT_TRUE(move->evaluateAll());
  EXPECT_EQ(dag->tValues[objective].intValue, 1);
  move->finish(MoveStatus::Rejected);
}

TEST_F(MoveTest, ComparesTheCandidateWithTheCommittedState) {
  const auto x = builder.boolean();
  builder.constraint(x);
  const auto cost = builder.minimise(builder.node(NodeType::Sum, {x, builder.boolean()}));
  start();
  EXPECT_EQ(move->getInfeasibility().nbViolated, 1);
  move->flip(x);
  EXPECT_TRUE(move->evaluateAll());
  EXPECT_TRUE(move->isInfeasibilityBetter());
  EXPECT_FALSE(move->isInfeasibilityWorse());
  EXPECT_TRUE(move->isObjectiveWorse(0));
  EXPECT_FALSE(move->isObjectiveBetter(0));
  EXPECT_EQ(move->getObjectiveValue(0).intValue, 0);
  move->finish(MoveStatus::Accepted);
  EXPECT_EQ(dag->values[cost].intValue, 1);
  move->flip(x);
  EXPECT_TRUE(move->evaluateAll());
  EXPECT_TRUE(move->isInfeasibilityWorse());
  EXPECT_TRUE(move->isObjectiveBetter(0));
  move->finish(MoveStatus::Rejected);
}

TEST_F(MoveTest, ASecondFlipInOneMoveIsIgnored) {
  const auto x = builder.boolean();
  start();
  move->flip(x);
  move->flip(x);
  EXPECT_EQ(dag->tValues[x].intValue, 1);
  move->finish(MoveStatus::Rejected);
}

TEST_F(MoveTest, SetClampedCutsADoubleToItsBoundsButForTheTolerance) {
  const auto y = builder.floating(0, 1);
  start();
  const auto clamped = [&](double value) {
    move->setClamped(y, value);
    const double result = dag->tValues[y].doubleValue;
    move->finish(MoveStatus::Rejected);
    return result;
  };
  EXPECT_EQ(clamped(0.5), 0.5);
  EXPECT_EQ(clamped(2.0), 1.0);
  EXPECT_EQ(clamped(-2.0), 0.0);
  EXPECT_EQ(clamped(1.0 + 1e-7), 1.0 + 1e-7);
  EXPECT_EQ(clamped(-1e-7), -1e-7);
}

TEST_F(MoveTest, SetClampedAndSetRandomFlipWhatIsNoDouble) {
  const auto x = builder.boolean();
  const auto n = builder.integer();
  start();
  move->setClamped(x, 0.25);
  move->setRandom(n);
  EXPECT_EQ(dag->tValues[x].intValue, 1);
  EXPECT_EQ(dag->tValues[n].intValue, 1);
  EXPECT_EQ(rng, 1u) << "nothing is drawn";
  move->finish(MoveStatus::Rejected);
}

TEST_F(MoveTest, SetRandomDrawsBetweenTheBounds) {
  const auto y = builder.floating(-2, 6);
  start();
  test::Draws draws(rng);
  const double unit = static_cast<double>(static_cast<float>(
      static_cast<double>((std::uint64_t{draws.step()} * 2147483647) >> 32) / 2147483647.0));
  move->setRandom(y);
  EXPECT_EQ(dag->tValues[y].doubleValue, -2.0 + unit * 8.0);
  EXPECT_EQ(rng, draws.state);
  move->finish(MoveStatus::Rejected);
}

}  // namespace
}  // namespace ombrix
