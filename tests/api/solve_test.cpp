#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "api/ombrix.h"
#include "builder/parallelizer.h"
#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "common/failure.h"
#include "support/environments.h"
#include "support/failures.h"
#include "support/solvermodels.h"
#include "support/statemessages.h"
#include "support/temporaryfile.h"

namespace ombrix {
namespace {

using test::kStarted;
using test::kStopped;

/// Leads the standard output into a buffer for as long as the call runs.
void redirect(std::streambuf& buffer, const std::function<void()>& call) {
  std::streambuf* const previous = std::cout.rdbuf(&buffer);
  try {
    call();
  } catch (...) {
    std::cout.rdbuf(previous);
    throw;
  }
  std::cout.rdbuf(previous);
}

/// What a call writes to the standard output.
std::string capture(const std::function<void()>& call) {
  std::stringbuf text;
  redirect(text, call);
  return text.str();
}

/// Notes what was written from each flush to the next.
class FlushNotingBuffer : public std::stringbuf {
public:
  std::vector<std::string> flushed;

protected:
  int sync() override {
    flushed.push_back(str());
    str("");
    return 0;
  }
};

/// The same text with every number of seconds replaced, since a second may end at any moment.
std::string withoutSeconds(const std::string& text) {
  const std::string marked = std::regex_replace(text, std::regex("\\[[0-9]+ sec,"), "[S sec,");
  return std::regex_replace(marked, std::regex("in [0-9]+ seconds\n"), "in S seconds\n");
}

class SolveTest : public testing::Test {
protected:
  /// Closes the model, which may not write anything to the output.
  void close() {
    solver.getModel()->close();
    solver.getParam()->setVerbosity(0);
  }

  void addPhase(long long iterationLimit) {
    solver.createPhase()->setIterationLimit(iterationLimit);
  }

  void solveFor(long long iterationLimit) {
    addPhase(iterationLimit);
    solver.solve();
  }

  OXSolutionStatus status() const { return solver.getSolution()->getStatus(); }

  Ombrix solver;
};

// The course of solve.

TEST_F(SolveTest, IsRefusedWhileTheModelIsOpen) {
  test::expectFailure(kMisuse, "Ombrix::solve", kStopped, [&] { solver.solve(); });
  EXPECT_EQ(solver.getState(), OXState::Modeling);
}

TEST_F(SolveTest, ImprovesTheSolutionAndEndsStopped) {
  const auto items = test::buildKnapsack(*solver.getModel(), 100);
  close();
  solveFor(50000);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
  EXPECT_GT(solver.getModel()->getObjective(0)->getIntValue(), 10000);
  for (int i = 0; i < solver.getModel()->getNbConstraints(); ++i) {
    EXPECT_EQ(solver.getModel()->getConstraint(i)->getIntValue(), 1);
  }
}

TEST_F(SolveTest, FindsAFeasibleSolutionFromAnInfeasibleStart) {
  const auto sets = test::buildCovering(*solver.getModel(), 200);
  close();
  solveFor(20000);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
  EXPECT_LT(solver.getModel()->getObjective(0)->getIntValue(), 200 * 500);
}

TEST_F(SolveTest, FindsAFeasibleSolutionWithoutTheGreedyPassToo) {
  solver.getParam()->setAdvancedParam("greedyEnabled", 0);
  test::buildCovering(*solver.getModel(), 200);
  close();
  solveFor(20000);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
}

TEST_F(SolveTest, NeverEvaluatesAnObjectiveWhereItsConstraintsDoNotHold) {
  OXModel& model = *solver.getModel();
  constexpr int kSize = 12;
  OXExpression* prices = model.createExpression(OXOperator::Array);
  for (int i = 0; i < kSize; ++i) prices->addOperand((i * 5) % 7);
  OXExpression* cost = model.createExpression(OXOperator::Sum);
  for (int row = 0; row < kSize; ++row) {
    // Two decisions at 1 would lead the index out of the array.
    const auto choice = test::createDecisions(model, kSize);
    model.addConstraint(model.createExpression(OXOperator::Eq, test::createSum(model, choice),
                                               model.createConstant(1)));
    OXExpression* index = model.createExpression(OXOperator::Sum);
    for (int i = 0; i < kSize; ++i) {
      index->addOperand(model.createExpression(OXOperator::Prod, model.createConstant(i),
                                               choice[static_cast<std::size_t>(i)]));
    }
    cost->addOperand(model.createExpression(OXOperator::At, prices, index));
  }
  model.addObjective(cost, OXObjectiveDirection::Maximize);
  close();
  EXPECT_NO_THROW(solveFor(50000));
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Optimal);
}

TEST_F(SolveTest, TellsAnInfeasibleResult) {
  test::buildOddCycle(*solver.getModel());
  close();
  solveFor(2000);
  EXPECT_EQ(status(), OXSolutionStatus::Infeasible);
  EXPECT_NE(solver.getInfo().find("]: infeas = (1, 1), mov = 4000, "), std::string::npos)
      << solver.getInfo();
}

TEST_F(SolveTest, StopsAtTheBoundOfTheObjectiveItself) {
  OXModel& model = *solver.getModel();
  model.addObjective(test::createSum(model, test::createDecisions(model, 30)),
                     OXObjectiveDirection::Maximize);
  close();
  solver.solve();
  EXPECT_EQ(status(), OXSolutionStatus::Optimal);
  EXPECT_EQ(model.getObjective(0)->getIntValue(), 30);
}

TEST_F(SolveTest, StopsAtTheBoundThatTheUserGave) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solver.getParam()->setObjectiveBound(0, 5000);
  solver.solve();
  EXPECT_GE(solver.getModel()->getObjective(0)->getIntValue(), 5000);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(SolveTest, ReadsTheBoundsAnewEachTime) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solver.getParam()->setObjectiveBound(0, 5000);
  solver.solve();
  solver.getParam()->setObjectiveBound(0, 9000);
  solver.solve();
  EXPECT_GE(solver.getModel()->getObjective(0)->getIntValue(), 9000);
}

