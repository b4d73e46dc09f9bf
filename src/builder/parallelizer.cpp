#include "builder/parallelizer.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>

#include "builder/solverrecord.h"
#include "builder/worker.h"
#include "common/failure.h"
#include "solver/kernel/clock.h"

namespace ombrix {

namespace {

constexpr std::int32_t kTickEvent = 0;
constexpr std::int32_t kSynchronizationEvent = 1;
constexpr std::int32_t kPhaseStartEvent = 2;
constexpr std::int32_t kPhaseEndEvent = 3;
constexpr std::int32_t kDefaultSyncIterations = 40000;

/// Keeps the solver Running for its own life and Paused afterwards, however the slice ends.
class RunningState {
public:
  explicit RunningState(Ombrix& owner) : solver(owner) {
    SolverRecord::setState(solver, OXState::Running);
  }
  ~RunningState() { SolverRecord::setState(solver, OXState::Paused); }
  RunningState(const RunningState&) = delete;
  RunningState& operator=(const RunningState&) = delete;

private:
  Ombrix& solver;
};

/// Whoever evaluates a graph starts with a clear one: checked computations of doubles read it, and
/// none may fail for what the display, the host or another computation left there.
void clearErrorNumber() {
  errno = 0;
}

const DagFixedFields& sharedFields(const Ombrix& solver) {
  const auto& workers = SolverRecord::workers(solver);
  if (workers.empty()) {
    fail(kInternal, OMBRIX_HERE("Parallelizer::Parallelizer"), "No heuristic to parallelize");
  }
  return *workers.front()->dag->fixedFields;
}

/// The sum over the phases up to index of what is left of each: limit minus used. Unlimited as soon
/// as one phase is, and when the sum is not below that number; never below 0.
template <typename Limit, typename Used>
std::int64_t cumulativeLimit(const Ombrix& solver, std::uint32_t index, std::int64_t unlimited,
                             Limit limitOf, Used usedBy) {
  std::int64_t sum = 0;
  bool overflow = false;
  for (std::uint32_t j = 0; j <= index; ++j) {
    const OXPhase& phase = *SolverRecord::phases(solver)[j];
    const std::int64_t limit = limitOf(phase);
    if (limit == unlimited) return unlimited;
    const std::int64_t left = limit - usedBy(SolverRecord::statistics(phase));
    overflow = overflow || __builtin_add_overflow(sum, left, &sum);
  }
  return overflow ? unlimited : std::clamp<std::int64_t>(sum, 0, unlimited);
}

}  // namespace

/// The search of one worker as a task: each call is one slice of one logical loop. As the observer
/// of that loop it ends the slice when it is time.
class alignas(kCacheLineSize) Parallelizer::RunningHeuristic : public HeuristicCallback {
public:
  RunningHeuristic(Worker& ownWorker, Parallelizer& owner)
      : worker(&ownWorker), heuristic(ownWorker.heuristic.get()), parallelizer(&owner) {
    heuristic->addCallback(this);
  }
  ~RunningHeuristic() override { heuristic->removeCallback(this); }
  RunningHeuristic(const RunningHeuristic&) = delete;
  RunningHeuristic& operator=(const RunningHeuristic&) = delete;

  void operator()();
  void onStart() override;
  void onEnd() override;
  void onIteration() override;

