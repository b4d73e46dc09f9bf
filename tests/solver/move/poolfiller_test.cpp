#include "solver/move/poolfiller.h"

#include <string>

#include "common/failure.h"
#include "tests/support/failures.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

class PoolFillerTest : public testing::Test {
protected:
  /// "name*weight" of every move in the pool, in order.
  std::string fill(const PoolSettings& settings,
                   const std::vector<std::uint32_t>& doubleComparisons = {}) {
    graph.start();
    MovePool pool;
    fillMovePool(pool, *graph.structure, doubleComparisons, settings);
    std::string text;
    for (const auto& move : pool.moves) {
      text += (text.empty() ? "" : " ") + move->name + "*" + std::to_string(move->initialWeight);
    }
    return text;
  }

  test::SearchGraph graph;
};

TEST_F(PoolFillerTest, BasicMovesStandBySizeThenKindWithTheirWeights) {
  auto& builder = graph.builder;
  const auto x = builder.booleans(20);
  for (int i = 0; i < 6; ++i) builder.minimise(builder.node(NodeType::BooleanSum, x));
  EXPECT_EQ(fill({}),
            "1-Balance*4 1-Swap*4 1-Flip*8 2-Balance*2 2-Swap*2 2-Flip*8 3-Balance*1 3-Swap*1 "
            "3-Flip*2 4-Balance*1 4-Swap*1 4-Flip*1 5-Flip*1 6-Flip*1 7-Flip*1 8-Flip*1 "
            "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, MovesThatTheModelCannotFeedAreLeftOut) {
  auto& builder = graph.builder;
  builder.minimise(builder.node(NodeType::BooleanSum, builder.booleans(3)));
  EXPECT_EQ(fill({}), "1-Balance*4 1-Swap*4 1-Flip*8 2-Flip*8 3-Flip*2 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, ANeighborhoodOfZeroLeavesTheSimpleFlip) {
  graph.builder.booleans(3);
  PoolSettings settings;
  settings.neighborhoodSize = 0;
  EXPECT_EQ(fill(settings), "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, ANeighborhoodBeyondTheTablesAddsNothing) {
  graph.builder.booleans(30);
  PoolSettings settings;
  settings.neighborhoodSize = 4000000000u;
  EXPECT_EQ(fill(settings),
            "1-Flip*8 2-Flip*8 3-Flip*2 4-Flip*1 5-Flip*1 6-Flip*1 7-Flip*1 8-Flip*1 "
            "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, EachKindHasItsSwitch) {
  auto& builder = graph.builder;
  builder.minimise(builder.node(NodeType::BooleanSum, builder.booleans(2)));
  const auto without = [&](bool PoolSettings::*flag) {
    PoolSettings settings;
    settings.*flag = false;
    test::SearchGraph own;
    return fill(settings);
  };
  EXPECT_EQ(without(&PoolSettings::moveBalanceEnabled),
            "1-Swap*4 1-Flip*8 2-Flip*8 1-SimpleFlip*1");
  graph.structure.reset();
  EXPECT_EQ(without(&PoolSettings::moveSwapEnabled),
            "1-Balance*4 1-Flip*8 2-Flip*8 1-SimpleFlip*1");
  graph.structure.reset();
  EXPECT_EQ(without(&PoolSettings::moveFlipEnabled), "1-Balance*4 1-Swap*4 1-SimpleFlip*1");
  graph.structure.reset();
  EXPECT_EQ(without(&PoolSettings::basicMovesEnabled), "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, AModelOfDoublesHasTheDoubleMovesItCanFeed) {
  graph.builder.floating(0, 1);
  EXPECT_EQ(fill({}), "1-FloatSimpleFlip*1");
}

TEST_F(PoolFillerTest, ComparisonsOfDoublesBringTheirMove) {
  auto& builder = graph.builder;
  const auto comparison =
      builder.node(NodeType::DoubleLeq, {builder.floating(0, 1), builder.doubleConstant(1)});
  EXPECT_EQ(fill({}, {comparison}), "1-FloatSimpleFlip*1 Tight*1");
}

TEST_F(PoolFillerTest, AModelWithoutBooleansAndDoublesGetsTheSimpleFlip) {
  graph.builder.integer();
  EXPECT_EQ(fill({}), "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, ATargetingRateAboveAHundredIsRefusedByTheFirstMoveThatMinds) {
  graph.builder.booleans(2);
  PoolSettings settings;
  settings.targetingRate = 110;
  test::expectFailure(kInternal, "MoveKFlip::MoveKFlip", "Targeting rate must be smaller than 100.",
                      [&] { fill(settings); });
}

}  // namespace
}  // namespace ombrix
