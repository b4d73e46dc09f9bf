#include "builder/dagbuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "builder/solverrecord.h"
#include "solver/kernel/heuristic.h"
#include "support/failures.h"
#include "support/models.h"

namespace ombrix {
namespace {

using test::expectFailure;
using test::graphText;
using test::TestModel;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

std::size_t slot(const OXExpression* e) {
  return static_cast<std::size_t>(e->getIndex());
}

// The pipeline.

TEST(DagBuilder, RefusesAnOpenModel) {
  TestModel m;
  m.minimize(m.boolean());
  expectFailure(kInternal, "DagBuilder::DagBuilder",
                "The model need to be closed to be transformed",
                [&] { DagBuilder builder(&m.model()); });
}

TEST(DagBuilder, WithoutPreprocessingOnlyConstantsAreFixed) {
  TestModel m;
  m.set("preprocessingEnabled", 0);
  OXExpression* x = m.boolean();
  OXExpression* sum = m.make(OXOperator::Sum, 2, 3);
  OXExpression* root = m.make(OXOperator::Sqrt, x);
  OXExpression* array = m.array(x);
  m.minimize(sum);
  m.minimize(root);
  EXPECT_THAT(graphText(m.close()),
              ElementsAre("boolean", "double_sqrt (0)", "constant [5]", "sum (2)"));
  const DagBuilder& builder = m.builder();
  EXPECT_TRUE(builder.isFixed(slot(m.model().getExpression(2))));
  EXPECT_FALSE(builder.isFixed(slot(sum)));
  EXPECT_FALSE(builder.isFixed(slot(x)));
  EXPECT_EQ(builder.lowerBounds()[slot(x)].intValue, 0);
  EXPECT_EQ(builder.upperBounds()[slot(x)].intValue, 1);
  EXPECT_EQ(builder.lowerBounds()[slot(sum)].intValue, kSmallest);
  EXPECT_EQ(builder.upperBounds()[slot(sum)].intValue, kLargest);
  EXPECT_EQ(builder.lowerBounds()[slot(root)].doubleValue,
            -std::numeric_limits<double>::infinity());
  EXPECT_EQ(builder.upperBounds()[slot(root)].doubleValue, std::numeric_limits<double>::infinity());
  EXPECT_EQ(builder.lowerBounds()[slot(array)].intValue, 0);
  EXPECT_EQ(builder.upperBounds()[slot(array)].intValue, 0);
}

TEST(DagBuilder, BoundsAreComputedUnlessSwitchedOff) {
  for (const int isOn : {0, 1}) {
    TestModel m;
    m.set("computeBoundsEnabled", isOn);
    for (const char* other : {"inferBoundsEnabled", "findConstantsEnabled", "findUnariesEnabled"}) {
      m.set(other, 0);
    }
    OXExpression* sum = m.make(OXOperator::Sum, 2, 3);
    m.minimize(sum);
    m.close();
    EXPECT_EQ(m.builder().lowerBounds()[slot(sum)].intValue, isOn != 0 ? 5 : kSmallest);
    EXPECT_EQ(m.builder().isFixed(slot(sum)), isOn != 0);
  }
}

TEST(DagBuilder, WithoutPreprocessingTheOtherKeysAreNotRead) {
  TestModel m;
  m.set("preprocessingEnabled", 0);
  m.set("computeBoundsEnabled", 1);
  OXExpression* sum = m.make(OXOperator::Sum, 2, 3);
  m.minimize(sum);
  m.close();
  EXPECT_FALSE(m.builder().isFixed(slot(sum)));
}

TEST(DagBuilder, AdvancedMovesAreOnWhenOneOfThemIs) {
  const auto isOn = [](std::vector<const char*> switchedOff) {
    TestModel m;
    for (const char* key : switchedOff) m.set(key, 0);
    m.minimize(m.boolean());
    m.close();
    return m.builder().moveAnalysis().advancedMovesOn;
  };
  EXPECT_TRUE(isOn({}));
  EXPECT_FALSE(isOn({"advancedMovesEnabled"}));
  EXPECT_TRUE(isOn({"moveSequenceEnabled", "moveEjectionChainEnabled"}));
  EXPECT_TRUE(isOn({"moveSequenceEnabled", "moveBinPackingEnabled"}));
  EXPECT_TRUE(isOn({"moveEjectionChainEnabled", "moveBinPackingEnabled"}));
  EXPECT_FALSE(isOn({"moveSequenceEnabled", "moveEjectionChainEnabled", "moveBinPackingEnabled"}));
}

TEST(DagBuilder, CollectsTheDoubleComparisonsThatAreNotStrict) {
  TestModel m;
  m.set("preprocessingEnabled", 0);
  OXExpression* x = m.make(OXOperator::Sqrt, m.boolean());
  std::vector<OXExpression*> all;
  for (const OXOperator op : {OXOperator::Eq, OXOperator::Neq, OXOperator::Geq, OXOperator::Leq,
                              OXOperator::Gt, OXOperator::Lt}) {
    all.push_back(m.make(op, x, 0.5));
    m.constrain(all.back());
  }
  m.constrain(m.make(OXOperator::Eq, m.boolean(), 1));
  m.minimize(m.constant(0));
  m.close();
  // Created from the last to the first.
  EXPECT_THAT(m.builder().moveAnalysis().doubleComparisons,
              ElementsAre(m.nodeOf(all[3]), m.nodeOf(all[2]), m.nodeOf(all[0])));
}

TEST(DagBuilder, AnalysesTheGraph) {
  TestModel m;
  auto x = m.booleans(3);
  OXExpression* sum = m.make(OXOperator::Sum, x[0], x[1], x[2]);
  m.constrain(m.make(OXOperator::Eq, sum, 1));
  m.minimize(x[0]);
  m.close();
  EXPECT_THAT(m.builder().constraintAnalysis().booleanLists, ElementsAre(m.nodeOf(sum)));
}

TEST(DagBuilder, AGraphWithoutDecisionsStands) {
  TestModel m;
  m.minimize(m.constant(3));
  EXPECT_THAT(graphText(m.close()), ElementsAre("constant [3]"));
  EXPECT_FALSE(m.builder().isInconsistent());
  EXPECT_THAT(m.builder().conflicts(), IsEmpty());
}

TEST(DagBuilder, AFailedPassLeavesTheModelClosedWithoutGraph) {
  TestModel m;
  m.minimize(m.make(OXOperator::Div, m.boolean(), 0));
  EXPECT_THROW(m.model().close(), OXException);
  EXPECT_TRUE(m.model().isClosed());
  EXPECT_EQ(ModelRecord::dagBuilder(m.model()), nullptr);
}

// Values across the two worlds.

/// A closed model with the heuristic of one worker.
class Translation : public testing::Test {
protected:
  /// Maximises x + 2 y under x + y <= 1, with a decision z that nothing reaches.
  Translation() {
    x = m.boolean();
    y = m.boolean();
    z = m.boolean();
    profit = m.make(OXOperator::Sum, x, m.make(OXOperator::Prod, 2, y));
    m.constrain(m.make(OXOperator::Leq, m.make(OXOperator::Sum, x, y), 1));
    m.maximize(profit);
    dag = std::make_unique<Dag>(m.close());
    heuristic = std::make_unique<Heuristic>(*dag, &rng);
  }

