#include "builder/worker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "builder/parallelizer.h"
#include "builder/solverrecord.h"
#include "solver/kernel/cacheline.h"
#include "solver/kernel/dagfixedfields.h"
#include "support/solvermodels.h"

namespace ombrix {
namespace {

class WorkerTest : public testing::Test {
protected:
  void closeKnapsack() {
    test::buildKnapsack(*solver.getModel(), 40);
    solver.getModel()->close();
  }

  static std::vector<std::string> moveNames(const Worker& worker) {
    std::vector<std::string> names;
    for (const auto& move : worker.heuristic->movePool.moves) names.push_back(move->getName());
    return names;
  }

  Ombrix solver;
};

TEST_F(WorkerTest, OwnsADagOverTheSharedFields) {
  closeKnapsack();
  Worker first(solver);
  Worker second(solver);
  EXPECT_NE(first.dag.get(), second.dag.get());
  EXPECT_EQ(first.dag->fixedFields, second.dag->fixedFields);
  EXPECT_EQ(first.heuristic->dag, first.dag.get());
  EXPECT_EQ(first.heuristic->rng, &first.rng);
  EXPECT_EQ(first.basicMoveStructure->rng, &first.rng);
}

TEST_F(WorkerTest, StartsFromSeedAndBoundsOfTheParameters) {
  closeKnapsack();
  solver.getParam()->setSeed(17);
  solver.getParam()->setObjectiveBound(0, 1234);
  Worker worker(solver);
  EXPECT_EQ(worker.rng, 17u);
  ASSERT_EQ(worker.heuristic->objectiveBounds.size(), 1u);
  EXPECT_EQ(worker.heuristic->objectiveBounds[0].intValue, 1234);
}

TEST_F(WorkerTest, ReadsSeedAndBoundsAgainButKeepsItsPool) {
  closeKnapsack();
  Worker worker(solver);
  const std::vector<std::string> names = moveNames(worker);
  solver.getParam()->setSeed(18);
  solver.getParam()->setObjectiveBound(0, 4321);
  solver.getParam()->setAdvancedParam("neighborhoodSize", 1);
  worker.readParameters();
  EXPECT_EQ(worker.rng, 18u);
  EXPECT_EQ(worker.heuristic->objectiveBounds[0].intValue, 4321);
  EXPECT_EQ(moveNames(worker), names);
}

TEST_F(WorkerTest, AnObjectiveWithoutBoundHasTheUnreachableOne) {
  closeKnapsack();
  Worker worker(solver);
  EXPECT_EQ(worker.heuristic->objectiveBounds[0].intValue,
            std::numeric_limits<std::int64_t>::max());
}

TEST_F(WorkerTest, ReadsTheAnnealingLevelAgain) {
  closeKnapsack();
  Worker worker(solver);
  const auto& annealing =
      dynamic_cast<const AnnealingStrategy&>(*worker.heuristic->strategies.back());
  EXPECT_EQ(annealing.windowSize, 2u);
  solver.getParam()->setAnnealingLevel(6);
  worker.readParameters();
  EXPECT_EQ(annealing.windowSize, 7u);
}

/// A double objective that the transformation replaces by an integer sum, since the condition of
/// its "iif" must be true.
class IntegralNodeOfDoubleObjective : public WorkerTest {
protected:
  std::int64_t boundOf(OXObjectiveDirection direction, double bound) {
    OXModel& model = *solver.getModel();
    const auto x = test::createDecisions(model, 3);
    model.addConstraint(x[0]);
    OXExpression* sum = test::createSum(model, {x[1], x[2]});
    model.addObjective(
        model.createExpression(OXOperator::Iif, x[0], sum, model.createConstant(2.5)), direction);
    model.close();
    solver.getParam()->setObjectiveBound(0, bound);
    const Worker worker(solver);
    const DagFixedFields& fields = *worker.dag->fixedFields;
    EXPECT_NE(fields.domains[fields.objectives[0]], kDoubleDomain);
    return worker.heuristic->objectiveBounds[0].intValue;
  }
};

TEST_F(IntegralNodeOfDoubleObjective, ReachesItsBoundAtTheNextIntegerAboveWhenMaximised) {
  EXPECT_EQ(boundOf(OXObjectiveDirection::Maximize, 1.5), 2);
}

TEST_F(IntegralNodeOfDoubleObjective, ReachesItsBoundAtTheNextIntegerBelowWhenMinimised) {
  EXPECT_EQ(boundOf(OXObjectiveDirection::Minimize, 1.5), 1);
}

TEST_F(IntegralNodeOfDoubleObjective, HasNoBoundAboveAllIntegers) {
  EXPECT_EQ(boundOf(OXObjectiveDirection::Maximize, std::numeric_limits<double>::infinity()),
            std::numeric_limits<std::int64_t>::max());
}

TEST_F(IntegralNodeOfDoubleObjective, HasNoBoundBelowAllIntegers) {
  EXPECT_EQ(boundOf(OXObjectiveDirection::Minimize, -std::numeric_limits<double>::infinity()),
            std::numeric_limits<std::int64_t>::min());
}

TEST_F(WorkerTest, ANeighborhoodSizeOf0LeavesTheSimpleFlip) {
  solver.getParam()->setAdvancedParam("neighborhoodSize", 0);
  solver.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  closeKnapsack();
  Worker worker(solver);
  EXPECT_EQ(moveNames(worker).size(), 1u);
}

TEST_F(WorkerTest, MirrorsTheConstraintsForTheMovesThatPlan) {
  solver.getParam()->setAdvancedParam("basicMovesEnabled", 0);
  solver.getParam()->setAdvancedParam("tspMovesEnabled", 0);
  solver.getParam()->setAdvancedParam("moveEjectionChainEnabled", 0);
  closeKnapsack();
  Worker worker(solver);
  EXPECT_EQ(worker.autonomousStructure->dynamicNodes.size(),
            worker.autonomousStructure->moveAnalysis->staticNodes.size());
  EXPECT_FALSE(worker.autonomousStructure->dynamicNodes.empty());
  EXPECT_EQ(moveNames(worker),
            (std::vector<std::string>{"2-Sequence", "3-Sequence", "4-Sequence", "2-BinPacking",
                                      "3-BinPacking", "4-BinPacking", "1-SimpleFlip"}));
}

TEST_F(WorkerTest, HasNoMirrorWithoutTheMovesThatPlan) {
  solver.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  closeKnapsack();
  Worker worker(solver);
  EXPECT_TRUE(worker.autonomousStructure->dynamicNodes.empty());
}

TEST_F(WorkerTest, ANegativeParameterCountsAs0) {
  closeKnapsack();
  solver.getParam()->setAdvancedParam("neighborhoodSize", -3);
  solver.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  Worker worker(solver);
  EXPECT_EQ(moveNames(worker).size(), 1u);
}

TEST_F(WorkerTest, WithoutBasicMovesThePoolHoldsOneSimpleFlip) {
  for (const char* key : {"basicMovesEnabled", "advancedMovesEnabled", "tspMovesEnabled"}) {
    solver.getParam()->setAdvancedParam(key, 0);
  }
  closeKnapsack();
  Worker worker(solver);
  EXPECT_EQ(moveNames(worker).size(), 1u);
}

TEST_F(WorkerTest, AMoveIsLeftOutWithItsParameterAt0) {
  closeKnapsack();
  Worker all(solver);
  solver.getParam()->setAdvancedParam("moveFlipEnabled", 0);
  Worker fewer(solver);
  EXPECT_LT(moveNames(fewer).size(), moveNames(all).size());
  for (const std::string& name : moveNames(fewer)) {
    EXPECT_EQ(name.find("-Flip"), std::string::npos) << name;
  }
}

// What a worker writes at every move shares no cache line with what others read or write.
TEST_F(WorkerTest, EveryRandomStateHasItsOwnCacheLine) {
  EXPECT_EQ(alignof(Worker), kCacheLineSize);
}

TEST_F(WorkerTest, WhatAllWorkersReadHasItsOwnCacheLines) {
  EXPECT_EQ(alignof(Parallelizer), kCacheLineSize);
  EXPECT_EQ(alignof(DagFixedFields), kCacheLineSize);
}

}  // namespace
}  // namespace ombrix