  Worker* worker;
  Heuristic* heuristic;
  Parallelizer* parallelizer;

private:
  bool isSliceOver() const;
  void keepError(const OXException& error);
  void keepError(const std::string& explanation);
};

void Parallelizer::RunningHeuristic::operator()() {
  clearErrorNumber();
  try {
    heuristic->run();
  } catch (const OXException& error) {
    keepError(error);
  } catch (const std::exception& error) {
    keepError(error.what());
  } catch (...) {
    keepError("Internal thread error");
  }
}

void Parallelizer::RunningHeuristic::onStart() {
  if (isSliceOver()) heuristic->stopRequested = true;
}

void Parallelizer::RunningHeuristic::onIteration() {
  if (parallelizer->hasError.load(std::memory_order_relaxed) ||
      parallelizer->stopRequested.load(std::memory_order_relaxed) || isSliceOver()) {
    heuristic->stopRequested = true;
  }
}

void Parallelizer::RunningHeuristic::onEnd() {
  if (heuristic->canContinue()) return;
  std::lock_guard guard(parallelizer->lock);
  if (parallelizer->finished) return;
  parallelizer->finished = true;
  parallelizer->finishIterations = heuristic->nbIterations;
}

bool Parallelizer::RunningHeuristic::isSliceOver() const {
  return (parallelizer->syncEnabled &&
          heuristic->nbIterations >= parallelizer->nextSyncIterations) ||
         (parallelizer->timeTicksEnabled && heuristic->now >= parallelizer->nextTick);
}

void Parallelizer::RunningHeuristic::keepError(const OXException& error) {
  std::lock_guard guard(parallelizer->lock);
  parallelizer->pendingError = error;
  parallelizer->hasError.store(true, std::memory_order_relaxed);
}

void Parallelizer::RunningHeuristic::keepError(const std::string& explanation) {
  keepError(OXException(kInternal, __FILE__, __LINE__,
                        "ombrix::Parallelizer::RunningHeuristic::operator ()", explanation));
}

/// The greedy pass of one worker as a task.
class Parallelizer::RunningGreedy {
public:
  RunningGreedy(Worker& worker, Parallelizer& owner)
      : heuristic(worker.heuristic.get()), parallelizer(&owner) {}

  void operator()() {
    clearErrorNumber();
    parallelizer->greedy.run(*heuristic->dag, *heuristic->rng);
  }

