#include "cli/searchrecorder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/solvermodels.h"

namespace ombrix::cli {
namespace {

class SearchRecorderTest : public testing::Test {
protected:
  void close() {
    solver.getModel()->close();
    solver.getParam()->setVerbosity(0);
  }
  void solve(long long nbIterations, int nbPhases = 1) {
    for (int i = 0; i < nbPhases; ++i) solver.createPhase()->setIterationLimit(nbIterations);
    recorder.emplace(solver, &lines);
    solver.solve();
  }
  const std::vector<Improvement>& improvements() const {
    return recorder->getImprovements().getKept();
  }
  long long finalObjective() const { return solver.getModel()->getObjective(0)->getIntValue(); }

  Ombrix solver;
  std::ostringstream lines;
  std::optional<SearchRecorder> recorder;
};

TEST_F(SearchRecorderTest, TheFirstImprovementIsTheStart) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solve(1000);
  ASSERT_FALSE(improvements().empty());
  EXPECT_EQ(improvements().front().objectives.at(0).intValue, 0);
  EXPECT_EQ(improvements().front().iteration, 0U);
  EXPECT_TRUE(improvements().front().isFeasible());
}

TEST_F(SearchRecorderTest, EachImprovementIsStrictlyBetterAndTheLastIsTheFinalOne) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solver.getParam()->setNbThreads(4);
  solve(100'000);
  for (std::size_t i = 1; i < improvements().size(); ++i) {
    EXPECT_GT(improvements()[i].objectives[0].intValue,
              improvements()[i - 1].objectives[0].intValue);
    EXPECT_GE(improvements()[i].time, improvements()[i - 1].time);
    EXPECT_LT(improvements()[i].worker, 4U);
  }
  EXPECT_EQ(improvements().back().objectives[0].intValue, finalObjective());
  EXPECT_LE(improvements().back().time, recorder->getSearchTime());
}

TEST_F(SearchRecorderTest, InfeasibilityComesBeforeTheObjective) {
  test::buildCovering(*solver.getModel(), 200);
  close();
  solver.getParam()->setAdvancedParam("greedyEnabled", 0);
  solve(50'000);
  ASSERT_GT(improvements().size(), 3U);
  EXPECT_FALSE(improvements().front().isFeasible());
  EXPECT_TRUE(improvements().back().isFeasible());
  for (std::size_t i = 1; i < improvements().size(); ++i) {
    const Improvement& former = improvements()[i - 1];
    const Improvement& present = improvements()[i];
    if (former.isFeasible()) {
      EXPECT_TRUE(present.isFeasible());
      EXPECT_LT(present.objectives[0].intValue, former.objectives[0].intValue);
    } else {
      EXPECT_LE(present.infeasibility.nbViolated, former.infeasibility.nbViolated);
    }
  }
  EXPECT_EQ(improvements().back().objectives[0].intValue, finalObjective());
}

TEST_F(SearchRecorderTest, ObjectivesCountInTheirOrder) {
  OXModel& model = *solver.getModel();
  const auto items = test::buildKnapsack(model, 60);
  model.addObjective(test::createWeightedSum(model, items, 5), OXObjectiveDirection::Minimize);
  close();
  solve(50'000);
  ASSERT_GT(improvements().size(), 3U);
  for (std::size_t i = 1; i < improvements().size(); ++i) {
    const auto& former = improvements()[i - 1].objectives;
    const auto& present = improvements()[i].objectives;
    ASSERT_EQ(present.size(), 2U);
    EXPECT_TRUE(
        present[0].intValue > former[0].intValue ||
        (present[0].intValue == former[0].intValue && present[1].intValue < former[1].intValue));
  }
}

TEST_F(SearchRecorderTest, WritesALineForEachFeasibleImprovement) {
  test::buildCovering(*solver.getModel(), 100);
  close();
  solve(20'000);
  std::string expected;
  for (const Improvement& improvement : improvements()) {
    if (!improvement.isFeasible()) continue;
    expected += "o " + std::to_string(improvement.objectives[0].intValue) + "\n";
  }
  EXPECT_EQ(lines.str(), expected);
  EXPECT_TRUE(expected.ends_with("o " + std::to_string(finalObjective()) + "\n"));
}

TEST_F(SearchRecorderTest, ADoubleObjectiveIsADoubleAlsoWhereItsNodeCountsInIntegers) {
  OXModel& model = *solver.getModel();
  const auto decisions = test::createDecisions(model, 5);
  OXExpression* half = model.createExpression(OXOperator::Prod, test::createSum(model, decisions),
                                              model.createConstant(0.5));
  OXExpression* whole =
      model.createExpression(OXOperator::Sum, decisions[0], model.createConstant(2.0));
  model.addObjective(half, OXObjectiveDirection::Maximize);
  model.addObjective(whole, OXObjectiveDirection::Minimize);
  close();
  solver.createPhase()->setIterationLimit(2000);
  recorder.emplace(solver);
  solver.solve();
  EXPECT_EQ(improvements().front().objectives[0].doubleValue, 0.0);
  EXPECT_EQ(improvements().front().objectives[1].doubleValue, 2.0);
  EXPECT_EQ(improvements().back().objectives[0].doubleValue, half->getDoubleValue());
  EXPECT_EQ(improvements().back().objectives[1].doubleValue, whole->getDoubleValue());
  EXPECT_EQ(half->getDoubleValue(), 2.5);
}

TEST_F(SearchRecorderTest, CountsAllPhases) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solve(10'000, 3);
  ASSERT_EQ(recorder->getWorkers().size(), 2U);
  for (const WorkerCounters& worker : recorder->getWorkers()) {
    EXPECT_EQ(worker.iterations.getTotal(), 30'000U);
    std::uint64_t nbAttempted = 0;
    std::uint64_t nbImproved = 0;
    for (const auto& move : worker.moves) {
      nbAttempted += move.attempted.getTotal();
      nbImproved += move.improved.getTotal();
      EXPECT_EQ(move.attempted.getTotal(),
                move.infeasible.getTotal() + move.rejected.getTotal() + move.accepted.getTotal());
    }
    EXPECT_EQ(nbAttempted, 30'000U);
    EXPECT_GT(nbImproved, 0U);
  }
  EXPECT_LT(improvements().back().iteration, 30'000U);
}

TEST_F(SearchRecorderTest, IterationsGoOnFromPhaseToPhase) {
  test::buildKnapsack(*solver.getModel(), 200);
  close();
  solve(300, 40);
  for (std::size_t i = 1; i < improvements().size(); ++i) {
    // Synchronised workers, so none is more than a phase ahead.
    EXPECT_GE(improvements()[i].iteration + 300, improvements()[i - 1].iteration);
  }
  EXPECT_GT(improvements().back().iteration, 300U);
}

TEST_F(SearchRecorderTest, TheBestSolutionOfAllPhasesIsTheFinalOne) {
  bool wasLost = false;
  for (int seed = 0; seed < 8; ++seed) {
    Ombrix other;
    test::buildKnapsack(*other.getModel(), 100);
    other.getModel()->close();
    other.getParam()->setVerbosity(0);
    other.getParam()->setNbThreads(1);
    other.getParam()->setAnnealingLevel(9);
    other.getParam()->setSeed(seed);
    for (int nbIterations : {30'000, 100, 50}) {
      other.createPhase()->setIterationLimit(nbIterations);
    }
    SearchRecorder followed(other);
    other.solve();
    const long long best = followed.getImprovements().getKept().back().objectives[0].intValue;
    const OXExpression& objective = *other.getModel()->getObjective(0);
    wasLost = wasLost || objective.getIntValue() < best;
    followed.restoreBest();
    EXPECT_EQ(objective.getIntValue(), best);
    EXPECT_EQ(other.getSolution()->getStatus(), OXSolutionStatus::Feasible);
  }
  EXPECT_TRUE(wasLost) << "otherwise nothing is tested";
}

TEST_F(SearchRecorderTest, AnInconsistentModelHasNothingToTell) {
  OXModel& model = *solver.getModel();
  OXExpression* sum = test::createSum(model, test::createDecisions(model, 2));
  model.addConstraint(model.createExpression(OXOperator::Geq, sum, model.createConstant(3)));
  model.addObjective(sum, OXObjectiveDirection::Minimize);
  close();
  solve(100);
  EXPECT_TRUE(improvements().empty());
  EXPECT_TRUE(recorder->getWorkers().empty());
  EXPECT_EQ(recorder->getSearchTime(), 0);
}

TEST_F(SearchRecorderTest, AfterItNobodyListens) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solve(1000);
  recorder.reset();
  lines.str("");
  solver.createPhase()->setIterationLimit(1000);
  solver.solve();
  EXPECT_EQ(lines.str(), "");
}

TEST(Counter, AddsUpWhatStartsAnewAndGoesRound) {
  Counter<std::uint32_t> counter;
  counter.update(4'000'000'000U);
  counter.update(100U);
  EXPECT_EQ(counter.getTotal(), (std::uint64_t{1} << 32) + 100);
  counter.restart();
  counter.update(7U);
  EXPECT_EQ(counter.getTotal(), (std::uint64_t{1} << 32) + 107);
}

}  // namespace
}  // namespace ombrix::cli
