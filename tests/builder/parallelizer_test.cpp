#include "builder/parallelizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "builder/modelrecord.h"
#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "common/failure.h"
#include "support/failures.h"
#include "support/mirrorchecks.h"
#include "support/solvermodels.h"

namespace ombrix {
namespace {

enum Event : std::int32_t { kTick = 0, kSync = 1, kPhaseStart = 2, kPhaseEnd = 3 };

constexpr int kNoTimeLimit = std::numeric_limits<int>::max();
constexpr long long kNoIterationLimit = std::numeric_limits<long long>::max();

/// A move that calls what it was given when it is drawn, mostly to throw, and changes nothing.
class FailingMove : public Move {
public:
  FailingMove(Worker& worker, std::function<void()> thrower)
      : Move("Failing", *worker.dag, worker.rng, 1000), body(std::move(thrower)) {}
  bool apply() override {
    body();
    return false;
  }

private:
  std::function<void()> body;
};

/// A closed model with workers, over which tests build Parallelizers of their own. Whatever is
/// hooked on an event runs with the state Paused.
class ParallelizerTest : public testing::Test {
protected:
  void close(int nbWorkers) {
    solver.getModel()->close();
    for (int i = 0; i < nbWorkers; ++i) {
      SolverRecord::workers(solver).push_back(std::make_unique<Worker>(solver));
    }
  }

  void closeKnapsack(int nbWorkers) {
    test::buildKnapsack(*solver.getModel(), 60);
    close(nbWorkers);
  }

  void addPhase(long long iterationLimit, int timeLimit = kNoTimeLimit) {
    OXPhase* phase = solver.createPhase();
    phase->setIterationLimit(iterationLimit);
    phase->setTimeLimit(timeLimit);
  }

  void createParallelizer() {
    search = std::make_unique<Parallelizer>(solver);
    for (std::int32_t event : {kTick, kSync, kPhaseStart, kPhaseEnd}) {
      hooks.push_back({this, event});
    }
    for (Hook& hook : hooks) search->addCallback(hook.event, callHook, &hook);
  }

  /// All events but the ticks, which depend on the clock.
  std::vector<std::int32_t> untimedEvents() const {
    std::vector<std::int32_t> kept = events;
    std::erase(kept, kTick);
    return kept;
  }

  void run() {
    search->runGreedy();
    search->runPhases();
  }

  Worker& worker(std::size_t i) { return *SolverRecord::workers(solver)[i]; }
  Heuristic& heuristic(std::size_t i) { return *worker(i).heuristic; }
  OXStatistics& statistics(std::size_t phase) {
    return SolverRecord::statistics(*SolverRecord::phases(solver)[phase]);
  }

  Ombrix solver;
  std::unique_ptr<Parallelizer> search;
  std::vector<std::int32_t> events;
  std::vector<OXState> states;
  std::function<void(std::int32_t)> onEvent = [](std::int32_t) {};

private:
  struct Hook {
    ParallelizerTest* test;
    std::int32_t event;
  };

  static void callHook(void* data) {
    const Hook& hook = *static_cast<Hook*>(data);
    hook.test->events.push_back(hook.event);
    hook.test->states.push_back(hook.test->solver.getState());
    hook.test->onEvent(hook.event);
  }

