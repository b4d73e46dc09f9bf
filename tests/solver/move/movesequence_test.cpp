#include "solver/move/movesequence.h"

#include <set>

#include "common/failure.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "tests/solver/move/randomplan.h"
#include "tests/support/failures.h"
#include "tests/support/scriptedmove.h"
#include "tests/support/searchgraph.h"

namespace ombrix {
namespace {

using Decisions = std::set<std::uint32_t>;

class MoveSequenceTest : public testing::Test {
protected:
  void start() {
    graph.start();
    analysis = std::make_unique<MoveAnalysis>(graph.builder.fields, true);
    mirror = std::make_unique<AutonomousStructure>(*graph.dag, *analysis, graph.rng);
    mirror->rebuild();
    heuristic = std::make_unique<Heuristic>(*graph.dag, &graph.rng);
  }

  std::unique_ptr<MoveSequence> make(std::uint32_t nbSteps, std::uint32_t level,
                                     std::uint32_t rate = 50) {
    return std::make_unique<MoveSequence>(*graph.dag, graph.rng, nbSteps, level, rate, *heuristic,
                                          *graph.structure);
  }

  /// Makes a feasible state what a search makes of it.
  void harden() { propagation().activateAllConstraints(); }
  Propagation& propagation() { return graph.dag->propagation; }

  Decisions changedSince(const std::vector<OXValue>& before) const {
    Decisions changed;
    const DagFixedFields& fields = graph.builder.fields;
    for (std::uint32_t i = 0; i < fields.firstInnerNode; ++i) {
      const std::uint32_t decision = fields.nodesByGroup[i];
      if (graph.dag->values[decision].intValue != before[decision].intValue) {
        changed.insert(decision);
      }
    }
    return changed;
  }

  /// The ends of many draws, each refused; the state must then be that of the start.
  std::set<Decisions> reach(MoveSequence& move, std::uint32_t nbDraws) {
    std::set<Decisions> reached;
    const std::vector<OXValue> before = graph.dag->values.copy();
    const bool wasFull = propagation().activeConstraints.isFull();
    for (std::uint32_t i = 0; i < nbDraws && !HasFailure(); ++i) {
      graph.rng = i * 2654435761U;
      const bool isBuilt = move.apply();
      expectConsistentState();
      if (isBuilt) reached.insert(changedSince(before));
      move.finish(isBuilt ? MoveStatus::Rejected : MoveStatus::Infeasible);
      expectConsistentState();
      EXPECT_TRUE(changedSince(before).empty());
      EXPECT_EQ(propagation().activeConstraints.isFull(), wasFull);
    }
    return reached;
  }

  void expectConsistentState() const {
    test::expectConsistent(*graph.dag);
    test::expectMirrorAgrees(*mirror, graph.dag->values);
  }

  /// x of which exactly one is chosen, the first at the start.
  std::vector<std::uint32_t> startRow(std::uint32_t nbDecisions) {
    const auto x = graph.builder.booleans(nbDecisions);
    const auto sum = graph.builder.node(NodeType::BooleanSum, x);
    graph.builder.constraint(graph.builder.node(NodeType::Eq, {sum, graph.builder.constant(1)}));
    start();
    graph.raise(x[0]);
    harden();
    return x;
  }

