#include "solver/move/poolfiller.h"

#include <string>
#include <vector>

#include "common/failure.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/move/basicmovefactory.h"
#include "solver/move/movesequence.h"
#include "tests/support/failures.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

class PoolFillerTest : public testing::Test {
protected:
  /// "name*weight" of every move in the pool, in order. Without the advanced moves unless asked
  /// for.
  std::string fill(const PoolSettings& settings,
                   const std::vector<std::uint32_t>& doubleComparisons = {},
                   bool withAdvancedMoves = false) {
    graph.start();
    const MoveAnalysis analysis(graph.builder.fields, withAdvancedMoves);
    AutonomousStructure mirror(*graph.dag, analysis, graph.rng);
    HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
    PoolSettings own = settings;
    own.advancedMovesEnabled = own.advancedMovesEnabled && withAdvancedMoves;
    fillMovePool(heuristic, *graph.structure, doubleComparisons, own, &mirror);
    return describe(heuristic.movePool);
  }

  static std::string describe(const MovePool& pool) {
    std::string text;
    for (const auto& move : pool.moves) {
      text += (text.empty() ? "" : " ") + move->name + "*" + std::to_string(move->initialWeight);
    }
    return text;
  }

  /// The moves on chains and runs have tests of their own.
  static PoolSettings flipsOnly() {
    PoolSettings settings;
    settings.movePathEnabled = settings.moveCycleEnabled = false;
    settings.moveForkCycleEnabled = settings.moveForkPathEnabled = false;
    return settings;
  }

  /// Lists over two decisions each: the given numbers of them are free, and exactly-one lists.
  void buildLists(std::uint32_t nbFree, std::uint32_t nbExactlyOne) {
    auto& builder = graph.builder;
    for (std::uint32_t i = 0; i < nbFree + nbExactlyOne; ++i) {
      const auto list = builder.node(NodeType::BooleanSum, builder.booleans(2));
      if (i < nbFree) continue;
      builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
    }
  }

  test::SearchGraph graph;
};