  std::vector<Hook> hooks;
};

TEST_F(ParallelizerTest, NeedsAWorker) {
  closeKnapsack(0);
  test::expectFailure(kInternal, "Parallelizer::Parallelizer", "No heuristic to parallelize",
                      [&] { Parallelizer parallelizer(solver); });
}

TEST_F(ParallelizerTest, LeavesWorkersWithoutCallbacksWhenItDies) {
  closeKnapsack(2);
  createParallelizer();
  EXPECT_EQ(heuristic(0).callbacks.size(), 1u);
  EXPECT_EQ(heuristic(1).callbacks.size(), 1u);
  search.reset();
  EXPECT_TRUE(heuristic(0).callbacks.empty());
  EXPECT_TRUE(heuristic(1).callbacks.empty());
}

TEST_F(ParallelizerTest, LetsGoOfWorkersThatAreAboutToDie) {
  closeKnapsack(3);
  createParallelizer();
  search->keepWorkers(1);
  SolverRecord::workers(solver).resize(1);
  EXPECT_EQ(&search->getBestHeuristic(), &heuristic(0));
  EXPECT_EQ(heuristic(0).callbacks.size(), 1u);
}

TEST_F(ParallelizerTest, EveryWorkerDoesExactlyTheIterationsOfTheLimit) {
  closeKnapsack(3);
  addPhase(12345);
  createParallelizer();
  run();
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(heuristic(i).nbIterations, 12345u);
  EXPECT_EQ(search->countPhase().nbMoves, 3 * 12345);
  EXPECT_EQ(search->countPhase().nbIterations, 12345);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(ParallelizerTest, EveryPhaseMirrorsTheConstraintsAnew) {
  closeKnapsack(2);
  addPhase(500);
  addPhase(500);
  createParallelizer();
  int nbRebuilt = 0;
  onEvent = [&](std::int32_t event) {
    for (std::size_t i = 0; i < 2; ++i) {
      AutonomousStructure& mirror = *worker(i).autonomousStructure;
      if (event == kPhaseEnd) {
        test::expectMirrorAgrees(mirror, worker(i).dag->values);
        // A plan that nobody ends: the next phase must know nothing of it.
        EXPECT_TRUE(mirror.dynamicByDecision[i]->change(worker(i).rng, false));
      } else if (event == kPhaseStart) {
        EXPECT_EQ(mirror.pendingDecisions.size(), 0u);
        test::expectMirrorAgrees(mirror, worker(i).dag->values);
        ++nbRebuilt;
      }
    }
  };
  run();
  EXPECT_EQ(nbRebuilt, 4);
}

TEST_F(ParallelizerTest, TheMirrorFollowsTheBestSolutionThatIsPutIntoTheWorker) {
  solver.getParam()->setAdvancedParam("syncIterations", 500);
  closeKnapsack(3);
  addPhase(5000);
  createParallelizer();
  int nbSyncs = 0;
  onEvent = [&](std::int32_t event) {
    if (event != kSync) return;
    ++nbSyncs;
    for (std::size_t i = 0; i < 3; ++i) {
      test::expectMirrorAgrees(*worker(i).autonomousStructure, worker(i).dag->values);
    }
  };
  run();
  EXPECT_GE(nbSyncs, 10);
}

TEST_F(ParallelizerTest, SynchronisesEachTimeAllWorkersHaveDoneSoManyIterations) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  closeKnapsack(2);
  addPhase(3500);
  createParallelizer();
  std::vector<std::uint64_t> iterations;
  onEvent = [&](std::int32_t event) {
    if (event == kSync) iterations.push_back(heuristic(0).nbIterations);
  };
  run();
  EXPECT_EQ(iterations, (std::vector<std::uint64_t>{1000, 2000, 3000, 3500}));
  EXPECT_EQ(untimedEvents(),
            (std::vector<std::int32_t>{kPhaseStart, kSync, kSync, kSync, kSync, kPhaseEnd}));
}

TEST_F(ParallelizerTest, SynchronisesEvery40000IterationsByDefault) {
  closeKnapsack(1);
  addPhase(80000);
  createParallelizer();
  run();
  EXPECT_EQ(untimedEvents(),
            (std::vector<std::int32_t>{kPhaseStart, kSync, kSync, kSync, kPhaseEnd}));
}

TEST_F(ParallelizerTest, WithoutSyncIterationsSynchronisesAtTheEndOfThePhaseOnly) {
  for (int syncIterations : {0, -5}) {
    Ombrix other;
    other.getParam()->setAdvancedParam("syncIterations", syncIterations);
    test::buildKnapsack(*other.getModel(), 20);
    other.getModel()->close();
    SolverRecord::workers(other).push_back(std::make_unique<Worker>(other));
    other.createPhase()->setIterationLimit(100000);
    Parallelizer parallelizer(other);
    int nbSyncs = 0;
    parallelizer.addCallback(
        kSync, [](void* count) { ++*static_cast<int*>(count); }, &nbSyncs);
    parallelizer.runPhases();
    EXPECT_EQ(nbSyncs, 1);
  }
}

TEST_F(ParallelizerTest, CallbacksRunInStatePaused) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  closeKnapsack(2);
  addPhase(3000);
  createParallelizer();
  run();
  for (OXState state : states) EXPECT_EQ(state, OXState::Paused);
}

TEST_F(ParallelizerTest, ASynchronisationPutsTheBestSolutionIntoAllWorkers) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  closeKnapsack(3);
  addPhase(5000);
  createParallelizer();
  // All workers draw alike, so one is given another state to go its own way.
  onEvent = [&](std::int32_t event) {
    if (event == kPhaseStart) worker(1).rng = 4711;
    if (event != kSync) return;
    int nbAdopted = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const Heuristic& other = heuristic(i);
      EXPECT_EQ(other.bestSolution.compareTo(heuristic(0).bestSolution, 0), 0);
      if (other.bestIteration != other.nbIterations) continue;
      ++nbAdopted;
      EXPECT_EQ(other.bestSolution.compareTo(*other.dag, 0), 0);
      EXPECT_LE(other.bestTime, 60) << "an offset from the start, no absolute clock";
    }
    EXPECT_GE(nbAdopted, 2) << "all but the best";
  };
  run();
}

