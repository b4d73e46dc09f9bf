#include "solver/kernel/propagation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>

#include "api/oxexception.h"
#include "solver/kernel/dag.h"
#include "support/graphs.h"

namespace ombrix {
namespace {

using test::expectConsistent;
using test::flip;
using test::GraphBuilder;
using test::setAndAccept;
using testing::ElementsAre;
using testing::IsEmpty;

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), 6);
    return e.getExplanation();
  }
  return "no failure";
}

std::vector<std::uint32_t> membersOf(const SparseSet& set) {
  std::vector<std::uint32_t> members;
  for (std::uint32_t i = 0; i < set.size(); ++i) members.push_back(set[i]);
  return members;
}

std::int64_t value(const Dag& dag, std::uint32_t id) {
  return dag.values[id].intValue;
}
std::int64_t tentative(const Dag& dag, std::uint32_t id) {
  return dag.tValues[id].intValue;
}

/// Counts its calls, and the decisions of each move.
struct CountingListener : DagListener {
  explicit CountingListener(const Dag& watched) : dag(watched) {}
  void onAccept() override {
    ++nbCalls;
    decisions.assign(dag.propagation.changedDecisions.begin(),
                     dag.propagation.changedDecisions.end());
  }
  const Dag& dag;
  int nbCalls = 0;
  std::vector<std::uint32_t> decisions;
};

// ---- writing

TEST(Propagation, writingTheCommittedValueQueuesNothing) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.minimise(a);
  const auto dag = g.makeDag();
  dag->propagation.setValue(*dag, a, std::int64_t{0});
  EXPECT_THAT(dag->propagation.changedDecisions, IsEmpty());
  EXPECT_FALSE(dag->propagation.isTouched(a));
  dag->propagation.accept(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, firstWriteOfAMoveStands) {
  GraphBuilder g;
  const auto i = g.integer();
  g.minimise(i);
  const auto dag = g.makeDag();
  dag->propagation.setValue(*dag, i, std::int64_t{5});
  dag->propagation.setValue(*dag, i, std::int64_t{0});
  dag->propagation.setValue(*dag, i, std::int64_t{7});
  EXPECT_EQ(tentative(*dag, i), 5);
  EXPECT_THAT(dag->propagation.changedDecisions, ElementsAre(i));
  dag->propagation.accept(*dag);
  EXPECT_EQ(value(*dag, i), 5);
}

TEST(Propagation, floatSetToItsOwnValueIsQueuedButTellsNoParent) {
  GraphBuilder g;
  const auto x = g.floating(0.0, 2.0);
  const auto rounded = g.minimise(g.node(NodeType::DoubleRound, {x}));
  const auto dag = g.makeDag();
  dag->propagation.setValue(*dag, x, 0.0);
  EXPECT_TRUE(dag->propagation.isTouched(x));
  EXPECT_TRUE(dag->propagation.evaluateConstraints(*dag));
  EXPECT_TRUE(dag->propagation.evaluateLevels(*dag, 1));
  EXPECT_FALSE(dag->propagation.isTouched(rounded));
  dag->propagation.accept(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, changedDecisionsStandInTheOrderOfWriting) {
  GraphBuilder g;
  const auto ids = g.booleans(5);
  const auto dag = g.makeDag();
  for (std::uint32_t id : {ids[3], ids[0], ids[4]}) flip(*dag, id);
  EXPECT_THAT(dag->propagation.changedDecisions, ElementsAre(ids[3], ids[0], ids[4]));
  dag->propagation.reject(*dag);
  EXPECT_THAT(dag->propagation.changedDecisions, IsEmpty());
}

// ---- evaluation

TEST(Propagation, nodeWhoseValueStaysTellsNoParent) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto both = g.node(NodeType::And, {a, b});
  const auto above = g.minimise(g.node(NodeType::Not, {both}));
  const auto dag = g.makeDag();
  flip(*dag, a);
  dag->propagation.evaluateConstraints(*dag);
  dag->propagation.evaluateLevels(*dag, 1);
  EXPECT_TRUE(dag->propagation.isTouched(both));
  EXPECT_FALSE(dag->propagation.isTouched(above));
  dag->propagation.reject(*dag);
}

