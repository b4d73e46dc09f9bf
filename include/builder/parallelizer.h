#ifndef OMBRIX_BUILDER_PARALLELIZER_H
#define OMBRIX_BUILDER_PARALLELIZER_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "api/oxexception.h"
#include "builder/threadpool.h"
#include "solver/kernel/cacheline.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/heuristiccallback.h"
#include "solver/move/greedyinitializer.h"

namespace ombrix {

class Ombrix;
struct SearchCounters;
struct Worker;

/// Runs the workers of a solver on threads. Each worker searches on its own; the controlling
/// thread, the one that called solve, hands out time slices. A slice ends when the workers reach
/// the next synchronisation, when a display tick is due or when a stop is asked for. Between two
/// slices, with all workers idle and the state Paused, the controlling thread fires callbacks, puts
/// the best solution into all workers and tests for the end. All workers of a phase do the same
/// number of iterations between two synchronisations, so the result does not hang on thread timing.
///
/// Built by solve, over workers that outlive it; lives until the next solve. Only requestStop may
/// be called from another thread. Aligned to cache lines, as all workers read it at each iteration.
class alignas(kCacheLineSize) Parallelizer {
public:
  using CallbackFunction = void (*)(void*);

  /// Code 6 when the solver has no workers.
  explicit Parallelizer(Ombrix& owner);
  virtual ~Parallelizer();
  Parallelizer(const Parallelizer&) = delete;
  Parallelizer& operator=(const Parallelizer&) = delete;

  /// The function is called with data at every event of that kind, on the controlling thread.
  void addCallback(std::int32_t event, CallbackFunction function, void* data);
  /// Looks for a first feasible solution in each worker that has none.
  void runGreedy();
  /// Runs all phases, and leaves the solver Stopped. What a worker throws is thrown from here, with
  /// the solver Paused.
  void runPhases();
  /// Ends the running phase soon; has no effect before the search and between two phases.
  void requestStop() { stopRequested.store(true, std::memory_order_relaxed); }

  /// The worker that holds the best solution over all objectives; the first one on ties.
  Heuristic& getBestHeuristic() const;
  std::uint32_t getPhaseIndex() const { return phaseIndex; }
  /// The counters of the running phase, summed over the workers.
  SearchCounters countPhase() const;
  /// Lets go of the workers from the given number on, which are about to be destroyed; the first
  /// one stays.
  void keepWorkers(std::size_t nbKept);

private:
  class RunningHeuristic;
  class RunningGreedy;

  void runPhase(ThreadPool<RunningHeuristic>& pool, std::uint32_t index);
  void prepareWorker(Worker& worker, std::uint32_t index, std::uint32_t timeLimit,
                     std::uint64_t iterationLimit);
  void setActiveLevel(Heuristic& heuristic) const;
  void resetPhase();
  void runSlice(ThreadPool<RunningHeuristic>& pool);
  void fire(std::int32_t event) const;
  void synchronize();
  void adopt(Heuristic& target, const Heuristic& best) const;
  bool isSyncDue() const;
  bool isFinished() const;
  bool isDone(Heuristic& heuristic) const;
  std::uint32_t cumulativeTimeLimit(std::uint32_t index) const;
  std::uint64_t cumulativeIterationLimit(std::uint32_t index) const;

  std::vector<CallbackFunction> callbackFunctions;
  std::vector<std::int32_t> callbackEvents;
  std::vector<void*> callbackData;
  std::vector<std::unique_ptr<RunningHeuristic>> runningHeuristics;  ///< one per worker
  std::vector<std::unique_ptr<RunningGreedy>> runningGreedies;       ///< one per worker
  std::mutex lock;  ///< guards pendingError, and the first to finish against the others
  Ombrix* solver;
  GreedyInitializer greedy;
  bool timeTicksEnabled;
  bool syncEnabled;
  std::uint32_t phaseIndex = 0;
  std::int32_t timeBetweenDisplays;
  std::int64_t syncIterations;
  // Workers read the two flags at every iteration, so they are atomics and no lock is taken.
  // They carry no data: a worker that sees one late does a few more iterations.
  std::atomic<bool> stopRequested = false;
  std::atomic<bool> hasError = false;
  bool finished = false;                 ///< some worker has met a stop condition in this phase
  std::uint64_t finishIterations = 0;    ///< that worker's iterations when it did
  std::uint64_t nextSyncIterations = 0;  ///< written while all workers are idle, as is nextTick
  std::int64_t nextTick = 0;
  std::optional<OXException> pendingError;
};

}  // namespace ombrix

#endif