TEST_F(ParallelizerTest, AStopEndsTheRunningPhaseOnly) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  closeKnapsack(2);
  addPhase(kNoIterationLimit);
  addPhase(kNoIterationLimit);
  addPhase(kNoIterationLimit);
  createParallelizer();
  std::vector<std::uint64_t> ends;
  int nbSyncs = 0;
  onEvent = [&](std::int32_t event) {
    if (event == kSync && ++nbSyncs == 3) search->requestStop();
    if (event == kPhaseStart && search->getPhaseIndex() > 0) search->requestStop();
    if (event == kPhaseEnd) ends.push_back(heuristic(0).nbIterations);
  };
  run();
  EXPECT_EQ(ends, (std::vector<std::uint64_t>{3000, 0, 0}));
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(ParallelizerTest, AStopBeforeAPhaseIsWithoutEffect) {
  closeKnapsack(1);
  addPhase(500);
  createParallelizer();
  search->requestStop();
  run();
  EXPECT_EQ(heuristic(0).nbIterations, 500u);
}

TEST_F(ParallelizerTest, AStopFromAnotherThreadEndsARunningSlice) {
  solver.getParam()->setAdvancedParam("syncIterations", 0);
  closeKnapsack(2);
  addPhase(kNoIterationLimit);
  createParallelizer();
  std::thread stopper;
  onEvent = [&](std::int32_t event) {
    if (event != kPhaseStart) return;
    stopper = std::thread([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      search->requestStop();
    });
  };
  run();
  stopper.join();
  EXPECT_GT(heuristic(0).nbIterations, 0u);
}

TEST_F(ParallelizerTest, PreparesEachWorkerForThePhase) {
  OXModel& model = *solver.getModel();
  const std::vector<OXExpression*> x = test::buildKnapsack(model, 20);
  model.addObjective(test::createSum(model, x), OXObjectiveDirection::Minimize);
  close(2);
  solver.getParam()->setSeed(99);
  addPhase(100);
  addPhase(300);
  solver.getPhase(0)->setOptimizedObjective(0);
  createParallelizer();
  onEvent = [&](std::int32_t event) {
    if (event != kPhaseStart) return;
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(worker(i).rng, 99u);
      EXPECT_EQ(heuristic(i).nbIterations, 0u);
      EXPECT_EQ(heuristic(i).objectiveIndex, search->getPhaseIndex());
      EXPECT_EQ(heuristic(i).dag->propagation.activeLevel, search->getPhaseIndex() + 1);
      EXPECT_EQ(heuristic(i).bestSolution.compareTo(*heuristic(i).dag, 1), 0);
    }
  };
  run();
  EXPECT_EQ(untimedEvents().size(), 6u);
}