TEST(Propagation, constraintStageLeavesObjectivesAlone) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto constraint = g.constraint(g.node(NodeType::Not, {a}));
  const auto objective = g.minimise(g.node(NodeType::Sum, {a, constraint}));
  const auto dag = g.makeDag();
  flip(*dag, a);
  EXPECT_TRUE(dag->propagation.evaluateConstraints(*dag));
  EXPECT_EQ(dag->propagation.nextLevel, 1u);
  EXPECT_EQ(tentative(*dag, constraint), 0);
  EXPECT_FALSE(dag->propagation.isTouched(objective));
  EXPECT_TRUE(dag->propagation.evaluateLevels(*dag, 1));
  EXPECT_EQ(dag->propagation.nextLevel, 2u);
  EXPECT_EQ(tentative(*dag, objective), 1);
  dag->propagation.accept(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, objectivesAreEvaluatedOneLevelAfterTheOther) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto first = g.minimise(g.node(NodeType::Sum, {a, g.constant(2)}));
  const auto second = g.minimise(g.node(NodeType::Sum, {a, first}));
  const auto third = g.minimise(g.node(NodeType::Sum, {second, a}));
  const auto dag = g.makeDag();
  flip(*dag, a);
  dag->propagation.evaluateConstraints(*dag);
  dag->propagation.evaluateLevels(*dag, 1);
  EXPECT_EQ(tentative(*dag, first), 3);
  EXPECT_FALSE(dag->propagation.isTouched(second));
  dag->propagation.evaluateLevels(*dag, 3);
  EXPECT_EQ(tentative(*dag, second), 4);
  EXPECT_EQ(tentative(*dag, third), 5);
  dag->propagation.accept(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, acceptCompletesTheEvaluation) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto sum = g.minimise(g.node(NodeType::Sum, {a, g.node(NodeType::Not, {a}), a}));
  const auto dag = g.makeDag();
  flip(*dag, a);
  dag->propagation.accept(*dag);
  EXPECT_EQ(value(*dag, sum), 2);
  expectConsistent(*dag);
}

TEST(Propagation, repeatedOperandIsToldOfEachPosition) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto sum = g.minimise(g.node(NodeType::ScalarSum, {a, a}, {3, 4}));
  const auto dag = g.makeDag();
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(value(*dag, sum), 7);
  expectConsistent(*dag);
}

TEST(Propagation, changeInAnArrayReachesItsReader) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto index = g.boolean();
  const auto at = g.minimise(g.node(NodeType::At, {g.node(NodeType::Array, {a, b}), index}));
  const auto dag = g.makeDag();
  setAndAccept(*dag, b, 1);
  EXPECT_EQ(value(*dag, at), 0);
  setAndAccept(*dag, index, 1);
  EXPECT_EQ(value(*dag, at), 1);
  setAndAccept(*dag, b, 0);
  EXPECT_EQ(value(*dag, at), 0);
  expectConsistent(*dag);
}

// ---- rejection

TEST(Propagation, rejectAtEveryStageLeavesNothing) {
  GraphBuilder g;
  const auto ids = g.booleans(4);
  const auto both = g.node(NodeType::And, {ids[0], ids[1]});
  g.constraint(g.node(NodeType::Or, {g.node(NodeType::Not, {both}), ids[2]}));
  g.minimise(g.node(NodeType::Sum, ids));
  g.maximise(g.node(NodeType::Sum, {both, ids[3]}));
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  const auto before = dag->values.copy();
  for (int stage = 0; stage < 4; ++stage) {
    for (std::uint32_t id : ids) flip(*dag, id);
    if (stage > 0) p.evaluateConstraints(*dag);
    if (stage > 1) p.evaluateLevels(*dag, 1);
    if (stage > 2) p.evaluateLevels(*dag, 2);
    p.reject(*dag);
    EXPECT_EQ(p.nextLevel, 0u);
    for (std::uint32_t id = 0; id < dag->fixedFields->nbNodes; ++id) {
      EXPECT_EQ(value(*dag, id), before[id].intValue);
    }
    expectConsistent(*dag);
    // Nothing is left that a later move would still carry upward.
    p.accept(*dag);
    expectConsistent(*dag);
  }
}