TEST_F(SolveTest, CreatesADefaultPhaseThatStays) {
  OXModel& model = *solver.getModel();
  model.addObjective(test::createDecisions(model, 1)[0], OXObjectiveDirection::Minimize);
  close();
  solver.solve();
  ASSERT_EQ(solver.getNbPhases(), 1);
  EXPECT_EQ(solver.getPhase(0)->toString(),
            "no time limit, no iteration limit, optimized objective = 0");
  solver.solve();
  EXPECT_EQ(solver.getNbPhases(), 1);
}

TEST_F(SolveTest, StartsFromTheDecisionsOfThePublicSolution) {
  const auto items = test::buildKnapsack(*solver.getModel(), 50);
  close();
  solver.getSolution()->setIntValue(items[7], 1);
  const long long start = solver.getModel()->getObjective(0)->getIntValue();
  solver.getParam()->setObjectiveBound(0, start);
  solver.solve();
  EXPECT_EQ(solver.getStatistics()->getNbMoves(), 0) << "the bound is reached at the start";
  EXPECT_EQ(items[7]->getIntValue(), 1);
}

TEST_F(SolveTest, ASecondCallStartsFromTheBestOfTheFirst) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solveFor(20000);
  const long long first = solver.getModel()->getObjective(0)->getIntValue();
  solver.solve();
  EXPECT_GE(solver.getModel()->getObjective(0)->getIntValue(), first);
  EXPECT_EQ(solver.getStatistics()->getNbIterations(), 20000) << "counters start at 0 again";
}

TEST_F(SolveTest, BringsTheWorkersToTheNumberOfThreads) {
  test::buildKnapsack(*solver.getModel(), 30);
  close();
  addPhase(1000);
  for (int nbThreads : {1, 4, 2, 3}) {
    solver.getParam()->setNbThreads(nbThreads);
    solver.solve();
    EXPECT_EQ(SolverRecord::workers(solver).size(), static_cast<std::size_t>(nbThreads));
    EXPECT_EQ(solver.getStatistics()->getNbMoves(), nbThreads * 1000);
    EXPECT_EQ(solver.getStatistics()->getNbIterations(), 1000);
  }
}

TEST_F(SolveTest, RunsPhasesOnDifferentObjectivesInOrder) {
  OXModel& model = *solver.getModel();
  const auto items = test::buildKnapsack(model, 60);
  model.addObjective(test::createSum(model, items), OXObjectiveDirection::Minimize);
  close();
  addPhase(5000);
  addPhase(3000);
  solver.getPhase(0)->setOptimizedObjective(0);
  solver.solve();
  EXPECT_EQ(solver.getPhase(0)->getStatistics()->getNbIterations(), 5000);
  EXPECT_EQ(solver.getPhase(1)->getStatistics()->getNbIterations(), 3000);
  EXPECT_EQ(solver.getStatistics()->getNbIterations(), 8000);
  EXPECT_EQ(solver.getStatistics()->getNbMoves(), 16000);
}

TEST_F(SolveTest, IterationsThatAPhaseDidNotUseGoToTheNext) {
  OXModel& model = *solver.getModel();
  const auto x = test::createDecisions(model, 20);
  model.addObjective(test::createSum(model, x), OXObjectiveDirection::Maximize);
  test::buildKnapsack(model, 40);
  close();
  addPhase(10000);
  addPhase(500);
  solver.getPhase(0)->setOptimizedObjective(0);
  solver.solve();
  const long long used = solver.getPhase(0)->getStatistics()->getNbIterations();
  EXPECT_LT(used, 10000) << "the first objective reaches its bound early";
  EXPECT_EQ(solver.getPhase(1)->getStatistics()->getNbIterations(), 10500 - used);
}

TEST_F(SolveTest, SolvesAgainAfterTheModelWasOpenedAndClosed) {
  OXModel& model = *solver.getModel();
  test::buildKnapsack(model, 50);
  close();
  solveFor(5000);
  model.open();
  test::buildKnapsack(model, 20);
  model.close();
  solver.solve();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
}