TEST_F(ParallelizerTest, AnInfeasibleWorkerFollowsTheConstraintsOnly) {
  test::buildOddCycle(*solver.getModel());
  close(1);
  addPhase(100);
  createParallelizer();
  onEvent = [&](std::int32_t event) {
    if (event != kPhaseStart) return;
    EXPECT_EQ(heuristic(0).dag->propagation.activeLevel, 0u);
  };
  run();
  EXPECT_EQ(search->getBestHeuristic().bestSolution.nbViolatedEqualities, 1);
}

TEST_F(ParallelizerTest, AWorkerThatIsGivenAFeasibleSolutionFollowsTheObjectives) {
  OXModel& model = *solver.getModel();
  const std::vector<OXExpression*> x = test::createDecisions(model, 40);
  model.addConstraint(
      model.createExpression(OXOperator::Eq, test::createSum(model, x), model.createConstant(20)));
  model.addObjective(test::createSum(model, {x[0], x[1], x[2]}), OXObjectiveDirection::Maximize);
  solver.getParam()->setAdvancedParam("greedyEnabled", 0);
  close(2);
  addPhase(1);  // one move does not make the second worker feasible
  createParallelizer();
  bool wasInfeasible = false;
  onEvent = [&](std::int32_t event) {
    Dag& dag = *heuristic(0).dag;
    Propagation& first = dag.propagation;
    Propagation& second = heuristic(1).dag->propagation;
    if (event == kPhaseStart) {
      for (std::uint32_t i = 0; i < 20; ++i) {
        first.setValue(dag, dag.fixedFields->nodesByGroup[i], std::int64_t{1});
      }
      first.accept(dag);
      first.synchronize(dag);
      first.activateAllConstraints();
      first.activeLevel = 1;
      heuristic(0).bestSolution.save();
      wasInfeasible = second.infeasibility.nbViolated > 0 && second.activeLevel == 0;
    }
    if (event == kSync) {
      EXPECT_EQ(second.infeasibility.nbViolated, 0);
      EXPECT_TRUE(second.activeConstraints.isFull());
      EXPECT_EQ(second.activeLevel, 1u);
      // What it did not follow while it was infeasible is as true as what it followed.
      EXPECT_EQ(second.staleNodes.size(), 0u);
      EXPECT_NO_THROW(heuristic(1).dag->check());
      EXPECT_EQ(heuristic(1).bestSolution.compareTo(heuristic(0).bestSolution, 0), 0);
      EXPECT_EQ(heuristic(1).bestSolution.objectiveValues[0].intValue, 3);
    }
  };
  run();
  EXPECT_TRUE(wasInfeasible);
  EXPECT_EQ(untimedEvents(), (std::vector<std::int32_t>{kPhaseStart, kSync, kPhaseEnd}));
}

TEST_F(ParallelizerTest, TheGreedyPassRunsOnInfeasibleWorkersAndLeavesThemFeasible) {
  test::buildCovering(*solver.getModel(), 50);
  close(2);
  createParallelizer();
  ASSERT_GT(worker(0).dag->propagation.infeasibility.nbViolated, 0);
  search->runGreedy();
  EXPECT_EQ(solver.getState(), OXState::Paused);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(worker(i).dag->propagation.infeasibility.nbViolated, 0);
  }
}

TEST_F(ParallelizerTest, TheGreedyPassIsOffWithItsParameterAt0) {
  solver.getParam()->setAdvancedParam("greedyEnabled", 0);
  test::buildCovering(*solver.getModel(), 50);
  close(1);
  createParallelizer();
  search->runGreedy();
  EXPECT_GT(worker(0).dag->propagation.infeasibility.nbViolated, 0);
  EXPECT_EQ(solver.getState(), OXState::Stopped);
}

