#include "solver/kernel/solution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/oxexception.h"
#include "support/graphs.h"

namespace ombrix {
namespace {

using test::expectConsistent;
using test::GraphBuilder;
using test::setAndAccept;

std::int64_t value(const Dag& dag, std::uint32_t id) {
  return dag.values[id].intValue;
}

/// Two booleans, a sum to minimise, and a constraint that one of them is 1.
class SavedSolution : public testing::Test {
protected:
  SavedSolution() {
    a = g.boolean();
    b = g.boolean();
    cover = g.constraint(g.node(NodeType::Or, {a, b}));
    sum = g.minimise(g.node(NodeType::ScalarSum, {a, b}, {3, 5}));
    dag = g.makeDag();
  }

  GraphBuilder g;
  std::uint32_t a, b, cover, sum;
  std::unique_ptr<Dag> dag;
};

TEST_F(SavedSolution, holdsThePresentStateFromTheStart) {
  setAndAccept(*dag, b, 1);
  const Solution solution(*dag);
  EXPECT_EQ(solution.decisionValues[0].intValue, 0);
  EXPECT_EQ(solution.decisionValues[1].intValue, 1);
  EXPECT_EQ(solution.objectiveValues[0].intValue, 5);
  EXPECT_EQ(solution.nbViolated, 0);
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
  EXPECT_EQ(solution.activeConstraints.size(), 0u);
}

TEST_F(SavedSolution, keepsTheListOfDecisionsThatDiffer) {
  Solution solution(*dag);
  setAndAccept(*dag, b, 1);
  EXPECT_EQ(solution.changedDecisions.size(), 1u);
  EXPECT_TRUE(solution.changedDecisions.contains(1));
  setAndAccept(*dag, b, 0);
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
}

TEST_F(SavedSolution, rejectedMoveDoesNotReachTheList) {
  Solution solution(*dag);
  test::flip(*dag, a);
  dag->propagation.reject(*dag);
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
}

TEST_F(SavedSolution, saveCopiesWhatChanged) {
  Solution solution(*dag);
  EXPECT_EQ(solution.nbViolated, 1);
  EXPECT_EQ(solution.violationSum, 1);
  setAndAccept(*dag, a, 1);
  dag->propagation.activateAllConstraints();
  solution.save();
  EXPECT_EQ(solution.decisionValues[0].intValue, 1);
  EXPECT_EQ(solution.objectiveValues[0].intValue, 3);
  EXPECT_EQ(solution.nbViolated, 0);
  EXPECT_EQ(solution.violationSum, 0);
  EXPECT_TRUE(solution.activeConstraints.isFull());
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
}

TEST_F(SavedSolution, restorePutsTheStateBack) {
  setAndAccept(*dag, a, 1);
  dag->propagation.activateAllConstraints();
  const Solution solution(*dag);
  setAndAccept(*dag, b, 1);
  setAndAccept(*dag, a, 0);
  solution.restore(*dag);
  EXPECT_EQ(value(*dag, a), 1);
  EXPECT_EQ(value(*dag, b), 0);
  EXPECT_EQ(value(*dag, sum), 3);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
  expectConsistent(*dag);
}

TEST_F(SavedSolution, restoreOfAnInfeasibleStateNeedsNoConstraintToHold) {
  const Solution solution(*dag);
  setAndAccept(*dag, a, 1);
  dag->propagation.activateAllConstraints();
  solution.restore(*dag);
  EXPECT_EQ(value(*dag, cover), 0);
  EXPECT_EQ(dag->propagation.infeasibility.nbViolated, 1);
  EXPECT_EQ(dag->propagation.activeConstraints.size(), 0u);
  EXPECT_TRUE(dag->propagation.violatedConstraints.contains(0));
  expectConsistent(*dag);
}

TEST_F(SavedSolution, restoresIntoAnotherDagOverTheSameFields) {
  setAndAccept(*dag, b, 1);
  const Solution solution(*dag);
  const auto other = g.makeDag();
  setAndAccept(*other, a, 1);
  solution.restore(*other);
  EXPECT_EQ(value(*other, a), 0);
  EXPECT_EQ(value(*other, b), 1);
  expectConsistent(*other);
}

TEST_F(SavedSolution, stopsListeningWhenItDies) {
  { const Solution solution(*dag); }
  setAndAccept(*dag, a, 1);
  expectConsistent(*dag);
}

TEST_F(SavedSolution, restoreRefusesToActivateWhatTheStateViolates) {
  Solution solution(*dag);
  solution.activeConstraints.setSize(1);
  try {
    solution.restore(*dag);
    FAIL();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 6);
    EXPECT_EQ(e.getExplanation(), "One or more constraints are violated");
  }
}

TEST(Solution, savesTheActiveSetFromItsSmallerSide) {
  GraphBuilder g;
  const auto ids = g.booleans(5);
  for (std::uint32_t id : ids) g.constraint(id);
  const auto dag = g.makeDag();
  Solution solution(*dag);
  for (std::size_t i = 0; i < 4; ++i) {
    setAndAccept(*dag, ids[i], 1);
    dag->propagation.activateConstraint(*dag, ids[i]);
    solution.save();
    EXPECT_EQ(solution.activeConstraints.size(), i + 1);
    for (std::uint32_t k = 0; k < 5; ++k) {
      EXPECT_EQ(solution.activeConstraints.contains(k), k <= i);
    }
  }
  setAndAccept(*dag, ids[4], 1);
  solution.restore(*dag);
  EXPECT_EQ(value(*dag, ids[4]), 0);
  EXPECT_EQ(dag->propagation.activeConstraints.size(), 4u);
  EXPECT_FALSE(dag->propagation.activeConstraints.contains(4));
  expectConsistent(*dag);
}

TEST(Solution, saveBringsStaleObjectivesUpToDate) {
  GraphBuilder g;
  const auto i = g.integer();
  g.minimise(g.constant(0));
  const auto second = g.maximise(g.node(NodeType::Sum, {i}));
  const auto dag = g.makeDag();
  Solution solution(*dag);
  dag->propagation.activeLevel = 1;
  setAndAccept(*dag, i, 12);
  EXPECT_EQ(value(*dag, second), 0);
  solution.save();
  EXPECT_EQ(solution.objectiveValues[1].intValue, 12);
  EXPECT_EQ(solution.decisionValues[0].intValue, 12);
}

TEST(Solution, restoreSynchronizesTheLevelsThatAreNotFollowed) {
  GraphBuilder g;
  const auto i = g.integer();
  g.minimise(g.constant(0));
  const auto second = g.maximise(g.node(NodeType::Sum, {i}));
  const auto dag = g.makeDag();
  setAndAccept(*dag, i, 3);
  const Solution solution(*dag);
  dag->propagation.activeLevel = 1;
  setAndAccept(*dag, i, 12);
  solution.restore(*dag);
  EXPECT_EQ(value(*dag, second), 3);
  EXPECT_EQ(dag->propagation.staleNodes.size(), 0u);
  expectConsistent(*dag);
}

TEST(Solution, floatMovedWithinTheToleranceIsNotSavedAgain) {
  GraphBuilder g;
  const auto x = g.floating(0, 10);
  g.minimise(x);
  const auto dag = g.makeDag();
  setAndAccept(*dag, x, 2.0);
  Solution solution(*dag);
  setAndAccept(*dag, x, 3.0);
  setAndAccept(*dag, x, 2.0000001);
  EXPECT_EQ(solution.changedDecisions.size(), 0u);
  solution.save();
  EXPECT_EQ(solution.decisionValues[0].doubleValue, 2.0);
}

TEST(Solution, restoresDecisionsOfAllKinds) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto i = g.integer();
  const auto x = g.floating(-5, 5);
  const auto sum = g.minimise(g.node(NodeType::DoubleGeq, {x, i}));
  g.minimise(a);
  const auto dag = g.makeDag();
  setAndAccept(*dag, a, 1);
  setAndAccept(*dag, i, -4);
  setAndAccept(*dag, x, -4.5);
  const Solution solution(*dag);
  setAndAccept(*dag, a, 0);
  setAndAccept(*dag, i, 9);
  setAndAccept(*dag, x, 4.0);
  solution.restore(*dag);
  EXPECT_EQ(value(*dag, a), 1);
  EXPECT_EQ(value(*dag, i), -4);
  EXPECT_EQ(dag->values[x].doubleValue, -4.5);
  EXPECT_EQ(value(*dag, sum), 0);
  expectConsistent(*dag);
}