TEST_F(SolveTest, CountsMovesByTheirFate) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solveFor(20000);
  const OXStatistics& statistics = *solver.getStatistics();
  EXPECT_EQ(statistics.getNbMoves(), 40000);
  EXPECT_GT(statistics.getNbAcceptedMoves(), 0);
  EXPECT_GT(statistics.getNbImprovingMoves(), 0);
  EXPECT_LE(statistics.getNbImprovingMoves(), statistics.getNbAcceptedMoves());
  EXPECT_GT(statistics.getNbInfeasibleMoves(), 0);
  EXPECT_LE(statistics.getNbInfeasibleMoves(), statistics.getNbRejectedMoves());
}

/// Notes on which thread and in which state it was called.
class NotingListener : public SearchListener {
public:
  explicit NotingListener(const Ombrix& searched) : solver(searched) {}

  void onImprovement(const Heuristic& heuristic) override {
    const std::lock_guard guard(mutex);
    improvements.push_back(heuristic.bestSolution.objectiveValues[0].intValue);
    ++improvementStates[static_cast<int>(solver.getState())];
  }
  void onPhaseStart() override { note("p"); }
  void onSliceEnd() override { note("s"); }

  void note(const char* call) {
    log += call;
    if (std::this_thread::get_id() != caller || solver.getState() != OXState::Paused) log += "?";
  }

  const Ombrix& solver;
  std::thread::id caller = std::this_thread::get_id();
  std::mutex mutex;
  std::string log;
  std::vector<long long> improvements;
  int improvementStates[4] = {};
};

TEST_F(SolveTest, AListenerHearsOfImprovementsWhileWorkersRunAndOfPausesBetween) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solver.getParam()->setNbThreads(1);
  solver.getParam()->setTimeBetweenDisplays(60000);
  NotingListener listener(solver);
  SolverRecord::setSearchListener(solver, &listener);
  addPhase(3000);
  solveFor(1500);
  EXPECT_EQ(listener.log, "pssspss");
  ASSERT_GT(listener.improvements.size(), 10u);
  EXPECT_EQ(listener.improvementStates[static_cast<int>(OXState::Running)],
            static_cast<int>(listener.improvements.size()));
  EXPECT_TRUE(std::is_sorted(listener.improvements.begin(), listener.improvements.end()));
  SolverRecord::setSearchListener(solver, nullptr);
  listener.log.clear();
  solver.solve();
  EXPECT_EQ(listener.log, "");
}

TEST_F(SolveTest, ASecondCallHasWhatTheFirstLeftOfTheTimeLimit) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  solver.createPhase()->setTimeLimit(1);
  solver.solve();
  EXPECT_GE(solver.getStatistics()->getRunningTime(), 1);
  EXPECT_GT(solver.getStatistics()->getNbMoves(), 0);
  solver.solve();
  EXPECT_EQ(solver.getStatistics()->getNbMoves(), 0) << "the limit was used up";
}

/// A sum of two decisions that must be at least 3.
void buildInconsistent(OXModel& model) {
  OXExpression* sum = test::createSum(model, test::createDecisions(model, 2));
  model.addConstraint(model.createExpression(OXOperator::Geq, sum, model.createConstant(3)));
  model.addObjective(sum, OXObjectiveDirection::Minimize);
}

TEST_F(SolveTest, AnInconsistentModelStartsNoSearch) {
  buildInconsistent(*solver.getModel());
  close();
  solver.solve();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(status(), OXSolutionStatus::Inconsistent);
  EXPECT_EQ(solver.getNbPhases(), 1) << "the default phase is created all the same";
  test::expectFailure(kMisuse, "Ombrix::getInfo", kStarted, [&] { solver.getInfo(); });
}

// The display.

/// A model whose search ends at its first test, so that its display holds no time and no count.
class DisplayTest : public SolveTest {
protected:
  void closeTrivial() {
    OXModel& model = *solver.getModel();
    x = test::createDecisions(model, 1)[0];
    model.addObjective(x, OXObjectiveDirection::Minimize);
    model.close();
  }

  OXExpression* x = nullptr;
};

TEST_F(DisplayTest, IsThisToTheLetter) {
  closeTrivial();
  solver.createPhase();
  const std::string line = "[S sec, 0 itr]: obj = (0), mov = 0, inf < 0.1%, acc < 0.1%, imp = 0\n";
  EXPECT_EQ(withoutSeconds(capture([&] { solver.solve(); })),
            "\n" + solver.toString() + "\n" + "\nPhase 0:\n" + line + "\n" + line +
                "0 iterations, 0 moves performed in S seconds\n"
                "Optimal solution: obj = (0)\n\n");
}

TEST_F(DisplayTest, IsFlushedAtTheEndOfEachText) {
  closeTrivial();
  solver.createPhase();
  const std::string line = "[S sec, 0 itr]: obj = (0), mov = 0, inf < 0.1%, acc < 0.1%, imp = 0\n";
  const std::vector<std::string> texts = {"\n" + solver.toString() + "\n", "\nPhase 0:\n" + line,
                                          "\n" + line,
                                          "0 iterations, 0 moves performed in S seconds\n"
                                          "Optimal solution: obj = (0)\n\n"};
  FlushNotingBuffer buffer;
  redirect(buffer, [&] { solver.solve(); });
  for (std::string& text : buffer.flushed) text = withoutSeconds(text);
  EXPECT_EQ(buffer.flushed, texts);
  EXPECT_EQ(buffer.str(), "") << "nothing waits to be written";
}