// Nodes left for a later stage by a rejected move must not be told in the next one.
TEST(Propagation, rejectForgetsWhatALaterStageHadToTell) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  g.constraint(g.node(NodeType::Or, {a, g.constant(1)}));
  const auto objective = g.minimise(g.node(NodeType::Sum, {a}));
  const auto other = g.node(NodeType::Sum, {b});
  g.minimise(other);
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  flip(*dag, a);
  p.evaluateConstraints(*dag);
  p.reject(*dag);
  flip(*dag, b);
  p.evaluateConstraints(*dag);
  // Were a still pending, changing it by hand would show.
  dag->tValues[a] = OXValue::ofInt(1);
  p.evaluateLevels(*dag, 2);
  EXPECT_FALSE(p.isTouched(objective));
  EXPECT_TRUE(p.isTouched(other));
  dag->tValues[a] = dag->values[a];
  p.reject(*dag);
  expectConsistent(*dag);
}

// ---- constraints

TEST(Propagation, countsTheInfeasibilityOfInactiveConstraints) {
  GraphBuilder g;
  const auto i = g.integer();
  g.constraint(g.node(NodeType::Geq, {i, g.constant(5)}));
  g.constraint(g.node(NodeType::Eq, {i, g.constant(7)}));
  g.constraint(g.node(NodeType::Leq, {i, g.constant(9)}));
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  EXPECT_EQ(p.infeasibility, (Infeasibility{2, 1, 12}));
  EXPECT_EQ(p.tInfeasibility, p.infeasibility);
  EXPECT_THAT(membersOf(p.violatedConstraints), ElementsAre(0, 1));

  p.setValue(*dag, i, std::int64_t{6});
  EXPECT_TRUE(p.evaluateConstraints(*dag));
  EXPECT_EQ(p.tInfeasibility, (Infeasibility{1, 1, 1}));
  EXPECT_EQ(p.infeasibility, (Infeasibility{2, 1, 12}));
  p.reject(*dag);
  EXPECT_EQ(p.tInfeasibility, (Infeasibility{2, 1, 12}));

  setAndAccept(*dag, i, 10);
  EXPECT_EQ(p.infeasibility, (Infeasibility{2, 1, 4}));
  EXPECT_THAT(membersOf(p.violatedConstraints), testing::UnorderedElementsAre(1, 2));
  setAndAccept(*dag, i, 7);
  EXPECT_EQ(p.infeasibility, (Infeasibility{0, 0, 0}));
  EXPECT_EQ(p.violatedConstraints.size(), 0u);
  expectConsistent(*dag);
}

// A conditional over numbers can be posted as a constraint.
TEST(Propagation, constraintOfAnyNumberCountsAsOne) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  g.constraint(g.node(NodeType::If, {a, g.constant(5), g.constant(0)}));
  g.constraint(g.node(NodeType::DoubleIf, {a, g.doubleConstant(2.5), g.doubleConstant(0.0)}));
  g.constraint(b);
  const auto dag = g.makeDag();
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{3, 0, 3}));
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{1, 0, 1}));
  setAndAccept(*dag, a, 0);
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{3, 0, 3}));
}

TEST(Propagation, constraintAtMinusZeroIsViolated) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto minusZero = g.doubleConstant(-0.0);
  const auto choice =
      g.constraint(g.node(NodeType::DoubleIf, {a, g.doubleConstant(1.0), minusZero}));
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  EXPECT_EQ(p.infeasibility, (Infeasibility{1, 0, 1}));
  EXPECT_NE(failureOf([&] { p.activateConstraint(*dag, choice); }), "no failure");
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(p.infeasibility, (Infeasibility{0, 0, 0}));
  EXPECT_EQ(p.violatedConstraints.size(), 0u);
  setAndAccept(*dag, a, 0);
  EXPECT_EQ(p.infeasibility, (Infeasibility{1, 0, 1}));
  EXPECT_EQ(p.violatedConstraints.size(), 1u);
  setAndAccept(*dag, a, 1);
  p.activateAllConstraints();
  p.setValue(*dag, a, std::int64_t{0});
  EXPECT_FALSE(p.evaluateConstraints(*dag));
  p.reject(*dag);
}