// ---- comparison

class Comparing : public testing::Test {
protected:
  Comparing() {
    x = g.floating(0, 100);
    i = g.integer();
    g.minimise(x);
    g.maximise(i);
    dag = g.makeDag();
    mine = std::make_unique<Solution>(*dag);
    other = std::make_unique<Solution>(*dag);
  }

  static void setInfeasibility(Solution& solution, std::int64_t nbViolated,
                               std::int64_t nbViolatedEqualities, std::int64_t violationSum) {
    solution.nbViolated = nbViolated;
    solution.nbViolatedEqualities = nbViolatedEqualities;
    solution.violationSum = violationSum;
  }
  void expectOpposite(int expected, int level) {
    EXPECT_EQ(mine->compareTo(*other, level), expected);
    EXPECT_EQ(other->compareTo(*mine, level), -expected);
  }

  GraphBuilder g;
  std::uint32_t x, i;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<Solution> mine, other;
};

TEST_F(Comparing, feasibleSolutionsAtANegativeLevelAreEqual) {
  mine->objectiveValues[0] = OXValue::ofDouble(5.0);
  mine->violationSum = 7;
  expectOpposite(0, -1);
}

TEST_F(Comparing, feasibleIsBetterThanOneViolatedEquality) {
  setInfeasibility(*other, 1, 1, 1);
  expectOpposite(1, -1);
}