TEST_F(DisplayTest, IsFlushedAtTheEndWhereNoSearchRunsToo) {
  buildInconsistent(*solver.getModel());
  solver.getModel()->close();
  FlushNotingBuffer buffer;
  redirect(buffer, [&] { solver.solve(); });
  ASSERT_FALSE(buffer.flushed.empty());
  EXPECT_TRUE(buffer.flushed.back().ends_with("Inconsistent model.\n\n"));
  EXPECT_EQ(buffer.str(), "");
}

TEST_F(DisplayTest, ShowsEachPhase) {
  closeTrivial();
  solver.createPhase();
  solver.createPhase();
  const std::string text = capture([&] { solver.solve(); });
  EXPECT_NE(text.find("\nPhase 0:\n["), std::string::npos);
  EXPECT_NE(text.find("\nPhase 1:\n["), std::string::npos);
}

TEST_F(DisplayTest, ToStringListsThePhases) {
  closeTrivial();
  EXPECT_NE(solver.toString().find("\nPhases:\n  (no phases)\n"), std::string::npos);
  solver.createPhase();
  EXPECT_NE(
      solver.toString().find(
          "\nPhases:\n  Phase 0: no time limit, no iteration limit, optimized objective = 0\n"),
      std::string::npos);
}

TEST_F(DisplayTest, WithVerbosity0WritesNothing) {
  closeTrivial();
  solver.getParam()->setVerbosity(0);
  solver.getParam()->setAdvancedParam("traceEnabled", 1);
  EXPECT_EQ(capture([&] { solver.solve(); }), "");
}

TEST_F(DisplayTest, WithTraceEnabledShowsTheKernelGraphBeforeTheSearch) {
  closeTrivial();
  const std::string plain = capture([&] { solver.solve(); });
  solver.getParam()->setAdvancedParam("traceEnabled", 1);
  const std::string traced = capture([&] { solver.solve(); });
  const std::size_t start = traced.find("\nPhase 0:\n");
  ASSERT_NE(start, std::string::npos);
  const std::string head = "\n" + solver.toString() + "\n";
  EXPECT_EQ(traced.substr(0, head.size()), head);
  EXPECT_GT(start, head.size());
  EXPECT_EQ(plain.find("\nPhase 0:\n"), plain.size() - (traced.size() - start));
}

TEST_F(DisplayTest, ATickShowsALineAndWithTraceTheTablesOfEachWorker) {
  test::buildKnapsack(*solver.getModel(), 50);
  solver.getModel()->close();
  solver.getParam()->setAdvancedParam("traceEnabled", 1);
  solver.createPhase()->setTimeLimit(2);
  const std::string text = capture([&] { solver.solve(); });
  std::size_t nbTables = 0;
  for (std::size_t at = 0; (at = text.find("Heur. stats", at)) != std::string::npos; ++at) {
    ++nbTables;
  }
  EXPECT_GE(nbTables, 2u);
  EXPECT_EQ(nbTables % 2, 0u) << "one for each of the two workers";
  EXPECT_NE(withoutSeconds(text).find("\n[S sec, "), std::string::npos);
}