TEST(Propagation, constraintAtTheSmallestIntegerHolds) {
  GraphBuilder g;
  const auto smallest = g.constant(std::numeric_limits<std::int64_t>::min());
  g.constraint(g.node(NodeType::If, {g.boolean(), g.constant(0), smallest}));
  EXPECT_EQ(g.makeDag()->propagation.infeasibility, (Infeasibility{0, 0, 0}));
}

TEST(Propagation, violatedDoubleEqualityCountsAsOneWhileItsSumStays) {
  GraphBuilder g;
  const auto x = g.floating(0, 10);
  g.constraint(g.node(NodeType::DoubleEq, {x, g.doubleConstant(4.5)}));
  const auto dag = g.makeDag();
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{1, 1, 4}));
  setAndAccept(*dag, x, 4.5);
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{0, 0, 4}));
  expectConsistent(*dag);
}

// A node evaluated to its old value has nothing to tell: the exclusive or above counts on hearing
// of real changes only.
TEST(Propagation, nodeEvaluatedToItsOldValueIsNotStale) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  const auto both = g.constraint(g.node(NodeType::And, {a, b}));
  g.minimise(g.constant(0));
  g.minimise(g.node(NodeType::Xor, {both, a}));
  const auto dag = g.makeDag();
  dag->propagation.activeLevel = 1;
  setAndAccept(*dag, a, 1);
  EXPECT_THAT(membersOf(dag->propagation.staleNodes), ElementsAre(a));
  dag->propagation.synchronize(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, sumOfHugeViolationsWraps) {
  GraphBuilder g;
  const auto i = g.integer();
  for (int k = 0; k < 3; ++k) {
    g.constraint(g.node(NodeType::Geq, {i, g.constant(std::numeric_limits<std::int64_t>::max())}));
  }
  const auto dag = g.makeDag();
  setAndAccept(*dag, i, 1);
  expectConsistent(*dag);
}

TEST(Propagation, decisionMayBeAConstraint) {
  GraphBuilder g;
  const auto a = g.constraint(g.boolean());
  const auto dag = g.makeDag();
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{1, 0, 1}));
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{0, 0, 0}));
  dag->propagation.activateAllConstraints();
  flip(*dag, a);
  EXPECT_FALSE(dag->propagation.evaluateConstraints(*dag));
  dag->propagation.reject(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, constantConstraintIsCountedAndNeverTouched) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto one = g.constraint(g.constant(1));
  g.minimise(a);
  const auto dag = g.makeDag();
  EXPECT_EQ(dag->propagation.infeasibility, (Infeasibility{0, 0, 0}));
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(value(*dag, one), 1);
  expectConsistent(*dag);
}

TEST(Propagation, constraintThatIsAnObjectiveIsEvaluatedWithTheConstraints) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto node = g.constraint(g.node(NodeType::Not, {a}));
  g.minimise(g.node(NodeType::Sum, {a}));
  g.minimise(node);
  const auto dag = g.makeDag();
  dag->propagation.activateAllConstraints();
  flip(*dag, a);
  EXPECT_FALSE(dag->propagation.evaluateConstraints(*dag));
  dag->propagation.reject(*dag);
  expectConsistent(*dag);
}

TEST(Propagation, breakingAnActiveConstraintStopsTheEvaluationAtOnce) {
  GraphBuilder g;
  const auto a = g.boolean();
  auto chain = g.node(NodeType::Not, {a});
  for (int rank = 2; rank < 5; ++rank) chain = g.node(NodeType::Sum, {chain});
  const auto broken = g.constraint(g.node(NodeType::Geq, {chain, g.constant(1)}));
  const auto above = g.constraint(g.node(NodeType::Or, {broken, g.constant(1)}));
  const auto dag = g.makeDag();
  ASSERT_EQ(dag->fixedFields->ranks[broken], 5u);
  dag->propagation.activateAllConstraints();
  flip(*dag, a);
  EXPECT_FALSE(dag->propagation.evaluateConstraints(*dag));
  EXPECT_TRUE(dag->propagation.isTouched(broken));
  EXPECT_FALSE(dag->propagation.isTouched(above));
  EXPECT_EQ(dag->propagation.nextLevel, 0u);
  dag->propagation.reject(*dag);
  EXPECT_EQ(value(*dag, chain), 1);
  expectConsistent(*dag);
}