  Heuristic* heuristic;
  Parallelizer* parallelizer;
};

Parallelizer::Parallelizer(Ombrix& owner)
    : solver(&owner),
      greedy(sharedFields(owner)),
      timeBetweenDisplays(SolverRecord::timeBetweenDisplays(SolverRecord::param(owner))),
      syncIterations(SolverRecord::advancedParam(owner, "syncIterations", kDefaultSyncIterations)) {
  timeTicksEnabled = timeBetweenDisplays > 0;
  syncEnabled = syncIterations > 0;
  for (const auto& worker : SolverRecord::workers(owner)) {
    runningHeuristics.push_back(std::make_unique<RunningHeuristic>(*worker, *this));
  }
  for (const auto& worker : SolverRecord::workers(owner)) {
    runningGreedies.push_back(std::make_unique<RunningGreedy>(*worker, *this));
  }
}

Parallelizer::~Parallelizer() {
  requestStop();
}

void Parallelizer::addCallback(std::int32_t event, CallbackFunction function, void* data) {
  callbackEvents.push_back(event);
  callbackFunctions.push_back(function);
  callbackData.push_back(data);
}

void Parallelizer::keepWorkers(std::size_t nbKept) {
  nbKept = std::max<std::size_t>(nbKept, 1);
  if (runningHeuristics.size() > nbKept) runningHeuristics.resize(nbKept);
  if (runningGreedies.size() > nbKept) runningGreedies.resize(nbKept);
}

void Parallelizer::runGreedy() {
  if (SolverRecord::advancedParam(*solver, "greedyEnabled", 1) == 0) return;
  // Declared first: the state is Paused only when the threads of the pool are gone.
  const RunningState running(*solver);
  ThreadPool<RunningGreedy> pool(runningGreedies.size());
  for (const auto& task : runningGreedies) {
    if (task->heuristic->dag->propagation.infeasibility.nbViolated > 0) pool.enqueue(task.get());
  }
  pool.waitAll();
  pool.throwTaskError();
}

void Parallelizer::runPhases() {
  SolverRecord::setState(*solver, OXState::Paused);
  ThreadPool<RunningHeuristic> pool(runningHeuristics.size());
  const std::size_t nbPhases = SolverRecord::phases(*solver).size();
  for (phaseIndex = 0; phaseIndex < nbPhases; ++phaseIndex) runPhase(pool, phaseIndex);
  SolverRecord::setState(*solver, OXState::Stopped);
}

void Parallelizer::runPhase(ThreadPool<RunningHeuristic>& pool, std::uint32_t index) {
  for (const auto& running : runningHeuristics) {
    AutonomousStructure& structure = *running->worker->autonomousStructure;
    if (structure.moveAnalysis->advancedMovesOn) structure.rebuild();
  }
  const std::uint32_t timeLimit = cumulativeTimeLimit(index);
  const std::uint64_t iterationLimit = cumulativeIterationLimit(index);
  for (const auto& running : runningHeuristics) {
    prepareWorker(*running->worker, index, timeLimit, iterationLimit);
  }
  resetPhase();
  SearchListener* const listener = SolverRecord::searchListener(*solver);
  if (listener != nullptr) listener->onPhaseStart();
  fire(kPhaseStartEvent);
  while (!stopRequested.load(std::memory_order_relaxed)) {
    runSlice(pool);
    if (listener != nullptr) listener->onSliceEnd();
    if (timeTicksEnabled && clockSeconds() >= nextTick) {
      fire(kTickEvent);
      nextTick += timeBetweenDisplays;
    }
    if (isSyncDue()) synchronize();
    if (isFinished()) break;
  }
  synchronize();
  fire(kPhaseEndEvent);
}

void Parallelizer::prepareWorker(Worker& worker, std::uint32_t index, std::uint32_t timeLimit,
                                 std::uint64_t iterationLimit) {
  clearErrorNumber();
  Heuristic& heuristic = *worker.heuristic;
  worker.rng = static_cast<std::uint32_t>(SolverRecord::seed(SolverRecord::param(*solver)));
  heuristic.reset();
  heuristic.listener = SolverRecord::searchListener(*solver);
  heuristic.objectiveIndex = static_cast<std::uint32_t>(
      SolverRecord::optimizedObjective(*SolverRecord::phases(*solver)[index]));
  setActiveLevel(heuristic);
  heuristic.timeLimit = timeLimit;
  heuristic.iterationLimit = iterationLimit;
}

/// As long as its solution is infeasible, a worker does not pay for the objectives.
void Parallelizer::setActiveLevel(Heuristic& heuristic) const {
  Propagation& propagation = heuristic.dag->propagation;
  if (propagation.infeasibility.nbViolated >= 1) {
    propagation.activeLevel = 0;
  } else {
    const std::uint32_t level = heuristic.objectiveIndex + 1;
    if (level > propagation.activeLevel) propagation.synchronize(*heuristic.dag);
    propagation.activeLevel = level;
  }
}

/// A stop ends the phase that runs when it comes, and no other: the flag starts clear in each.
void Parallelizer::resetPhase() {
  finished = false;
  stopRequested.store(false, std::memory_order_relaxed);
  hasError.store(false, std::memory_order_relaxed);
  pendingError.reset();
  finishIterations = 0;
  nextSyncIterations = static_cast<std::uint64_t>(std::max<std::int64_t>(syncIterations, 0));
  nextTick = clockSeconds() + timeBetweenDisplays;
}

void Parallelizer::runSlice(ThreadPool<RunningHeuristic>& pool) {
  {
    const RunningState running(*solver);
    for (const auto& task : runningHeuristics) pool.enqueue(task.get());
    pool.waitAll();
  }
  if (hasError.load(std::memory_order_relaxed)) throw OXException(*pendingError);
  pool.throwTaskError();
}

void Parallelizer::fire(std::int32_t event) const {
  for (std::size_t i = 0; i < callbackEvents.size(); ++i) {
    if (callbackEvents[i] == event) callbackFunctions[i](callbackData[i]);
  }
}

void Parallelizer::synchronize() {
  const Heuristic& best = getBestHeuristic();
  for (const auto& running : runningHeuristics) {
    if (running->heuristic != &best) adopt(*running->heuristic, best);
  }
  fire(kSynchronizationEvent);
  if (syncEnabled) nextSyncIterations += static_cast<std::uint64_t>(syncIterations);
}

void Parallelizer::adopt(Heuristic& target, const Heuristic& best) const {
  clearErrorNumber();
  best.bestSolution.restore(*target.dag);
  // A worker that was infeasible has all constraints active at once and no move of its own that
  // made it feasible: without this it would never look at an objective and take every move.
  setActiveLevel(target);
  target.bestIteration = target.nbIterations;
  target.bestTime = clockSeconds() - target.startTime;
  target.bestSolution.save();
}

Heuristic& Parallelizer::getBestHeuristic() const {
  Heuristic* best = runningHeuristics.front()->heuristic;
  const int lastLevel = static_cast<int>(best->dag->fixedFields->nbObjectives()) - 1;
  // The mark starts at 0, not at the iteration of the first worker: a tie changes the best only
  // after a strictly better worker was found.
  std::uint32_t mark = 0;
  for (std::size_t i = 1; i < runningHeuristics.size(); ++i) {
    Heuristic* other = runningHeuristics[i]->heuristic;
    const auto iteration = static_cast<std::uint32_t>(other->bestIteration);
    const int order = other->bestSolution.compareTo(best->bestSolution, lastLevel);
    if (order > 0 || (order == 0 && iteration < mark)) {
      best = other;
      mark = iteration;
    }
  }
  return *best;
}

SearchCounters Parallelizer::countPhase() const {
  SearchCounters counters;
  counters.nbIterations = static_cast<std::int64_t>(getBestHeuristic().nbIterations);
  const std::int64_t now = clockSeconds();
  for (const auto& running : runningHeuristics) {
    const Heuristic& heuristic = *running->heuristic;
    counters.nbMoves += static_cast<std::int64_t>(heuristic.nbIterations);
    for (const auto& move : heuristic.movePool.moves) {
      counters.nbAcceptedMoves += move->nbAccepted;
      counters.nbImprovingMoves += move->nbImprovements;
      counters.nbInfeasibleMoves += move->nbInfeasibles;
    }
    counters.runningTime =
        std::max(counters.runningTime, static_cast<std::int32_t>(now - heuristic.startTime));
  }
  return counters;
}

bool Parallelizer::isSyncDue() const {
  return syncEnabled && std::all_of(runningHeuristics.begin(), runningHeuristics.end(),
                                    [this](const auto& running) {
                                      return running->heuristic->nbIterations >= nextSyncIterations;
                                    });
}

bool Parallelizer::isFinished() const {
  return std::all_of(runningHeuristics.begin(), runningHeuristics.end(),
                     [this](const auto& running) { return isDone(*running->heuristic); });
}

/// Once a worker has met a limit, the others run on to as many iterations.
bool Parallelizer::isDone(Heuristic& heuristic) const {
  heuristic.readClock();
  return !heuristic.canContinue() || (finished && heuristic.nbIterations >= finishIterations);
}

std::uint32_t Parallelizer::cumulativeTimeLimit(std::uint32_t index) const {
  return static_cast<std::uint32_t>(cumulativeLimit(
      *solver, index, std::numeric_limits<std::int32_t>::max(),
      [](const OXPhase& phase) { return SolverRecord::timeLimit(phase); },
      [](const OXStatistics& statistics) { return SolverRecord::runningTime(statistics); }));
}

std::uint64_t Parallelizer::cumulativeIterationLimit(std::uint32_t index) const {
  return static_cast<std::uint64_t>(cumulativeLimit(
      *solver, index, std::numeric_limits<std::int64_t>::max(),
      [](const OXPhase& phase) { return SolverRecord::iterationLimit(phase); },
      [](const OXStatistics& statistics) { return SolverRecord::nbIterations(statistics); }));
}

}  // namespace ombrix