TEST_F(DisplayTest, EndsWithTheCountsAndTheStatus) {
  test::buildKnapsack(*solver.getModel(), 50);
  solver.getModel()->close();
  addPhase(3000);
  const std::string text = capture([&] { solver.solve(); });
  const long long objective = solver.getModel()->getObjective(0)->getIntValue();
  const std::string seconds = std::to_string(solver.getStatistics()->getRunningTime());
  const std::string end = "3000 iterations, 6000 moves performed in " + seconds +
                          " seconds\nFeasible solution: obj = (" + std::to_string(objective) +
                          ")\n\n";
  ASSERT_GT(text.size(), end.size());
  EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(DisplayTest, ShowsViolatedEqualitiesBeforeAllViolatedConstraints) {
  OXModel& model = *solver.getModel();
  test::buildOddCycle(model);
  model.close();
  addPhase(500);
  const std::string text = capture([&] { solver.solve(); });
  EXPECT_NE(text.find("\nInfeasible solution: infeas = (1, 1)\n\n"), std::string::npos) << text;
}

TEST_F(DisplayTest, CountsAViolatedInequalityInTheSecondNumberOnly) {
  solver.getParam()->setAdvancedParam("preprocessingEnabled", 0);
  OXModel& model = *solver.getModel();
  const auto y = test::createDecisions(model, 3);
  OXExpression* even = test::createWeightedSum(model, {y[0], y[1]}, 1);
  even = model.createExpression(OXOperator::Prod, model.createConstant(2), even);
  model.addConstraint(model.createExpression(OXOperator::Eq, even, model.createConstant(1)));
  OXExpression* one = test::createSum(model, {y[2], model.createExpression(OXOperator::Not, y[2])});
  model.addConstraint(model.createExpression(OXOperator::Leq, one, model.createConstant(0)));
  model.addObjective(test::createSum(model, y), OXObjectiveDirection::Minimize);
  model.close();
  addPhase(500);
  const std::string text = capture([&] { solver.solve(); });
  EXPECT_NE(text.find("]: infeas = (1, 2), mov = 1000, "), std::string::npos) << text;
  EXPECT_NE(text.find("\nInfeasible solution: infeas = (1, 2)\n\n"), std::string::npos) << text;
}

TEST_F(DisplayTest, OfAnInconsistentModelSaysSo) {
  buildInconsistent(*solver.getModel());
  solver.getModel()->close();
  solver.createPhase();
  EXPECT_EQ(capture([&] { solver.solve(); }),
            "\n" + solver.toString() + "\nInconsistent model.\n\n");
}

TEST_F(DisplayTest, ShowsEveryObjectiveInTheFormOfItsType) {
  OXModel& model = *solver.getModel();
  const auto x2 = test::createDecisions(model, 2);
  model.addObjective(x2[0], OXObjectiveDirection::Minimize);
  model.addObjective(model.createConstant(2.5), OXObjectiveDirection::Minimize);
  model.addObjective(model.createConstant(7), OXObjectiveDirection::Maximize);
  model.addObjective(model.createConstant(1234567.5), OXObjectiveDirection::Maximize);
  model.addObjective(model.createConstant(1234567), OXObjectiveDirection::Maximize);
  model.close();
  const std::string text = capture([&] { solver.solve(); });
  const std::string values = "obj = (0, 2.5, 7, 1.23457e+06, 1234567)";
  EXPECT_NE(text.find("]: " + values + ", mov = 0, "), std::string::npos) << text;
  EXPECT_NE(text.find("\nOptimal solution: " + values + "\n\n"), std::string::npos) << text;
}

// getInfo and stop.

TEST_F(SolveTest, GetInfoBeforeTheFirstSolveTellsThatTheSolverWasNotStarted) {
  test::expectFailure(kMisuse, "Ombrix::getInfo", kStarted, [&] { solver.getInfo(); });
  test::buildKnapsack(*solver.getModel(), 10);
  close();
  test::expectFailure(kMisuse, "Ombrix::getInfo", kStarted, [&] { solver.getInfo(); });
}

TEST_F(SolveTest, StopOutsideASearchDoesNothing) {
  solver.stop();
  test::buildKnapsack(*solver.getModel(), 10);
  close();
  solver.stop();
  solveFor(1000);
  EXPECT_EQ(solver.getStatistics()->getNbIterations(), 1000) << "an earlier stop is forgotten";
  solver.stop();
  solver.getModel()->open();
  solver.stop();
  EXPECT_EQ(solver.getState(), OXState::Modeling);
}

/// Calls stop until solve has returned: a stop before the phase runs is without effect.
void stopUntilEnded(Ombrix& solver, const std::atomic<bool>& ended) {
  while (!ended) {
    solver.stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

TEST_F(SolveTest, StopFromAnotherThreadEndsThePhase) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  std::atomic<bool> ended = false;
  std::thread stopper([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    stopUntilEnded(solver, ended);
  });
  solver.solve();
  ended = true;
  stopper.join();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
}

TEST_F(SolveTest, WhileRunningAllButGetStateAndStopIsRefused) {
  test::buildKnapsack(*solver.getModel(), 100);
  close();
  std::atomic<bool> ended = false;
  std::atomic<int> nbRefused = 0;
  std::thread reader([&] {
    while (solver.getState() == OXState::Stopped) std::this_thread::yield();
    try {
      solver.solve();
    } catch (const OXException& e) {
      if (e.getExplanation() == kStopped) ++nbRefused;
    }
    stopUntilEnded(solver, ended);
  });
  solver.solve();
  ended = true;
  reader.join();
  EXPECT_EQ(nbRefused, 1);
}

TEST_F(SolveTest, StopAtAThousandRandomMomentsIsSafe) {
  test::buildKnapsack(*solver.getModel(), 30);
  solver.getParam()->setAdvancedParam("syncIterations", 100);
  close();
  addPhase(600);
  addPhase(600);
  std::mt19937 random(20240229);
  for (int round = 0; round < 1000; ++round) {
    const auto delay = std::chrono::microseconds(random() % 2000);
    std::thread stopper([&] {
      std::this_thread::sleep_for(delay);
      solver.stop();
    });
    solver.solve();
    stopper.join();
    ASSERT_EQ(solver.getState(), OXState::Stopped);
    ASSERT_EQ(status(), OXSolutionStatus::Feasible);
  }
}

TEST_F(SolveTest, StopNeverMeetsASearchThatIsReplacedOrDestroyed) {
  test::buildKnapsack(*solver.getModel(), 20);
  close();
  addPhase(100);
  std::atomic<bool> ended = false;
  std::thread stopper([&] {
    while (!ended) solver.stop();
  });
  for (int round = 0; round < 200; ++round) {
    solver.solve();
    solver.getModel()->open();
    solver.getModel()->close();
  }
  ended = true;
  stopper.join();
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

// Reproducibility.

struct Outcome {
  std::vector<long long> values;
  std::vector<long long> counters;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome runOnce(int nbThreads, bool isCovering) {
  Ombrix solver;
  OXModel& model = *solver.getModel();
  const auto decisions =
      isCovering ? test::buildCovering(model, 150) : test::buildKnapsack(model, 150);
  model.close();
  solver.getParam()->setVerbosity(0);
  solver.getParam()->setNbThreads(nbThreads);
  solver.getParam()->setSeed(42);
  solver.getParam()->setAdvancedParam("syncIterations", 1500);
  solver.createPhase()->setIterationLimit(5000);
  solver.createPhase()->setIterationLimit(10000);
  solver.solve();
  const OXStatistics& statistics = *solver.getStatistics();
  return {test::readValues(decisions),
          {statistics.getNbIterations(), statistics.getNbMoves(), statistics.getNbAcceptedMoves(),
           statistics.getNbImprovingMoves(), statistics.getNbInfeasibleMoves(),
           solver.getModel()->getObjective(0)->getIntValue()}};
}

class Reproducibility : public testing::TestWithParam<int> {};

TEST_P(Reproducibility, TheSameSearchTwiceAndUnderLoad) {
  for (bool isCovering : {false, true}) {
    const Outcome first = runOnce(GetParam(), isCovering);
    EXPECT_EQ(runOnce(GetParam(), isCovering), first);
    std::atomic<bool> ended = false;
    std::vector<std::thread> load;
    for (int i = 0; i < 4; ++i) {
      load.emplace_back([&] {
        while (!ended) continue;
      });
    }
    EXPECT_EQ(runOnce(GetParam(), isCovering), first);
    ended = true;
    for (std::thread& thread : load) thread.join();
  }
}

INSTANTIATE_TEST_SUITE_P(Threads, Reproducibility, testing::Values(1, 2, 4));

/// As many tasks as people, each with exactly one of the other.
void buildAssignment(OXModel& model) {
  constexpr std::size_t kSize = 12;
  const auto x = test::createDecisions(model, static_cast<int>(kSize * kSize));
  OXExpression* one = model.createConstant(1);
  for (std::size_t i = 0; i < kSize; ++i) {
    OXExpression* row = model.createExpression(OXOperator::Sum);
    OXExpression* column = model.createExpression(OXOperator::Sum);
    for (std::size_t j = 0; j < kSize; ++j) {
      row->addOperand(x[i * kSize + j]);
      column->addOperand(x[j * kSize + i]);
    }
    model.addConstraint(model.createExpression(OXOperator::Eq, row, one));
    model.addConstraint(model.createExpression(OXOperator::Eq, column, one));
  }
  model.addObjective(test::createWeightedSum(model, x, 3), OXObjectiveDirection::Minimize);
}

/// Roots, products and a capacity in doubles.
void buildDoubles(OXModel& model) {
  const auto x = test::createDecisions(model, 60);
  OXExpression* weight = model.createExpression(OXOperator::Sum);
  OXExpression* profit = model.createExpression(OXOperator::Sum);
  for (int i = 0; i < 60; ++i) {
    OXExpression* item = x[static_cast<std::size_t>(i)];
    OXExpression* share = model.createConstant(0.1 + 0.037 * i);
    weight->addOperand(model.createExpression(OXOperator::Prod, share, item));
    OXExpression* pair = test::createSum(model, {item, x[static_cast<std::size_t>((i + 7) % 60)]});
    OXExpression* root = model.createExpression(OXOperator::Sqrt, pair);
    profit->addOperand(
        model.createExpression(OXOperator::Prod, model.createConstant(1.0 / (i + 3)), root));
  }
  OXExpression* capacity = model.createConstant(17.3);
  model.addConstraint(model.createExpression(OXOperator::Leq, weight, capacity));
  model.addObjective(profit, OXObjectiveDirection::Maximize);
}

/// All that a search leaves in its workers, but for the times, in lines.
std::string describeWorkers(const Ombrix& solver) {
  std::ostringstream text;
  for (const auto& worker : SolverRecord::workers(solver)) {
    const Heuristic& heuristic = *worker->heuristic;
    text << "rng " << worker->rng << ", iterations " << heuristic.nbIterations << ", best at "
         << heuristic.bestIteration << "\n";
    for (const auto& move : heuristic.movePool.moves) {
      text << move->name << ": " << move->weight << " " << move->nbAttempted << " "
           << move->nbAccepted << " " << move->nbRejected << " " << move->nbImprovements << " "
           << move->nbInfeasibles << "\n";
    }
    for (const HeuristicStrategy* strategy : heuristic.strategies) strategy->printStatistics(text);
  }
  return text.str();
}

/// The public solution, doubles to the last bit.
std::string describeSolution(const Ombrix& solver) {
  const OXModel& model = *solver.getModel();
  std::ostringstream text;
  for (int i = 0; i < model.getNbDecisions(); ++i) text << model.getDecision(i)->getIntValue();
  const OXExpression* objective = model.getObjective(0);
  text << "\n" << std::hexfloat;
  if (objective->isDouble()) {
    text << objective->getDoubleValue();
  } else {
    text << objective->getIntValue();
  }
  return text.str() + "\n" + solver.getStatistics()->getInfo();
}

/// Gives the second worker draws of its own, which workers of one seed do not have.
class PartingListener : public SearchListener {
public:
  explicit PartingListener(Ombrix& searched) : solver(searched) {}

  void onImprovement(const Heuristic&) override {}
  void onPhaseStart() override { SolverRecord::workers(solver)[1]->rng = 4711; }
  void onSliceEnd() override {}

private:
  Ombrix& solver;
};

std::string searchToTheLastUnit(const std::function<void(OXModel&)>& build) {
  Ombrix solver;
  build(*solver.getModel());
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.getParam()->setNbThreads(2);
  solver.getParam()->setSeed(7);
  solver.getParam()->setAdvancedParam("syncIterations", 1500);
  solver.createPhase()->setIterationLimit(20000);
  PartingListener listener(solver);
  SolverRecord::setSearchListener(solver, &listener);
  solver.solve();
  EXPECT_EQ(solver.getStatistics()->getNbMoves(), 40000);
  EXPECT_EQ(solver.getSolution()->getStatus(), OXSolutionStatus::Feasible);
  return describeWorkers(solver) + describeSolution(solver);
}

TEST(ReproducibilityToTheLastUnit, OfAModelOfListsWithExactlyOne) {
  EXPECT_EQ(searchToTheLastUnit(buildAssignment), searchToTheLastUnit(buildAssignment));
}

TEST(ReproducibilityToTheLastUnit, OfAModelOfDoubles) {
  EXPECT_EQ(searchToTheLastUnit(buildDoubles), searchToTheLastUnit(buildDoubles));
}

// Failures.

TEST_F(SolveTest, AFailureOfAWorkerReachesTheCallerAndLosesNothing) {
  const auto x = test::buildDivisionByZero(*solver.getModel(), 6);
  close();
  try {
    solver.solve();
    FAIL() << "nothing was thrown";
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), kComputation);
    EXPECT_EQ(e.getExplanation(), "Division by zero.");
  }
  EXPECT_EQ(solver.getState(), OXState::Paused);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
  EXPECT_GT(solver.getModel()->getObjective(0)->getIntValue(), 1) << "what was found is kept";
  EXPECT_NO_THROW(solver.getInfo());
  EXPECT_NO_THROW(solver.toString());
  EXPECT_NO_THROW(solver.getStatistics()->toString());
  test::expectFailure(kMisuse, "Ombrix::solve", kStopped, [&] { solver.solve(); });
  solver.stop();
}

/// An environment keeps what the failed search had found, and the copy can go on from there.
void expectSavedInFull(const Ombrix& solver, const std::string& extension) {
  SCOPED_TRACE(extension);
  const test::TemporaryFile file("", extension);
  solver.saveEnvironment(file.path());
  Ombrix copy;
  copy.loadEnvironment(file.path());
  EXPECT_EQ(test::describe(copy), test::describe(solver)) << "decisions included";
  const long long found = solver.getModel()->getObjective(0)->getIntValue();
  EXPECT_EQ(copy.getModel()->getObjective(0)->getIntValue(), found);
  copy.getParam()->setObjectiveBound(0, found);
  copy.solve();
  EXPECT_EQ(copy.getStatistics()->getNbMoves(), 0) << "the bound is reached at the start";
}

TEST_F(SolveTest, AfterAFailureTheEnvironmentIsSavedWithAllThatWasFound) {
  const auto x = test::buildDivisionByZero(*solver.getModel(), 6);
  close();
  EXPECT_THROW(solver.solve(), OXException);
  ASSERT_EQ(solver.getState(), OXState::Paused);
  const auto values = test::readValues(x);
  EXPECT_GT(std::count(values.begin(), values.end(), 1), 0) << "there is something to lose";
  for (const char* extension : {".oxm", ".oxm.gz", ".oxb", ".oxb.gz"}) {
    expectSavedInFull(solver, extension);
  }
  EXPECT_EQ(test::readValues(x), values);
  EXPECT_EQ(solver.getState(), OXState::Paused);
}

TEST_F(SolveTest, AFailureInTheGreedyPassReachesTheCallerAndLosesNothing) {
  {
    Ombrix failing;
    OXModel& model = *failing.getModel();
    const auto x = test::buildNoValueOnTheWay(failing);
    model.close();
    failing.getParam()->setVerbosity(0);
    test::expectFailure(kComputation, "NodeDivide::eval", "Division by zero.",
                        [&] { failing.solve(); });
    EXPECT_EQ(failing.getState(), OXState::Paused);
    EXPECT_EQ(failing.getSolution()->getStatus(), OXSolutionStatus::Infeasible);
    EXPECT_EQ(model.getObjective(0)->getIntValue(), x[0]->getIntValue() + x[1]->getIntValue());
    EXPECT_EQ(model.getConstraint(0)->getIntValue(), 0);
    EXPECT_NE(failing.getInfo().find("]: infeas = (0, 1), mov = 0, "), std::string::npos)
        << failing.getInfo();
    test::expectFailure(kMisuse, "Ombrix::solve", kStopped, [&] { failing.solve(); });
    failing.stop();
    const test::TemporaryFile file("", ".oxm");
    EXPECT_NO_THROW(failing.saveEnvironment(file.path()));
  }
  test::buildCovering(*solver.getModel(), 50);
  close();
  solveFor(1000);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible) << "another search, greedy pass included";
}

TEST_F(SolveTest, AProcessGoesOnAfterAFailedSolve) {
  {
    Ombrix failing;
    test::buildDivisionByZero(*failing.getModel(), 6);
    failing.getModel()->close();
    failing.getParam()->setVerbosity(0);
    EXPECT_THROW(failing.solve(), OXException);
  }
  test::buildKnapsack(*solver.getModel(), 50);
  close();
  solveFor(1000);
  EXPECT_EQ(status(), OXSolutionStatus::Feasible);
}

/// A model that has no value with all decisions at 0, where every kernel graph starts.
void buildNoValueAtZero(OXModel& model) {
  OXExpression* sum = test::createSum(model, test::createDecisions(model, 2));
  model.addObjective(model.createExpression(OXOperator::Div, model.createConstant(1), sum),
                     OXObjectiveDirection::Minimize);
}

TEST_F(SolveTest, AModelWithoutValueAt0FailsAndTheStateStaysStopped) {
  buildNoValueAtZero(*solver.getModel());
  close();
  EXPECT_THROW(solver.solve(), OXException);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  EXPECT_EQ(solver.getNbPhases(), 1);
  EXPECT_THROW(solver.solve(), OXException);
  solver.stop();
}

TEST_F(SolveTest, AStartWithoutValueIsAFailureFromWhichTheNextSolveRecovers) {
  const auto x = test::buildDivisionByZero(*solver.getModel(), 4);
  close();
  solver.getParam()->setObjectiveBound(0, 3);
  addPhase(100);
  for (OXExpression* decision : x) solver.getSolution()->setIntValue(decision, 1);
  EXPECT_THROW(solver.solve(), OXException);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
  for (OXExpression* decision : x) EXPECT_EQ(decision->getIntValue(), 1) << "nothing is lost";
  solver.getSolution()->clear();
  solver.solve();
  EXPECT_GE(solver.getModel()->getObjective(0)->getIntValue(), 3);
}

TEST_F(SolveTest, AFailedStartWithFewerThreadsLeavesNothingBehind) {
  const auto x = test::buildDivisionByZero(*solver.getModel(), 4);
  close();
  solver.getParam()->setObjectiveBound(0, 3);
  solver.getParam()->setNbThreads(4);
  solver.solve();
  solver.getParam()->setNbThreads(1);
  for (OXExpression* decision : x) solver.getSolution()->setIntValue(decision, 1);
  EXPECT_THROW(solver.solve(), OXException);
  test::expectFailure(kMisuse, "Ombrix::getInfo", kStarted, [&] { solver.getInfo(); });
  solver.stop();
}

TEST_F(SolveTest, AnErrorNumberOfTheHostFailsNoComputation) {
  OXModel& model = *solver.getModel();
  const auto x = test::createDecisions(model, 20);
  OXExpression* root = model.createExpression(OXOperator::Sqrt, test::createSum(model, x));
  model.addObjective(root, OXObjectiveDirection::Maximize);
  close();
  errno = EDOM;
  EXPECT_NO_THROW(solveFor(1000));
}

/// A child process limits its own address space, so that the stacks of so many threads do not fit.
int solveOnMoreThreadsThanFit() {
  Ombrix solver;
  test::buildKnapsack(*solver.getModel(), 10);
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.getParam()->setNbThreads(1024);
  const rlimit limit{std::size_t{1} << 30, std::size_t{1} << 30};
  if (setrlimit(RLIMIT_AS, &limit) != 0) return 1;
  try {
    solver.solve();
  } catch (const OXException& e) {
    const bool isReadable = solver.getSolution()->getStatus() == OXSolutionStatus::Feasible;
    return e.getCode() == kInternal && solver.getState() == OXState::Paused && isReadable ? 0 : 2;
  }
  return 3;
}

TEST(SolveDeathTest, RefusedThreadsAreAFailureThatLeavesTheSolverPaused) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's own memory does not fit under the limit";
#endif
  EXPECT_EXIT(std::exit(solveOnMoreThreadsThanFit()), testing::ExitedWithCode(0), "");
}

// Resources.

long long residentBytes() {
  std::ifstream file("/proc/self/statm");
  long long total = 0;
  long long resident = 0;
  file >> total >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

void createSolveAndDelete() {
  Ombrix solver;
  test::buildKnapsack(*solver.getModel(), 50);
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(200);
  solver.solve();
}

TEST(SolveResources, AThousandSolversLeaveNoMemoryBehind) {
  for (int i = 0; i < 300; ++i) createSolveAndDelete();
  const long long before = residentBytes();
  for (int i = 0; i < 1000; ++i) createSolveAndDelete();
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_LT(residentBytes() - before, 1 << 20);
#else
  (void)before;
#endif
}

}  // namespace
}  // namespace ombrix