TEST(Propagation, activeConstraintsDoNotCountInTheInfeasibility) {
  GraphBuilder g;
  const auto i = g.integer();
  g.constraint(g.node(NodeType::Leq, {i, g.constant(10)}));
  g.constraint(g.node(NodeType::Geq, {i, g.constant(3)}));
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  p.activateSatisfiedConstraints(*dag);
  EXPECT_THAT(membersOf(p.activeConstraints), ElementsAre(0));
  setAndAccept(*dag, i, 8);
  EXPECT_EQ(p.infeasibility, (Infeasibility{0, 0, 0}));
  expectConsistent(*dag);
}

// ---- activation

TEST(Propagation, refusesToActivateAViolatedConstraint) {
  GraphBuilder g;
  const auto a = g.constraint(g.boolean());
  const auto dag = g.makeDag();
  EXPECT_EQ(failureOf([&] { dag->propagation.activateConstraint(*dag, a); }),
            "Cannot activate a violated constraint with nodeId #" + std::to_string(a));
}

TEST(Propagation, refusesToActivateAllWhileOneIsViolated) {
  GraphBuilder g;
  g.constraint(g.boolean());
  g.constraint(g.constant(1));
  const auto dag = g.makeDag();
  EXPECT_EQ(failureOf([&] { dag->propagation.activateAllConstraints(); }),
            "One or more constraints are violated");
}

TEST(Propagation, activatesAllInWhateverOrderTheyStand) {
  GraphBuilder g;
  const auto ids = g.booleans(6);
  for (std::uint32_t id : ids) g.constraint(g.node(NodeType::Not, {id}));
  const auto dag = g.makeDag();
  Propagation& p = dag->propagation;
  p.activateConstraint(*dag, dag->fixedFields->constraints[4]);
  p.activateConstraint(*dag, dag->fixedFields->constraints[2]);
  p.activateAllConstraints();
  EXPECT_TRUE(p.activeConstraints.isFull());
}

TEST(Propagation, activatesEverySatisfiedConstraint) {
  GraphBuilder g;
  const auto ids = g.booleans(7);
  for (std::uint32_t id : ids) g.constraint(id);
  const auto dag = g.makeDag();
  for (std::uint32_t i : {6u, 1u, 3u, 2u}) setAndAccept(*dag, ids[i], 1);
  dag->propagation.activateSatisfiedConstraints(*dag);
  EXPECT_THAT(membersOf(dag->propagation.activeConstraints),
              testing::UnorderedElementsAre(1, 2, 3, 6));
  EXPECT_THAT(membersOf(dag->propagation.violatedConstraints),
              testing::UnorderedElementsAre(0, 4, 5));
  setAndAccept(*dag, ids[0], 1);
  setAndAccept(*dag, ids[4], 1);
  setAndAccept(*dag, ids[5], 1);
  dag->propagation.activateSatisfiedConstraints(*dag);
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
}

TEST(Propagation, activatesTheSatisfiedConstraintsOfAList) {
  GraphBuilder g;
  const auto ids = g.booleans(4);
  for (int i = 0; i < 3; ++i) g.constraint(ids[static_cast<std::size_t>(i)]);
  const auto dag = g.makeDag();
  setAndAccept(*dag, ids[0], 1);
  setAndAccept(*dag, ids[2], 1);
  setAndAccept(*dag, ids[3], 1);
  // The last one is no constraint, the second one is violated.
  dag->propagation.activateConstraints(*dag, {ids[3], ids[1], ids[2], ids[2]});
  EXPECT_THAT(membersOf(dag->propagation.activeConstraints), ElementsAre(2));
  setAndAccept(*dag, ids[1], 1);
  dag->propagation.activateConstraints(*dag, {});
  EXPECT_TRUE(dag->propagation.activeConstraints.isFull());
}