TEST_F(ParallelizerTest, TheGreedyPassLeavesAFeasibleWorkerAlone) {
  closeKnapsack(1);
  worker(0).rng = 5;
  createParallelizer();
  search->runGreedy();
  EXPECT_EQ(worker(0).rng, 5u);
}

/// The limits that the workers get in each phase, with every phase stopped at once.
class CumulativeLimits : public ParallelizerTest {
protected:
  void collect() {
    createParallelizer();
    onEvent = [&](std::int32_t event) {
      if (event != kPhaseStart) return;
      timeLimits.push_back(heuristic(0).timeLimit);
      iterationLimits.push_back(heuristic(0).iterationLimit);
      search->requestStop();
    };
    run();
  }

  std::vector<std::uint32_t> timeLimits;
  std::vector<std::uint64_t> iterationLimits;
};

TEST_F(CumulativeLimits, TimeThatAnEarlierPhaseLeftIsAdded) {
  closeKnapsack(1);
  addPhase(1000, 10);
  addPhase(500, 10);
  SearchCounters used;
  used.runningTime = 4;
  used.nbIterations = 300;
  SolverRecord::refresh(statistics(0), used);
  collect();
  EXPECT_EQ(timeLimits, (std::vector<std::uint32_t>{6, 16}));
  EXPECT_EQ(iterationLimits, (std::vector<std::uint64_t>{700, 1200}));
}

TEST_F(CumulativeLimits, AreUnlimitedFromTheFirstUnlimitedPhaseOn) {
  closeKnapsack(1);
  addPhase(1000, 10);
  addPhase(kNoIterationLimit, kNoTimeLimit);
  addPhase(1000, 10);
  collect();
  EXPECT_EQ(timeLimits, (std::vector<std::uint32_t>{10, kUnlimitedTime, kUnlimitedTime}));
  EXPECT_EQ(iterationLimits,
            (std::vector<std::uint64_t>{1000, kUnlimitedIterations, kUnlimitedIterations}));
}

TEST_F(CumulativeLimits, AreNeverNegativeNorAboveTheUnlimitedValue) {
  closeKnapsack(1);
  addPhase(kNoIterationLimit - 1, kNoTimeLimit - 1);
  addPhase(kNoIterationLimit - 1, kNoTimeLimit - 1);
  collect();
  EXPECT_EQ(timeLimits[1], kUnlimitedTime);
  EXPECT_EQ(iterationLimits[1], kUnlimitedIterations);
}

TEST_F(CumulativeLimits, APhaseThatOverranLeavesNothing) {
  closeKnapsack(1);
  addPhase(100, 2);
  SearchCounters used;
  used.runningTime = 3;
  used.nbIterations = 101;
  SolverRecord::refresh(statistics(0), used);
  collect();
  EXPECT_EQ(timeLimits, (std::vector<std::uint32_t>{0}));
  EXPECT_EQ(iterationLimits, (std::vector<std::uint64_t>{0}));
}

TEST_F(ParallelizerTest, OnceAWorkerHasFinishedTheOthersRunToTheSameCount) {
  solver.getParam()->setAdvancedParam("syncIterations", 1000);
  closeKnapsack(2);
  addPhase(kNoIterationLimit);
  createParallelizer();
  onEvent = [&](std::int32_t event) {
    if (event == kPhaseStart) heuristic(0).iterationLimit = 10;
  };
  run();
  EXPECT_EQ(heuristic(0).nbIterations, 10u);
  EXPECT_EQ(heuristic(1).nbIterations, 1000u) << "it stops where its slice ends";
}