TEST_F(Comparing, violatedEqualitiesDominate) {
  setInfeasibility(*mine, 9, 1, 100);
  setInfeasibility(*other, 2, 2, 2);
  expectOpposite(1, 1);
}

TEST_F(Comparing, withoutViolatedEqualitiesTheCountDecides) {
  setInfeasibility(*mine, 1, 0, 100);
  setInfeasibility(*other, 2, 0, 2);
  expectOpposite(1, 1);
}

TEST_F(Comparing, thenTheSumDecides) {
  setInfeasibility(*mine, 2, 0, 1);
  setInfeasibility(*other, 2, 0, 2);
  expectOpposite(1, 1);
}

TEST_F(Comparing, equalCountsOfViolatedEqualitiesLeaveItToTheObjectives) {
  setInfeasibility(*mine, 3, 2, 1);
  setInfeasibility(*other, 2, 2, 8);
  expectOpposite(0, -1);
  mine->objectiveValues[0] = OXValue::ofDouble(5.0);
  expectOpposite(-1, 0);
}

TEST_F(Comparing, objectivesAreComparedInTheirOrderUpToTheLevel) {
  mine->objectiveValues[1] = OXValue::ofInt(4);
  expectOpposite(0, 0);
  expectOpposite(1, 1);
  other->objectiveValues[0] = OXValue::ofDouble(-1.0);
  expectOpposite(-1, 1);
}

TEST_F(Comparing, doubleObjectivesWithinTheToleranceAreEqual) {
  mine->objectiveValues[0] = OXValue::ofDouble(1.0);
  other->objectiveValues[0] = OXValue::ofDouble(1.0000001);
  expectOpposite(0, 0);
  EXPECT_EQ(mine->compareObjective(0, OXValue::ofDouble(1.1)), 1);
  EXPECT_EQ(mine->compareObjective(0, OXValue::ofDouble(0.9)), -1);
}

TEST_F(Comparing, integerObjectivesAreComparedExactlyByDirection) {
  mine->objectiveValues[1] = OXValue::ofInt(10);
  EXPECT_EQ(mine->compareObjective(1, OXValue::ofInt(9)), 1);
  EXPECT_EQ(mine->compareObjective(1, OXValue::ofInt(10)), 0);
  EXPECT_EQ(mine->compareObjective(1, OXValue::ofInt(11)), -1);
}

TEST_F(Comparing, directionThatIsNoneComparesAsEqual) {
  g.fields.directions[1] = 2;
  mine->objectiveValues[1] = OXValue::ofInt(10);
  EXPECT_EQ(mine->compareObjective(1, OXValue::ofInt(9)), 0);
}

TEST_F(Comparing, withADagReadsItsCommittedState) {
  EXPECT_EQ(mine->compareTo(*dag, 1), 0);
  setAndAccept(*dag, i, 5);
  EXPECT_EQ(mine->compareTo(*dag, 0), 0);
  EXPECT_EQ(mine->compareTo(*dag, 1), -1);
  setAndAccept(*dag, x, 2.0);
  EXPECT_EQ(mine->compareTo(*dag, 1), 1);
  dag->propagation.infeasibility = {1, 0, 1};
  mine->objectiveValues[0] = OXValue::ofDouble(50.0);
  EXPECT_EQ(mine->compareTo(*dag, 1), 1);
  dag->propagation.infeasibility = {};
  EXPECT_EQ(mine->compareTo(*dag, 1), -1);
}

}  // namespace
}  // namespace ombrix