TEST_F(PoolFillerTest, BasicMovesStandBySizeThenKindWithTheirWeights) {
  auto& builder = graph.builder;
  const auto x = builder.booleans(20);
  for (int i = 0; i < 6; ++i) builder.minimise(builder.node(NodeType::BooleanSum, x));
  EXPECT_EQ(fill(flipsOnly()),
            "1-Balance*4 1-Swap*4 1-Flip*8 2-Balance*2 2-Swap*2 2-Flip*8 3-Balance*1 3-Swap*1 "
            "3-Flip*2 4-Balance*1 4-Swap*1 4-Flip*1 5-Flip*1 6-Flip*1 7-Flip*1 8-Flip*1 "
            "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, MovesThatTheModelCannotFeedAreLeftOut) {
  auto& builder = graph.builder;
  builder.minimise(builder.node(NodeType::BooleanSum, builder.booleans(3)));
  EXPECT_EQ(fill(flipsOnly()), "1-Balance*4 1-Swap*4 1-Flip*8 2-Flip*8 3-Flip*2 1-SimpleFlip*1");
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

TEST_F(PoolFillerTest, BeyondTheTablesNoSizeBringsAMove) {
  buildLists(2, 60);
  graph.builder.booleans(20);
  const std::string expected =
      "2-1-Roll*8 2-Mirror*8 3-1-Roll*8 3-Mirror*8 4-1-Roll*8 4-2-Roll*8 4-Scramble*8 4-Mirror*8 "
      "5-1-Roll*8 5-2-Roll*8 5-Scramble*8 5-Mirror*8 "
      "6-1-Roll*8 6-2-Roll*8 6-3-Roll*8 6-Scramble*4 6-Mirror*8 "
      "7-1-Roll*8 7-2-Roll*8 7-3-Roll*8 7-Scramble*2 7-Mirror*8 "
      "8-1-Roll*8 8-2-Roll*8 8-3-Roll*8 8-Scramble*1 8-Mirror*8 "
      "9-1-Roll*8 9-2-Roll*8 9-3-Roll*8 9-Scramble*1 9-Mirror*8 "
      "10-1-Roll*8 10-2-Roll*8 10-3-Roll*8 10-Scramble*1 10-Mirror*8 "
      "1-Balance*4 1-Swap*4 1-Flip*8 "
      "2-Balance*2 2-Swap*2 2-Flip*8 2-Path*6 2-Cycle*2 "
      "3-Balance*1 3-Swap*1 3-Flip*2 3-Path*6 3-Cycle*4 "
      "3-2-ForkCycle*2 3-3-ForkCycle*1 3-2-ForkPath*1 3-3-ForkPath*1 "
      "4-Balance*1 4-Swap*1 4-Flip*1 4-Path*8 4-Cycle*8 5-Flip*1 5-Path*8 5-Cycle*8 "
      "6-Flip*1 6-Path*4 6-Cycle*4 7-Flip*1 7-Path*2 7-Cycle*2 8-Flip*1 8-Path*1 8-Cycle*1 "
      "1-SimpleFlip*1";
  PoolSettings settings;
  settings.largeMirrorSize = settings.largeRollSize = 0;
  for (const std::uint32_t size : {10u, 11u, 12u, 13u, 25u, 60u, 4294967295u}) {
    settings.neighborhoodSize = size;
    graph.structure.reset();
    EXPECT_EQ(fill(settings), expected) << size;
  }
}

TEST_F(PoolFillerTest, EveryTableOfTheBasicMovesReadsAsZeroBeyondItsEnd) {
  buildLists(2, 60);
  graph.builder.booleans(20);
  graph.start();
  const BasicMoveFactory factory(*graph.structure, 50);
  for (const std::uint32_t k : {0u, 9u, 10u, 11u, 12u, 13u, 21u, 22u, 60u, 4294967295u}) {
    EXPECT_EQ(factory.balance(k), nullptr) << k;
    EXPECT_EQ(factory.swap(k), nullptr) << k;
    EXPECT_EQ(factory.flip(k), nullptr) << k;
    EXPECT_EQ(factory.path(k), nullptr) << k;
    EXPECT_EQ(factory.cycle(k), nullptr) << k;
    for (const std::uint32_t nbBranches : {2u, 3u}) {
      EXPECT_EQ(factory.forkCycle(k, nbBranches), nullptr) << k;
      EXPECT_EQ(factory.forkPath(k, nbBranches), nullptr) << k;
    }
  }
  const WeightTable full = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
  EXPECT_EQ(weightAt(full, 0), 0u);
  EXPECT_EQ(weightAt(full, 1), 7u);
  EXPECT_EQ(weightAt(full, 10), 7u);
  EXPECT_EQ(weightAt(full, 11), 0u);
  EXPECT_EQ(weightAt(full, 4294967295u), 0u);
}

TEST_F(PoolFillerTest, EachKindHasItsSwitch) {
  auto& builder = graph.builder;
  builder.minimise(builder.node(NodeType::BooleanSum, builder.booleans(2)));
  const auto without = [&](bool PoolSettings::*flag) {
    PoolSettings settings = flipsOnly();
    settings.*flag = false;
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

TEST_F(PoolFillerTest, ChainsStandBehindTheFlipsOfTheirSize) {
  buildLists(2, 0);
  PoolSettings settings;
  settings.moveBalanceEnabled = settings.moveSwapEnabled = settings.moveFlipEnabled = false;
  EXPECT_EQ(fill(settings),
            "2-Path*6 2-Cycle*2 3-Path*6 3-Cycle*4 3-2-ForkCycle*2 3-3-ForkCycle*1 3-2-ForkPath*1 "
            "3-3-ForkPath*1 4-Path*8 4-Cycle*8 5-Path*8 5-Cycle*8 6-Path*4 6-Cycle*4 7-Path*2 "
            "7-Cycle*2 8-Path*1 8-Cycle*1 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, PathsNeedAFreeList) {
  buildLists(0, 1);
  PoolSettings settings;
  settings.neighborhoodSize = 3;
  settings.moveBalanceEnabled = settings.moveSwapEnabled = false;
  EXPECT_EQ(fill(settings), "2-Cycle*2 3-Cycle*4 3-2-ForkCycle*2 3-3-ForkCycle*1 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, ModelsWithoutListsHaveNoChains) {
  graph.builder.boolean();
  EXPECT_EQ(fill({}), "1-Flip*8 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, EachKindOfChainHasItsSwitch) {
  buildLists(1, 0);
  PoolSettings settings;
  settings.moveBalanceEnabled = settings.moveSwapEnabled = settings.moveFlipEnabled = false;
  settings.neighborhoodSize = 3;
  const auto without = [&](bool PoolSettings::*flag) {
    PoolSettings reduced = settings;
    reduced.*flag = false;
    graph.structure.reset();
    return fill(reduced);
  };
  EXPECT_EQ(without(&PoolSettings::movePathEnabled),
            "2-Cycle*2 3-Cycle*4 3-2-ForkCycle*2 3-3-ForkCycle*1 3-2-ForkPath*1 3-3-ForkPath*1 "
            "1-SimpleFlip*1");
  EXPECT_EQ(without(&PoolSettings::moveCycleEnabled),
            "2-Path*6 3-Path*6 3-2-ForkCycle*2 3-3-ForkCycle*1 3-2-ForkPath*1 3-3-ForkPath*1 "
            "1-SimpleFlip*1");
  EXPECT_EQ(without(&PoolSettings::moveForkCycleEnabled),
            "2-Path*6 2-Cycle*2 3-Path*6 3-Cycle*4 3-2-ForkPath*1 3-3-ForkPath*1 1-SimpleFlip*1");
  EXPECT_EQ(without(&PoolSettings::moveForkPathEnabled),
            "2-Path*6 2-Cycle*2 3-Path*6 3-Cycle*4 3-2-ForkCycle*2 3-3-ForkCycle*1 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, RunMovesComeFirstAndLargeOnesAfterTheBasicOnes) {
  buildLists(0, 60);
  PoolSettings settings = flipsOnly();
  settings.moveBalanceEnabled = false;
  EXPECT_EQ(fill(settings),
            "2-1-Roll*8 2-Mirror*8 3-1-Roll*8 3-Mirror*8 4-1-Roll*8 4-2-Roll*8 4-Scramble*8 "
            "4-Mirror*8 5-1-Roll*8 5-2-Roll*8 5-Scramble*8 5-Mirror*8 6-1-Roll*8 6-2-Roll*8 "
            "6-3-Roll*8 6-Scramble*4 6-Mirror*8 7-1-Roll*8 7-2-Roll*8 7-3-Roll*8 7-Scramble*2 "
            "7-Mirror*8 8-1-Roll*8 8-2-Roll*8 8-3-Roll*8 8-Scramble*1 8-Mirror*8 "
            "1-Swap*4 2-Swap*2 3-Swap*1 4-Swap*1 "
            "8-50-Mirror*8 8-50-1-Roll*8 8-50-2-Roll*8 8-50-3-Roll*8 8-50-25-Roll*8 "
            "1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, RunMovesAreBoundedByTheExactlyOneLists) {
  buildLists(0, 5);
  PoolSettings settings = flipsOnly();
  settings.moveBalanceEnabled = settings.moveSwapEnabled = false;
  EXPECT_EQ(fill(settings),
            "2-1-Roll*8 2-Mirror*8 3-1-Roll*8 3-Mirror*8 4-1-Roll*8 4-2-Roll*8 4-Scramble*8 "
            "4-Mirror*8 5-1-Roll*8 5-2-Roll*8 5-Scramble*8 5-Mirror*8 "
            "8-5-1-Roll*8 8-5-2-Roll*8 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, TheLargeMirrorIsSwitchedWithTheSwaps) {
  buildLists(0, 12);
  PoolSettings settings = flipsOnly();
  settings.moveBalanceEnabled = settings.moveMirrorEnabled = settings.moveRollEnabled = false;
  settings.neighborhoodSize = 2;
  settings.largeMirrorSize = 10;
  EXPECT_EQ(fill(settings), "1-Swap*4 2-Swap*2 2-10-Mirror*8 1-SimpleFlip*1");
  graph.structure.reset();
  settings.moveSwapEnabled = false;
  settings.moveMirrorEnabled = true;
  EXPECT_EQ(fill(settings), "2-Mirror*8 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, RunMovesAndLargeMovesHaveTheirSwitches) {
  buildLists(0, 12);
  PoolSettings settings = flipsOnly();
  settings.moveBalanceEnabled = settings.moveSwapEnabled = false;
  settings.neighborhoodSize = 4;
  settings.tspMovesEnabled = false;
  settings.largeRollSize = 7;
  EXPECT_EQ(fill(settings), "4-7-1-Roll*8 4-7-2-Roll*8 4-7-3-Roll*8 1-SimpleFlip*1");
  graph.structure.reset();
  settings.tspMovesEnabled = true;
  settings.basicMovesEnabled = settings.moveRollEnabled = false;
  EXPECT_EQ(fill(settings), "2-Mirror*8 3-Mirror*8 4-Scramble*8 4-Mirror*8 1-SimpleFlip*1");
  graph.structure.reset();
  settings.moveScrambleEnabled = false;
  EXPECT_EQ(fill(settings), "2-Mirror*8 3-Mirror*8 4-Mirror*8 1-SimpleFlip*1");
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

TEST_F(PoolFillerTest, ComparisonsAndListsOfDoublesBringTheirMoves) {
  auto& builder = graph.builder;
  const auto a = builder.floating(0, 1);
  const auto b = builder.floating(0, 1);
  const auto sum = builder.doubleNode(NodeType::DoubleSum, {a, b});
  const auto comparison = builder.node(NodeType::DoubleLeq, {sum, builder.doubleConstant(1)});
  EXPECT_EQ(fill({}, {comparison}), "1-FloatSimpleFlip*1 Tight*1 FloatBalance*1");
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

TEST_F(PoolFillerTest, ATargetingRateAboveAHundredIsRefusedBySequencesToo) {
  graph.builder.booleans(2);
  PoolSettings settings;
  settings.targetingRate = 110;
  test::expectFailure(kInternal, "MoveSequence::MoveSequence",
                      "Targeting rate must be smaller than 100.",
                      [&] { fill(settings, {}, true); });
}

/// An objective read from an array of the given size at a sum of five booleans.
class GuardedSequences : public PoolFillerTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(GuardedSequences, KeepTheConstraintsWhereAnEvaluationMayFailWithoutThem) {
  auto& builder = graph.builder;
  const auto list = builder.node(NodeType::BooleanSum, builder.booleans(5));
  builder.constraint(builder.node(NodeType::Eq, {list, builder.constant(1)}));
  const auto array = builder.constArray(std::vector<std::int64_t>(GetParam(), 7));
  builder.minimise(builder.node(NodeType::At, {array, list}));
  graph.start();
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  fillMovePool(heuristic, *graph.structure, {}, {}, nullptr);
  int nbSequences = 0;
  for (const auto& move : heuristic.movePool.moves) {
    const auto* sequence = dynamic_cast<const MoveSequence*>(move.get());
    if (sequence == nullptr) continue;
    ++nbSequences;
    EXPECT_EQ(sequence->keepConstraintsOff, GetParam() > 5);
  }
  EXPECT_EQ(nbSequences, 3);
}

INSTANTIATE_TEST_SUITE_P(ArrayOf, GuardedSequences, testing::Values(2, 5, 6, 9),
                         testing::PrintToStringParamName());

TEST_F(PoolFillerTest, AdvancedMovesStandBetweenTheRunsAndTheBasicOnes) {
  buildLists(0, 2);
  PoolSettings settings;
  settings.neighborhoodSize = 2;
  const std::string text = fill(settings, {}, true);
  const std::string advanced =
      " 2-Sequence*1 3-Sequence*1 4-Sequence*1 2-BinPacking*1 3-BinPacking*1 4-BinPacking*1 "
      "2-EjectionChain*1 3-EjectionChain*1 4-EjectionChain*1 SetPartition*1 1-Balance*4 ";
  EXPECT_NE(text.find(advanced), std::string::npos) << text;
  EXPECT_LT(text.find("-Mirror"), text.find("2-Sequence"));
}

TEST_F(PoolFillerTest, AdvancedMovesHaveTheirSwitches) {
  buildLists(0, 2);
  PoolSettings base;
  base.basicMovesEnabled = base.tspMovesEnabled = false;
  const auto without = [&](bool PoolSettings::*flag) {
    PoolSettings settings = base;
    settings.*flag = false;
    graph.structure.reset();
    return fill(settings, {}, true);
  };
  const std::string sequences = "2-Sequence*1 3-Sequence*1 4-Sequence*1 ";
  const std::string packings = "2-BinPacking*1 3-BinPacking*1 4-BinPacking*1 ";
  const std::string chains = "2-EjectionChain*1 3-EjectionChain*1 4-EjectionChain*1 ";
  const std::string partition = "SetPartition*1 ";
  const std::string last = "1-SimpleFlip*1";
  EXPECT_EQ(without(&PoolSettings::moveSequenceEnabled), packings + chains + partition + last);
  EXPECT_EQ(without(&PoolSettings::moveBinPackingEnabled), sequences + chains + partition + last);
  EXPECT_EQ(without(&PoolSettings::moveEjectionChainEnabled),
            sequences + packings + partition + last);
  EXPECT_EQ(without(&PoolSettings::moveSetPartitionEnabled), sequences + packings + chains + last);
  EXPECT_EQ(without(&PoolSettings::advancedMovesEnabled), last);
}

TEST_F(PoolFillerTest, WithoutConstraintsOnDecisionsAloneNoMovePlans) {
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, graph.builder.booleans(3)));
  PoolSettings settings;
  settings.basicMovesEnabled = false;
  EXPECT_EQ(fill(settings, {}, true), "2-Sequence*1 3-Sequence*1 4-Sequence*1 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, WithoutAMirrorNoMovePlans) {
  buildLists(0, 2);
  graph.start();
  HeuristicAutoAnnealing heuristic(*graph.dag, &graph.rng);
  PoolSettings settings;
  settings.basicMovesEnabled = settings.tspMovesEnabled = false;
  fillMovePool(heuristic, *graph.structure, {}, settings);
  EXPECT_EQ(describe(heuristic.movePool),
            "2-Sequence*1 3-Sequence*1 4-Sequence*1 SetPartition*1 1-SimpleFlip*1");
}

TEST_F(PoolFillerTest, ListsThatAreNotExactlyOneBringNoExchange) {
  buildLists(2, 0);
  PoolSettings settings;
  settings.basicMovesEnabled = settings.tspMovesEnabled = false;
  EXPECT_EQ(fill(settings, {}, true).find("SetPartition"), std::string::npos);
}

TEST_F(PoolFillerTest, WithoutBooleansThereAreNoAdvancedMoves) {
  graph.builder.floating(0, 1);
  EXPECT_EQ(fill({}, {}, true), "1-FloatSimpleFlip*1");
}

}  // namespace
}  // namespace ombrix