  test::SearchGraph graph;
  std::unique_ptr<MoveAnalysis> analysis;
  std::unique_ptr<AutonomousStructure> mirror;
  std::unique_ptr<Heuristic> heuristic;
};

TEST_F(MoveSequenceTest, IsNamedByItsStepsAndWeighsOne) {
  graph.builder.boolean();
  start();
  const auto move = make(3, 1);
  EXPECT_EQ(move->name, "3-Sequence");
  EXPECT_EQ(move->weight, 1u);
  EXPECT_EQ(move->getSelectionFactor(), 1.0 / 6.0);
  EXPECT_TRUE(move->exploreInfeasible);
  EXPECT_TRUE(move->keepConstraintsOff);
}

TEST_F(MoveSequenceTest, ATargetingRateAboveAHundredIsRefused) {
  graph.builder.boolean();
  start();
  EXPECT_NO_THROW(make(2, 0, 100));
  test::expectFailure(kInternal, "MoveSequence::MoveSequence",
                      "Targeting rate must be smaller than 100.", [&] { make(2, 0, 101); });
}

TEST_F(MoveSequenceTest, WithoutBooleansThereIsNothingToString) {
  const auto x = graph.builder.floating(0, 1);
  graph.builder.constraint(
      graph.builder.node(NodeType::DoubleGeq, {x, graph.builder.doubleConstant(1)}));
  start();
  const auto move = make(2, 0);
  EXPECT_FALSE(move->apply());
  EXPECT_EQ(graph.rng, 1u);
  EXPECT_NO_THROW(move->finish(MoveStatus::Infeasible));
  EXPECT_EQ(move->nbInfeasibles, 1u);
  expectConsistentState();
}

TEST_F(MoveSequenceTest, ReachesWhatAFlipOfSomeAndAFlipOfAnotherReach) {
  const auto x = graph.builder.booleans(3);
  start();
  const auto pair = make(2, 0);
  EXPECT_EQ(reach(*pair, 500),
            (std::set<Decisions>{{x[0], x[1]}, {x[0], x[2]}, {x[1], x[2]}, {x[0], x[1], x[2]}}));
}

/// The positions that a sample of distinct ones takes, by the draws of a worker.
Decisions sampleOf(test::Draws& draws, const std::vector<std::uint32_t>& from, std::uint32_t k) {
  std::vector<std::uint32_t> left = from;
  Decisions sample;
  for (; k > 0; --k) {
    const std::uint32_t place = draws.index(static_cast<std::uint32_t>(left.size()));
    sample.insert(left[place]);
    left[place] = left.back();
    left.pop_back();
  }
  return sample;
}

TEST_F(MoveSequenceTest, DrawsASizeByItsWeightAndThenASingleFlip) {
  const auto x = graph.builder.booleans(5);
  start();
  // Without lists there are the flips of free decisions, the simple flips, and a balance for every
  // inner node.
  std::vector<std::uint32_t> sizes;
  const std::uint32_t balanceWeights[] = {4, 2, 1, 1};
  const std::uint32_t flipWeights[] = {8, 8, 2, 1};
  for (std::uint32_t k = 1; k <= 4; ++k) {
    const bool isBalanced = k <= graph.builder.fields.nbInnerNodes;
    sizes.insert(sizes.end(), isBalanced ? balanceWeights[k - 1] : 0, 0);
    sizes.insert(sizes.end(), 2 * flipWeights[k - 1], k);
  }
  const auto move = make(2, 0);
  const std::vector<OXValue> before = graph.dag->values.copy();
  for (std::uint32_t i = 0; i < 300; ++i) {
    graph.rng = i * 2654435761U;
    test::Draws draws(graph.rng);
    const bool isBuilt = move->apply();
    const std::uint32_t k = sizes[draws.index(static_cast<std::uint32_t>(sizes.size()))];
    Decisions expected;
    if (k > 0) {
      draws.percent(50);
      expected = sampleOf(draws, x, k);
    } else {
      draws.index(graph.builder.fields.nbInnerNodes);
    }
    draws.index(16);
    draws.percent(100);
    const std::uint32_t last = *sampleOf(draws, x, 1).begin();
    EXPECT_EQ(isBuilt, k > 0 && !expected.contains(last));
    expected.insert(last);
    EXPECT_EQ(changedSince(before), expected);
    EXPECT_EQ(graph.rng, draws.state);
    move->finish(MoveStatus::Rejected);
  }
}

TEST_F(MoveSequenceTest, NoDecisionChangesTwiceSoOneDecisionMakesNoSequence) {
  graph.builder.boolean();
  start();
  const auto move = make(4, 2);
  EXPECT_TRUE(reach(*move, 100).empty());
  EXPECT_EQ(move->nbInfeasibles, 100u);
}

TEST_F(MoveSequenceTest, EndsAtTheFirstStateThatIsBetterThanTheStart) {
  const auto x = graph.builder.booleans(3);
  graph.builder.maximise(x[0]);
  start();
  const auto move = make(4, 2);
  int nbBetter = 0;
  for (std::uint32_t i = 0; i < 200; ++i) {
    graph.rng = i * 2654435761U;
    const std::uint64_t isBuilt = move->apply();
    if (isBuilt && graph.dag->values[x[0]].intValue == 1) {
      ++nbBetter;
      EXPECT_TRUE(move->isObjectiveBetter(0));
    }
    move->finish(MoveStatus::Rejected);
  }
  EXPECT_GT(nbBetter, 100);
  // One step alone can be enough.
  EXPECT_TRUE(reach(*move, 500).contains({x[0]}));
}

TEST_F(MoveSequenceTest, AnswersWithTheValuesOfTheStart) {
  const auto x = graph.builder.booleans(2);
  const auto sum = graph.builder.node(NodeType::BooleanSum, x);
  graph.builder.minimise(sum);
  start();
  graph.raise(x[0]);
  graph.raise(x[1]);
  const auto move = make(2, 0);
  while (!move->apply()) move->finish(MoveStatus::Infeasible);
  EXPECT_LT(graph.dag->values[sum].intValue, 2);
  EXPECT_EQ(move->getObjectiveValue(0).intValue, 2);
  EXPECT_TRUE(move->evaluate(0));
  EXPECT_TRUE(move->evaluateAll());
  EXPECT_TRUE(move->isObjectiveBetter(0));
  EXPECT_FALSE(move->isObjectiveWorse(0));
  EXPECT_FALSE(move->isInfeasibilityBetter());
  move->finish(MoveStatus::Improved);
  EXPECT_EQ(move->nbImprovements, 1u);
  EXPECT_LT(graph.dag->values[sum].intValue, 2);
  expectConsistentState();
}

TEST_F(MoveSequenceTest, AnswersWithTheInfeasibilityOfTheStart) {
  const auto x = graph.builder.booleans(2);
  for (const auto decision : x) {
    graph.builder.constraint(
        graph.builder.node(NodeType::Geq, {decision, graph.builder.constant(1)}));
  }
  start();
  const auto move = make(2, 0);
  while (!move->apply()) move->finish(MoveStatus::Infeasible);
  EXPECT_EQ(move->getInfeasibility().nbViolated, 2);
  EXPECT_LT(propagation().infeasibility.nbViolated, 2);
  EXPECT_TRUE(move->isInfeasibilityBetter());
  EXPECT_FALSE(move->isInfeasibilityWorse());
  move->finish(MoveStatus::Improved);
  EXPECT_EQ(propagation().activeConstraints.size(), 0u);
}

TEST_F(MoveSequenceTest, StepsBehindTheLevelStandUpToTheStart) {
  const auto x = graph.builder.booleans(3);
  graph.builder.minimise(x[0]);
  start();
  const auto strict = make(2, 0);
  EXPECT_EQ(reach(*strict, 500), (std::set<Decisions>{{x[1], x[2]}}));
  const auto loose = make(2, 1);
  EXPECT_EQ(reach(*loose, 500),
            (std::set<Decisions>{{x[0], x[1]}, {x[0], x[2]}, {x[1], x[2]}, {x[0], x[1], x[2]}}));
}

TEST_F(MoveSequenceTest, ComparesOnlyTheObjectivesUpToTheCurrentOne) {
  const auto x = graph.builder.booleans(4);
  graph.builder.minimise(graph.builder.constant(7));
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  start();
  const auto move = make(2, 0);
  EXPECT_TRUE(reach(*move, 200).empty());
  heuristic->objectiveIndex = 0;
  EXPECT_FALSE(reach(*move, 200).empty());
}

TEST_F(MoveSequenceTest, ConstraintsMayBreakOnTheWayAndAreActiveAgainAtTheEnd) {
  const auto x = startRow(3);
  const auto move = make(2, 0);
  EXPECT_EQ(reach(*move, 1000), (std::set<Decisions>{{x[0], x[1]}, {x[0], x[2]}}));
}

TEST_F(MoveSequenceTest, ActiveConstraintsThatStayOnRefuseTheStep) {
  startRow(3);
  const auto move = make(2, 0);
  move->keepConstraintsOff = false;
  for (std::uint32_t i = 0; i < 200; ++i) {
    graph.rng = i * 2654435761U;
    move->apply();
    EXPECT_EQ(propagation().infeasibility.nbViolated, 0);
    EXPECT_TRUE(propagation().activeConstraints.isFull());
    move->finish(MoveStatus::Rejected);
    expectConsistentState();
  }
}

TEST_F(MoveSequenceTest, UndoingIsNotBrokenOffByAConstraintThatRoundingBreaks) {
  constexpr double kLow = 0.3;
  constexpr double kStep = 1e4;
  const double back = (kLow + kStep) - kStep;
  // Within the tolerance above the sum as it is at the start, beyond it above the sum that comes
  // back.
  const double limit = (kLow + back) / 2 * (1 + kTolerance) / (1 - kTolerance);
  ASSERT_TRUE(approxEqual(kLow, limit));
  ASSERT_FALSE(approxEqual(back, limit));
  auto& builder = graph.builder;
  const auto x = builder.booleans(2);
  // No step moves the float: it only keeps the bounds from deciding the constraint.
  const auto fixed = builder.floating(-1, 0);
  const auto sum = builder.doubleNode(NodeType::DoubleScalarSum,
                                      {builder.doubleConstant(1), x[0], fixed}, {kLow, kStep, 1});
  const auto bounded =
      builder.constraint(builder.node(NodeType::DoubleGeq, {sum, builder.doubleConstant(limit)}));
  const auto count = builder.node(NodeType::BooleanSum, x);
  const auto shifted = builder.node(NodeType::Sum, {count, builder.constant(5)});
  builder.constraint(builder.node(NodeType::Leq, {shifted, builder.constant(9)}));
  start();
  harden();
  const auto move = make(2, 0);
  move->keepConstraintsOff = false;
  do {
    ASSERT_TRUE(propagation().activeConstraints.isFull());
    if (move->apply()) break;
    move->finish(MoveStatus::Infeasible);
  } while (graph.dag->values[bounded].intValue == 1);
  move->finish(MoveStatus::Rejected);
  EXPECT_EQ(graph.dag->values[bounded].intValue, 0);
  EXPECT_EQ(propagation().infeasibility.nbViolated, 1);
  EXPECT_EQ(graph.dag->values[shifted].intValue, 5);
  EXPECT_NO_THROW(graph.dag->check());
}

TEST_F(MoveSequenceTest, WithoutExploringNoStepIsWorseThanTheOneBefore) {
  const auto x = graph.builder.booleans(4);
  const auto sum = graph.builder.node(NodeType::BooleanSum, x);
  graph.builder.minimise(sum);
  start();
  graph.raise(x[0]);
  const auto move = make(4, 3);
  move->exploreInfeasible = false;
  for (std::uint32_t i = 0; i < 200; ++i) {
    graph.rng = i * 2654435761U;
    move->apply();
    EXPECT_LE(graph.dag->values[sum].intValue, 1);
    move->finish(MoveStatus::Rejected);
  }
}

TEST_F(MoveSequenceTest, WhereNoStepSucceedsThereIsNothingToUndo) {
  const auto x = graph.builder.booleans(3);
  graph.builder.constraint(graph.builder.node(
      NodeType::Leq, {graph.builder.node(NodeType::BooleanSum, x), graph.builder.constant(0)}));
  start();
  harden();
  const auto move = make(3, 1);
  move->keepConstraintsOff = false;
  EXPECT_TRUE(reach(*move, 200).empty());
  EXPECT_EQ(move->nbInfeasibles, 200u);
}

TEST_F(MoveSequenceTest, ASingleStepThatIsNotBetterIsUndoneAtFinish) {
  const auto x = graph.builder.booleans(2);
  graph.builder.minimise(graph.builder.node(NodeType::BooleanSum, x));
  start();
  const auto move = make(2, 0);
  const std::vector<OXValue> before = graph.dag->values.copy();
  bool hasChanged = false;
  for (int i = 0; i < 50; ++i) {
    EXPECT_FALSE(move->apply());
    hasChanged = hasChanged || !changedSince(before).empty();
    move->finish(MoveStatus::Infeasible);
    EXPECT_TRUE(changedSince(before).empty());
  }
  EXPECT_TRUE(hasChanged);
}

TEST_F(MoveSequenceTest, ARefusedSequenceLeavesNothingBehindForTheNext) {
  startRow(6);
  const auto move = make(4, 2);
  for (std::uint32_t i = 0; i < 100; ++i) {
    const std::vector<OXValue> before = graph.dag->values.copy();
    graph.rng = i * 2654435761U;
    const bool isBuilt = move->apply();
    const Decisions changed = changedSince(before);
    const std::uint32_t state = graph.rng;
    move->finish(MoveStatus::Rejected);
    graph.rng = i * 2654435761U;
    EXPECT_EQ(move->apply(), isBuilt);
    EXPECT_EQ(changedSince(before), changed);
    EXPECT_EQ(graph.rng, state);
    move->finish(MoveStatus::Rejected);
  }
}

TEST_F(MoveSequenceTest, AnAcceptedSequenceStays) {
  const auto x = startRow(5);
  const auto move = make(2, 0);
  std::set<std::uint32_t> chosen;
  for (int i = 0; i < 300; ++i) {
    const bool isBuilt = move->apply();
    move->finish(isBuilt ? MoveStatus::Accepted : MoveStatus::Infeasible);
    expectConsistentState();
    EXPECT_TRUE(propagation().activeConstraints.isFull());
    for (const auto decision : x) {
      if (graph.dag->values[decision].intValue == 1) chosen.insert(decision);
    }
  }
  EXPECT_GT(move->nbAccepted, 10u);
  EXPECT_EQ(chosen.size(), 5u);
}

TEST_F(MoveSequenceTest, ItsEndIsComparedBySearchLikeAnyOtherCandidate) {
  const auto x = graph.builder.booleans(12);
  std::vector<std::int64_t> costs;
  for (std::size_t row = 0; row < 4; ++row) {
    const auto sum =
        graph.builder.node(NodeType::BooleanSum, {x[3 * row], x[3 * row + 1], x[3 * row + 2]});
    graph.builder.constraint(graph.builder.node(NodeType::Eq, {sum, graph.builder.constant(1)}));
    for (const std::int64_t cost : {5, 2, 9}) costs.push_back(cost);
  }
  const auto total = graph.builder.minimise(graph.builder.node(NodeType::ScalarSum, x, costs));
  start();
  HeuristicAutoAnnealing search(*graph.dag, &graph.rng);
  for (const std::uint32_t size : {2u, 3u, 4u}) {
    search.movePool.addMove(std::make_unique<MoveSequence>(*graph.dag, graph.rng, size, size - 2,
                                                           50, search, *graph.structure));
  }
  search.reset();
  search.iterationLimit = 3000;
  search.run();
  EXPECT_EQ(search.bestSolution.objectiveValues[0].intValue, 8);
  EXPECT_EQ(graph.dag->values[total].intValue, 8);
  expectConsistentState();
}

TEST(MoveSequenceProperty, TheMirrorOfRandomGraphsAgreesAfterEverySequence) {
  for (std::uint32_t seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    test::RandomPlan random(seed, 1 + seed % 20);
    test::PlanGraph& own = random.graph;
    const ConstraintAnalysis lists(own.builder.fields);
    BasicMoveStructure structure(*own.dag, lists, own.rng);
    Heuristic heuristic(*own.dag, &own.rng);
    MoveSequence move(*own.dag, own.rng, 2 + seed % 3, seed % 3, 50, heuristic, structure);
    for (std::uint32_t i = 0; i < 60 && !testing::Test::HasFailure(); ++i) {
      const bool isBuilt = move.apply();
      own.expectAgrees(own.dag->values);
      const bool isKept = isBuilt && !move.isInfeasibilityWorse() && i % 3 != 0;
      move.finish(isKept ? MoveStatus::Accepted : MoveStatus::Rejected);
      own.expectAgrees(own.dag->values);
      test::expectConsistent(*own.dag);
    }
  }
}

}  // namespace
}  // namespace ombrix