TEST_F(ParallelizerTest, AWorkerBehindTheFirstToFinishCatchesUp) {
  solver.getParam()->setAdvancedParam("syncIterations", 0);
  closeKnapsack(2);
  addPhase(5000);
  createParallelizer();
  onEvent = [&](std::int32_t event) {
    if (event == kPhaseStart) heuristic(1).nbIterations = 4000;
  };
  run();
  EXPECT_EQ(heuristic(0).nbIterations, 5000u);
  EXPECT_EQ(heuristic(1).nbIterations, 5000u);
}

TEST_F(ParallelizerTest, ATimeLimitEndsThePhase) {
  closeKnapsack(2);
  addPhase(kNoIterationLimit, 1);
  createParallelizer();
  run();
  EXPECT_GE(search->countPhase().runningTime, 1);
  EXPECT_EQ(events.back(), kPhaseEnd);
}

TEST_F(ParallelizerTest, TicksComeEachTimeTheirPeriodHasPassed) {
  solver.getParam()->setAdvancedParam("syncIterations", 0);
  closeKnapsack(2);
  addPhase(kNoIterationLimit, 3);
  createParallelizer();
  run();
  const auto nbTicks = std::count(events.begin(), events.end(), kTick);
  EXPECT_GE(nbTicks, 2);
  EXPECT_LE(nbTicks, 3);
}

TEST_F(ParallelizerTest, ASlowCallbackIsNotFollowedByAllTheTicksItMissedAtOnce) {
  closeKnapsack(1);
  addPhase(kNoIterationLimit);
  createParallelizer();
  int nbTicks = 0;
  onEvent = [&](std::int32_t event) {
    if (event != kTick) return;
    if (++nbTicks == 1) std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    search->requestStop();
  };
  run();
  EXPECT_EQ(nbTicks, 1) << "several periods had passed, but only one slice";
}

/// Three workers whose best solutions and the moments at which they were found are made up.
class BestHeuristic : public ParallelizerTest {
protected:
  void SetUp() override {
    closeKnapsack(3);
    createParallelizer();
  }

  void setBest(std::size_t i, std::int64_t objective, std::uint64_t iteration) {
    heuristic(i).bestSolution.objectiveValues[0].intValue = objective;
    heuristic(i).bestIteration = iteration;
  }

  const Heuristic* best() { return &search->getBestHeuristic(); }
};

TEST_F(BestHeuristic, IsTheStrictlyBetterOne) {
  setBest(0, 5, 0);
  setBest(1, 7, 0);
  setBest(2, 6, 0);
  EXPECT_EQ(best(), &heuristic(1));
}

TEST_F(BestHeuristic, StaysTheFirstOneOnATie) {
  setBest(0, 7, 1000);
  setBest(1, 7, 10);
  setBest(2, 7, 1);
  EXPECT_EQ(best(), &heuristic(0));
}

TEST_F(BestHeuristic, IsTheEarlierOneOnATieBehindAStrictlyBetterOne) {
  setBest(0, 5, 0);
  setBest(1, 7, 10);
  setBest(2, 7, 9);
  EXPECT_EQ(best(), &heuristic(2));
  setBest(2, 7, 10);
  EXPECT_EQ(best(), &heuristic(1));
}

TEST_F(BestHeuristic, ComparesIterationsIn32Bits) {
  setBest(0, 5, 0);
  setBest(1, 7, 10);
  setBest(2, 7, (std::uint64_t{1} << 32) + 9);
  EXPECT_EQ(best(), &heuristic(2));
}

TEST_F(BestHeuristic, IsFeasibleBeforeItIsGood) {
  setBest(0, 500, 0);
  heuristic(0).bestSolution.nbViolated = 1;
  heuristic(0).bestSolution.violationSum = 1;
  setBest(1, 3, 0);
  setBest(2, 2, 0);
  EXPECT_EQ(best(), &heuristic(1));
}

/// One worker draws a move that throws.
class WorkerFailure : public ParallelizerTest {
protected:
  void failWith(const std::function<void()>& thrower) {
    closeKnapsack(2);
    addPhase(kNoIterationLimit);
    heuristic(1).movePool.addMove(std::make_unique<FailingMove>(worker(1), thrower));
    createParallelizer();
  }
};