TEST(Propagation, collectsTouchedConstraintsFromTheHighestRankDown) {
  GraphBuilder g;
  const auto a = g.constraint(g.boolean());
  const auto notA = g.constraint(g.node(NodeType::Not, {a}));
  const auto sum = g.node(NodeType::Sum, {notA, a});
  const auto top = g.constraint(g.node(NodeType::Geq, {sum, notA}));
  g.constraint(g.boolean());
  const auto dag = g.makeDag();
  flip(*dag, a);
  dag->propagation.evaluateConstraints(*dag);
  std::vector<std::uint32_t> touched{99};
  dag->propagation.collectTouchedConstraints(*dag, touched);
  EXPECT_THAT(touched, ElementsAre(99, top, notA, a));
  dag->propagation.reject(*dag);
}

// ---- listeners

TEST(Propagation, listenersHearOfAcceptedMovesBeforeTheCommit) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.minimise(a);
  const auto dag = g.makeDag();
  struct Watcher : DagListener {
    void onAccept() override { seen = {value(*dag, node), tentative(*dag, node)}; }
    Dag* dag = nullptr;
    std::uint32_t node = 0;
    std::pair<std::int64_t, std::int64_t> seen;
  } watcher;
  watcher.dag = dag.get();
  watcher.node = a;
  dag->propagation.addListener(&watcher);
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(watcher.seen, (std::pair<std::int64_t, std::int64_t>(0, 1)));
}

TEST(Propagation, listenersAreNotToldOfRejectedMovesNorAfterTheirRemoval) {
  GraphBuilder g;
  const auto a = g.boolean();
  g.minimise(a);
  const auto dag = g.makeDag();
  CountingListener first(*dag);
  CountingListener second(*dag);
  dag->propagation.addListener(&first);
  dag->propagation.addListener(&second);
  flip(*dag, a);
  dag->propagation.reject(*dag);
  EXPECT_EQ(first.nbCalls, 0);
  setAndAccept(*dag, a, 1);
  dag->propagation.removeListener(&first);
  setAndAccept(*dag, a, 0);
  EXPECT_EQ(first.nbCalls, 1);
  EXPECT_EQ(second.nbCalls, 2);
  EXPECT_THAT(second.decisions, ElementsAre(a));
}

// ---- staleness

/// Two objectives over the same integer, of which the search follows the first.
class Stale : public testing::Test {
protected:
  Stale() {
    i = g.integer();
    first = g.minimise(g.node(NodeType::Sum, {i, g.constant(1)}));
    second = g.minimise(g.node(NodeType::ScalarSum, {first, i}, {2, 3}));
    dag = g.makeDag();
    dag->propagation.activeLevel = 1;
  }

  GraphBuilder g;
  std::uint32_t i, first, second;
  std::unique_ptr<Dag> dag;
};

TEST_F(Stale, acceptLeavesTheLaterObjectiveOutOfDateUntilSynchronize) {
  setAndAccept(*dag, i, 10);
  EXPECT_EQ(value(*dag, first), 11);
  EXPECT_EQ(value(*dag, second), 2);
  EXPECT_THAT(membersOf(dag->propagation.staleNodes), testing::UnorderedElementsAre(i, first));
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(value(*dag, i), 10);
  EXPECT_EQ(value(*dag, second), 52);
  EXPECT_EQ(dag->propagation.staleNodes.size(), 0u);
  expectConsistent(*dag);
}

TEST_F(Stale, manyAcceptedMovesAreCaughtUpInOnePass) {
  for (int k : {4, -3, 8, 8, 1}) setAndAccept(*dag, i, k);
  CountingListener listener(*dag);
  dag->propagation.addListener(&listener);
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(listener.nbCalls, 1);
  EXPECT_THAT(listener.decisions, IsEmpty());
  EXPECT_EQ(value(*dag, second), 2 * 2 + 3);
  expectConsistent(*dag);
  dag->propagation.removeListener(&listener);
}

TEST_F(Stale, nodeThatReturnsToTheValueSeenDropsOut) {
  setAndAccept(*dag, i, 10);
  setAndAccept(*dag, i, 0);
  EXPECT_EQ(dag->propagation.staleNodes.size(), 0u);
  CountingListener listener(*dag);
  dag->propagation.addListener(&listener);
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(listener.nbCalls, 0);
  expectConsistent(*dag);
  dag->propagation.removeListener(&listener);
}

