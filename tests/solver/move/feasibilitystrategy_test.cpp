#include "solver/move/feasibilitystrategy.h"

#include "strategies_fixture.h"

namespace ombrix {
namespace {

class FeasibilityStrategyTest : public StrategyTest {
protected:
  void start() {
    StrategyTest::start();
    strategy = std::make_unique<FeasibilityStrategy>(*heuristic);
  }

  std::unique_ptr<FeasibilityStrategy> strategy;
};

TEST_F(FeasibilityStrategyTest, ABrokenActiveConstraintIsInfeasible) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  const auto c = builder.constraint(builder.node(NodeType::Not, {x}));
  builder.constraint(y);
  start();
  dag->propagation.activateConstraint(*dag, c);
  EXPECT_EQ(verdict(*strategy, {x, y}), MoveStatus::Infeasible) << "though y is repaired";
}

TEST_F(FeasibilityStrategyTest, WhileInfeasibleEveryCandidateIsSettledByTheInfeasibility) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  const auto free = builder.boolean();
  builder.constraint(x);
  builder.constraint(builder.node(NodeType::Not, {y}));
  start();
  EXPECT_EQ(verdict(*strategy, {x}), MoveStatus::Improved);
  EXPECT_EQ(verdict(*strategy, {y}), MoveStatus::Rejected);
  EXPECT_EQ(verdict(*strategy, {free}), MoveStatus::Accepted);
  EXPECT_EQ(verdict(*strategy, {x, y}), MoveStatus::Accepted) << "one repaired, one broken";
}

TEST_F(FeasibilityStrategyTest, FromAFeasibleSolutionAWorseCandidateIsInfeasible) {
  const auto x = builder.boolean();
  const auto free = builder.boolean();
  builder.constraint(builder.node(NodeType::Not, {x}));
  start();
  EXPECT_EQ(verdict(*strategy, {x}), MoveStatus::Infeasible);
  EXPECT_EQ(verdict(*strategy, {free}), std::nullopt);
}

TEST_F(FeasibilityStrategyTest, AtFeasibilityAllConstraintsBecomeActiveAndObjectivesAreFollowed) {
  const auto x = builder.boolean();
  builder.constraint(builder.node(NodeType::Not, {x}));
  builder.minimise(x);
  builder.minimise(builder.boolean());
  start();
  heuristic->objectiveIndex = 0;
  dag->propagation.activeLevel = 0;
  strategy->afterMove(MoveStatus::Accepted);
  EXPECT_EQ(dag->propagation.activeLevel, 1u);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
}

TEST_F(FeasibilityStrategyTest, NothingIsActivatedWhileInfeasible) {
  builder.constraint(builder.boolean());
  start();
  dag->propagation.activeLevel = 0;
  strategy->afterMove(MoveStatus::Improved);
  EXPECT_EQ(dag->propagation.activeLevel, 0u);
  EXPECT_EQ(dag->propagation.activeConstraints.size(), 0u);
}

TEST_F(FeasibilityStrategyTest, OnceAllConstraintsAreActiveTheLevelIsLeftAlone) {
  builder.minimise(builder.boolean());
  start();
  dag->propagation.activeLevel = 0;
  strategy->afterMove(MoveStatus::Accepted);
  EXPECT_EQ(dag->propagation.activeLevel, 0u) << "no constraint at all counts as all active";
}

TEST_F(FeasibilityStrategyTest, StaleObjectivesAreBroughtUpToDateAtFeasibility) {
  const auto x = builder.boolean();
  const auto repair = builder.constraint(builder.boolean());
  const auto cost = builder.minimise(builder.node(NodeType::Not, {x}));
  start();
  dag->propagation.activeLevel = 0;
  test::setAndAccept(*dag, x, 1);
  EXPECT_EQ(dag->values[cost].intValue, 1) << "nobody follows the objective";
  test::setAndAccept(*dag, repair, 1);
  strategy->afterMove(MoveStatus::Improved);
  EXPECT_EQ(dag->values[cost].intValue, 0);
  test::expectConsistent(*dag);
}

}  // namespace
}  // namespace ombrix