TEST_F(WorkerFailure, KeepsCodeAndMessage) {
  failWith([] { fail(kComputation, OMBRIX_HERE("NodeDiv::eval"), "Division by zero"); });
  test::expectFailure(kComputation, "NodeDiv::eval", "Division by zero", [&] { run(); });
  EXPECT_EQ(solver.getState(), OXState::Paused);
}

TEST_F(WorkerFailure, OfAStandardExceptionBecomesAnInternalError) {
  failWith([] { throw std::runtime_error("no memory left"); });
  test::expectFailure(kInternal, "Parallelizer::RunningHeuristic::operator ()", "no memory left",
                      [&] { run(); });
}

TEST_F(WorkerFailure, OfAnyOtherKindIsAnInternalThreadError) {
  failWith([] { throw 42; });
  test::expectFailure(kInternal, "Parallelizer::RunningHeuristic::operator ()",
                      "Internal thread error", [&] { run(); });
}

TEST_F(WorkerFailure, StopsTheOtherWorkers) {
  solver.getParam()->setAdvancedParam("syncIterations", 0);
  failWith([] { throw std::runtime_error("broken"); });
  EXPECT_THROW(run(), OXException);
  EXPECT_NO_THROW(search->getBestHeuristic());
}

/// The objective is computed in doubles, by a function that looks at the error number.
class ErrorNumber : public ParallelizerTest {
protected:
  void closeRoot(int nbWorkers) {
    OXModel& model = *solver.getModel();
    const auto x = test::createDecisions(model, 40);
    OXExpression* weight = test::createWeightedSum(model, x, 1);
    OXExpression* capacity = model.createConstant(8000);
    model.addConstraint(model.createExpression(OXOperator::Leq, weight, capacity));
    OXExpression* profit = test::createWeightedSum(model, x, 77);
    model.addObjective(model.createExpression(OXOperator::Sqrt, profit),
                       OXObjectiveDirection::Maximize);
    close(nbWorkers);
  }

  void runWithoutFailure() {
    EXPECT_NO_THROW(run());
    EXPECT_EQ(solver.getState(), OXState::Stopped);
    EXPECT_EQ(heuristic(0).nbIterations, 5000u) << "the second phase had both limits";
    EXPECT_GT(search->countPhase().nbAcceptedMoves, 0);
  }
};

TEST_F(ErrorNumber, ThatARunLeavesOnItsThreadFailsNotTheNextRun) {
  closeRoot(1);
  addPhase(1000);
  addPhase(4000);
  int nbLeft = 0;
  const auto leave = [&] {
    if (search->getPhaseIndex() > 0) return;
    ++nbLeft;
    errno = EDOM;
    search->requestStop();
  };
  heuristic(0).movePool.addMove(std::make_unique<FailingMove>(worker(0), leave));
  createParallelizer();
  runWithoutFailure();
  EXPECT_EQ(nbLeft, 1) << "the first run ended there";
}

TEST_F(ErrorNumber, ThatACallbackLeavesFailsNothingOnTheControllingThread) {
  solver.getParam()->setAdvancedParam("syncIterations", 500);
  closeRoot(3);
  addPhase(1000);
  addPhase(4000);
  createParallelizer();
  onEvent = [&](std::int32_t event) {
    // A worker that goes its own way has something to hand over and to take over.
    if (event == kPhaseStart) worker(1).rng = 4711;
    errno = EDOM;
  };
  runWithoutFailure();
}

TEST_F(ParallelizerTest, AFailureInTheGreedyPassIsThrownOnTheControllingThread) {
  test::buildNoValueOnTheWay(solver);
  close(2);
  createParallelizer();
  try {
    search->runGreedy();
    FAIL() << "nothing was thrown";
  } catch (const OXException& e) {
    EXPECT_EQ(e.getCode(), kComputation);
  }
  EXPECT_EQ(solver.getState(), OXState::Paused);
}

}  // namespace
}  // namespace ombrix