TEST_F(Stale, rejectedMoveLeavesStaleNodesAsTheyAre) {
  setAndAccept(*dag, i, 10);
  flip(*dag, i);
  dag->propagation.evaluateConstraints(*dag);
  dag->propagation.evaluateLevels(*dag, 1);
  dag->propagation.reject(*dag);
  EXPECT_EQ(dag->propagation.staleNodes.size(), 2u);
  dag->propagation.synchronize(*dag);
  expectConsistent(*dag);
}

TEST_F(Stale, nothingToFollowAtLevelZero) {
  dag->propagation.activeLevel = 0;
  setAndAccept(*dag, i, 5);
  EXPECT_EQ(value(*dag, first), 1);
  EXPECT_THAT(membersOf(dag->propagation.staleNodes), ElementsAre(i));
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(value(*dag, first), 6);
  EXPECT_EQ(value(*dag, second), 27);
  expectConsistent(*dag);
}

TEST_F(Stale, raisingTheLevelAfterSynchronizeFollowsAgain) {
  setAndAccept(*dag, i, 10);
  dag->propagation.synchronize(*dag);
  dag->propagation.activeLevel = 2;
  setAndAccept(*dag, i, 3);
  EXPECT_EQ(value(*dag, second), 2 * 4 + 3 * 3);
  EXPECT_EQ(dag->propagation.staleNodes.size(), 0u);
  expectConsistent(*dag);
}

// What was last seen above level 1 and above level 0 must not be mixed.
TEST_F(Stale, loweringTheLevelWhileNodesAreStaleNeedsNothing) {
  setAndAccept(*dag, i, 10);
  dag->propagation.activeLevel = 0;
  setAndAccept(*dag, i, 20);
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(value(*dag, first), 21);
  EXPECT_EQ(value(*dag, second), 102);
  expectConsistent(*dag);
}

TEST_F(Stale, loweringTheLevelJustBeforeSynchronizeNeedsNothing) {
  setAndAccept(*dag, i, 10);
  dag->propagation.activeLevel = 0;
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(value(*dag, second), 52);
  expectConsistent(*dag);
}

TEST(Propagation, staleArrayStaysStaleUntilSynchronize) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto array = g.node(NodeType::Array, {a, g.constant(1)});
  const auto index = g.boolean();
  g.minimise(g.node(NodeType::At, {array, g.constant(0)}));
  const auto second = g.minimise(g.node(NodeType::At, {array, index}));
  const auto dag = g.makeDag();
  dag->propagation.activeLevel = 1;
  setAndAccept(*dag, a, 1);
  EXPECT_TRUE(dag->propagation.staleNodes.contains(array));
  setAndAccept(*dag, index, 1);
  setAndAccept(*dag, index, 0);
  EXPECT_TRUE(dag->propagation.staleNodes.contains(array));
  dag->propagation.synchronize(*dag);
  EXPECT_EQ(value(*dag, second), 1);
  expectConsistent(*dag);
}

TEST(Propagation, staleFloatDropsOutWithinTheTolerance) {
  GraphBuilder g;
  const auto x = g.floating(0, 10);
  g.minimise(g.constant(0));
  g.minimise(g.node(NodeType::DoubleRound, {x}));
  const auto dag = g.makeDag();
  setAndAccept(*dag, x, 2.0);
  dag->propagation.activeLevel = 1;
  setAndAccept(*dag, x, 5.0);
  EXPECT_TRUE(dag->propagation.staleNodes.contains(x));
  setAndAccept(*dag, x, 2.0000001);
  EXPECT_FALSE(dag->propagation.staleNodes.contains(x));
}

// ---- all together

struct Draws {
  std::mt19937 engine;
  std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(engine() % n); }
};