  void load(int vx, int vy, int vz) {
    std::vector<OXValue> values(static_cast<std::size_t>(m.model().getNbExpressions()),
                                OXValue::ofInt(0));
    values[slot(x)] = OXValue::ofInt(vx);
    values[slot(y)] = OXValue::ofInt(vy);
    values[slot(z)] = OXValue::ofInt(vz);
    m.builder().loadDecisions(values, *heuristic);
  }
  OXSolution& store() {
    OXSolution& solution = SolverRecord::solution(m.solver);
    m.builder().storeSolution(*heuristic, solution);
    return solution;
  }
  std::int64_t valueInDag(OXExpression* e) { return dag->values[m.nodeOf(e)].intValue; }

  TestModel m;
  OXExpression* x;
  OXExpression* y;
  OXExpression* z;
  OXExpression* profit;
  std::uint32_t rng = 1;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<Heuristic> heuristic;
};

TEST_F(Translation, LoadedDecisionsAreTheStateOfTheDag) {
  load(0, 1, 0);
  EXPECT_EQ(valueInDag(x), 0);
  EXPECT_EQ(valueInDag(y), 1);
  EXPECT_EQ(valueInDag(profit), 2);
  dag->check();
}

TEST_F(Translation, LoadedDecisionsAreTheBestSolution) {
  heuristic->nbIterations = 7;
  load(1, 0, 0);
  const Solution& best = heuristic->bestSolution;
  EXPECT_EQ(best.decisionValues[m.builder().getFixedFields().posInGroups[m.nodeOf(x)]].intValue, 1);
  EXPECT_EQ(best.objectiveValues[0].intValue, 1);
  EXPECT_EQ(best.nbViolated, 0);
  EXPECT_EQ(heuristic->bestIteration, 7u);
  EXPECT_LE(heuristic->bestTime, 5);
}

TEST_F(Translation, AFeasibleLoadActivatesAllConstraints) {
  load(1, 0, 0);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
}

TEST_F(Translation, AnInfeasibleLoadGoesThroughActiveConstraints) {
  load(1, 0, 0);
  load(1, 1, 0);
  EXPECT_EQ(valueInDag(y), 1);
  EXPECT_EQ(dag->propagation.activeConstraints.size(), 0u);
  EXPECT_EQ(heuristic->bestSolution.nbViolated, 1);
  dag->check();
}

TEST_F(Translation, StoresDecisionsObjectivesAndStatus) {
  load(1, 0, 0);
  OXSolution& solution = store();
  EXPECT_EQ(SolverRecord::status(solution), 2);
  EXPECT_EQ(SolverRecord::values(solution)[slot(x)].intValue, 1);
  EXPECT_EQ(SolverRecord::values(solution)[slot(y)].intValue, 0);
  EXPECT_EQ(SolverRecord::values(solution)[slot(profit)].intValue, 1);
  EXPECT_TRUE(SolverRecord::evaluated(solution)[slot(x)]);
  EXPECT_TRUE(SolverRecord::evaluated(solution)[slot(profit)]);
}

TEST_F(Translation, ForgetsAllOtherValues) {
  OXExpression* limit = m.model().getConstraint(0);
  std::vector<bool>& evaluated = SolverRecord::evaluated(SolverRecord::solution(m.solver));
  evaluated[slot(limit)] = true;
  store();
  EXPECT_FALSE(evaluated[slot(limit)]);
}

TEST_F(Translation, AnUnreachedDecisionIsZeroAndCannotBeSet) {
  load(0, 0, 1);
  EXPECT_EQ(m.nodeOf(z), kNone);
  EXPECT_EQ(SolverRecord::values(store())[slot(z)].intValue, 0);
  EXPECT_TRUE(SolverRecord::evaluated(SolverRecord::solution(m.solver))[slot(z)]);
}

TEST_F(Translation, AViolatedConstraintMakesTheStatusInfeasible) {
  load(1, 1, 0);
  EXPECT_EQ(SolverRecord::status(store()), 1);
}

TEST_F(Translation, AReachedBoundMakesTheStatusOptimal) {
  load(0, 1, 0);
  EXPECT_EQ(SolverRecord::status(store()), 2);
  heuristic->objectiveBounds[0] = OXValue::ofInt(2);
  EXPECT_EQ(SolverRecord::status(store()), 3);
}

}  // namespace
}  // namespace ombrix
