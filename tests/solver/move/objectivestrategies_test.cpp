#include "solver/move/currentobjectivestrategy.h"
#include "solver/move/previousobjectivesstrategy.h"
#include "strategies_fixture.h"

namespace ombrix {
namespace {

class ObjectiveStrategiesTest : public StrategyTest {};

TEST_F(ObjectiveStrategiesTest, TheCurrentObjectiveKeepsWhatIsNoWorse) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  const auto free = builder.boolean();
  builder.maximise(builder.node(NodeType::Sum, {x, y}));
  start();
  test::setAndAccept(*dag, x, 1);
  CurrentObjectiveStrategy strategy(*heuristic);
  EXPECT_EQ(verdict(strategy, {y}), MoveStatus::Improved);
  EXPECT_EQ(verdict(strategy, {free}), MoveStatus::Accepted);
  EXPECT_EQ(verdict(strategy, {x, y}), MoveStatus::Accepted) << "a plateau";
  EXPECT_EQ(verdict(strategy, {x}), std::nullopt) << "worse is passed on";
}

TEST_F(ObjectiveStrategiesTest, TheFirstEarlierObjectiveThatDiffersSettles) {
  const auto x = builder.boolean();
  const auto y = builder.boolean();
  const auto z = builder.boolean();
  builder.maximise(x);
  builder.minimise(y);
  builder.maximise(z);
  start();
  PreviousObjectivesStrategy strategy(*heuristic);
  EXPECT_EQ(verdict(strategy, {x, y}), MoveStatus::Improved);
  EXPECT_EQ(verdict(strategy, {y}), MoveStatus::Rejected);
  EXPECT_EQ(verdict(strategy, {z}), std::nullopt);
  heuristic->objectiveIndex = 1;
  EXPECT_EQ(verdict(strategy, {y}), std::nullopt) << "the current one is not an earlier one";
  EXPECT_EQ(verdict(strategy, {x}), MoveStatus::Improved);
  heuristic->objectiveIndex = 0;
  EXPECT_EQ(verdict(strategy, {x}), std::nullopt);
}

}  // namespace
}  // namespace ombrix