/// A graph of many ranks over booleans, with constraints and three objectives in random places.
void addRandomNodes(GraphBuilder& g, Draws& random, std::uint32_t nbDecisions,
                    std::uint32_t nbInner) {
  auto ids = g.booleans(nbDecisions);
  std::vector<std::uint32_t> booleans = ids;
  const auto draw = [&random](const std::vector<std::uint32_t>& from) {
    return from[random.below(static_cast<std::uint32_t>(from.size()))];
  };
  for (std::uint32_t k = 0; k < nbInner; ++k) {
    std::vector<std::uint32_t> someBooleans;
    std::vector<std::uint32_t> some;
    std::vector<std::int64_t> coefficients;
    for (std::uint32_t n = 1 + random.below(5); n > 0; --n) {
      someBooleans.push_back(draw(booleans));
      some.push_back(draw(ids));
      coefficients.push_back(static_cast<std::int64_t>(random.below(7)) - 3);
    }
    switch (random.below(7)) {
      case 0:
        booleans.push_back(g.node(NodeType::And, someBooleans));
        break;
      case 1:
        booleans.push_back(g.node(NodeType::Or, someBooleans));
        break;
      case 2:
        booleans.push_back(g.node(NodeType::Xor, someBooleans));
        break;
      case 3:
        booleans.push_back(g.node(NodeType::Leq, {draw(ids), draw(ids)}));
        break;
      case 4:
        ids.push_back(g.node(NodeType::ScalarSum, someBooleans, coefficients));
        continue;
      case 5:
        ids.push_back(g.node(NodeType::Max, some));
        continue;
      default:
        ids.push_back(g.node(NodeType::If, {draw(booleans), draw(ids), draw(ids)}));
        continue;
    }
    ids.push_back(booleans.back());
    if (random.below(3) == 0) g.constraint(booleans.back());
  }
  for (int k = 0; k < 3; ++k) g.minimise(draw(ids));
}

/// Sixty moves of a few flips each, evaluated up to some stage, then kept or not; now and then the
/// search follows another level or activates constraints. Ends synchronized.
void moveAtRandom(Dag& dag, Draws& random) {
  Propagation& p = dag.propagation;
  const std::uint32_t nbDecisions = dag.fixedFields->firstInnerNode;
  for (int move = 0; move < 60 && !testing::Test::HasFailure(); ++move) {
    if (random.below(8) == 0) p.activeLevel = random.below(4);
    if (random.below(10) == 0) p.activateSatisfiedConstraints(dag);
    for (std::uint32_t k = random.below(4); k < 4; ++k) flip(dag, random.below(nbDecisions));
    const std::uint32_t stage = random.below(5);
    bool isSound = stage == 0 || p.evaluateConstraints(dag);
    if (isSound && stage >= 2) isSound = p.evaluateLevels(dag, std::min(stage - 1, p.activeLevel));
    const bool mayAccept = isSound && (stage > 0 || p.activeConstraints.size() == 0);
    if (mayAccept && random.below(3) != 0) {
      p.accept(dag);
    } else {
      p.reject(dag);
    }
    if (random.below(6) == 0) {
      p.synchronize(dag);
      expectConsistent(dag);
    }
  }
  p.synchronize(dag);
  expectConsistent(dag);
}

TEST(Propagation, agreesWithAComputationFromNothingAfterAnyMoves) {
  for (std::uint32_t seed = 0; seed < 300 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Draws random{std::mt19937(seed)};
    GraphBuilder g;
    const std::uint32_t nbDecisions = 3 + random.below(20);
    addRandomNodes(g, random, nbDecisions, 5 + random.below(60));
    const auto dag = g.makeDag();
    moveAtRandom(*dag, random);
  }
}

// More than 64 ranks: the touched ranks stand in several words.
TEST(Propagation, walksDeepGraphsRankByRank) {
  GraphBuilder g;
  const auto a = g.boolean();
  const auto b = g.boolean();
  auto chain = a;
  for (int rank = 0; rank < 300; ++rank) {
    chain = g.node(NodeType::Sum, rank == 200 ? std::vector{chain, b} : std::vector{chain});
  }
  g.minimise(chain);
  const auto high = g.constraint(g.node(NodeType::Leq, {chain, g.constant(1)}));
  const auto dag = g.makeDag();
  setAndAccept(*dag, a, 1);
  EXPECT_EQ(value(*dag, chain), 1);
  flip(*dag, b);
  dag->propagation.evaluateConstraints(*dag);
  EXPECT_EQ(tentative(*dag, high), 0);
  dag->propagation.reject(*dag);
  expectConsistent(*dag);
  setAndAccept(*dag, b, 1);
  EXPECT_EQ(value(*dag, chain), 2);
  expectConsistent(*dag);
}

}  // namespace
}  // namespace ombrix
