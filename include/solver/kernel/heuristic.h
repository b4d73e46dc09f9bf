#ifndef OMBRIX_SOLVER_KERNEL_HEURISTIC_H
#define OMBRIX_SOLVER_KERNEL_HEURISTIC_H

#include <cstdint>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristiccallback.h"
#include "solver/kernel/heuristicstrategy.h"
#include "solver/kernel/movepool.h"
#include "solver/kernel/searchlistener.h"
#include "solver/kernel/solution.h"

namespace ombrix {

inline constexpr std::uint32_t kUnlimitedTime = 2147483647;
inline constexpr std::uint64_t kUnlimitedIterations = 9223372036854775807;

/// One search worker. Its loop draws a move from the pool, lets it change a few decisions, asks the
/// chain of strategies whether to keep the result, and records the solution when it improved. The
/// loop has no policy: that is the strategies'. It runs in slices: a run that a callback stops
/// leaves all counters as they are, and the next run goes on from there; only reset starts anew.
///
/// Used by one thread at a time, without locks; between two runs the controlling thread reads and
/// writes the fields directly. Nothing is allocated in an iteration.
class alignas(kCacheLineSize) Heuristic {
public:
  /// Raises code 6 when the model has no objective. state is the worker's random state, shared with
  /// its moves; both arguments outlive the Heuristic.
  Heuristic(Dag& workerDag, std::uint32_t* state);
  virtual ~Heuristic() = default;
  Heuristic(const Heuristic&) = delete;
  Heuristic& operator=(const Heuristic&) = delete;

  /// Starts anew from the present state of the Dag: counters, clock, weights, strategies.
  void reset();
  /// Sets the bound of every objective to the value that its direction never reaches.
  void initObjectiveBounds();
  /// Appends to the chain and resets the strategy; not owned.
  void addStrategy(HeuristicStrategy* strategy);
  /// Appends; not owned.
  void addCallback(HeuristicCallback* callback);
  void removeCallback(HeuristicCallback* callback);

  /// Iterates until a limit, an objective bound or a callback ends it, or at once without a move.
  void run();
  /// Whether every objective up to objectiveIndex stands at its bound in objectiveBounds or at the
  /// bound of its own node, with all constraints active.
  bool isObjectiveBoundReached() const;
  /// Whether another iteration is due, by the clock as last read: the limits, the objective bounds
  /// and the pool.
  bool canContinue() const;
  /// Reads the clock into now; for whoever asks canContinue between two runs.
  void readClock();

  Dag* dag;
  std::uint32_t* rng;
  std::vector<HeuristicCallback*> callbacks;
  std::vector<OXValue> objectiveBounds;  ///< per objective: a value that counts as reached
  std::vector<HeuristicStrategy*> strategies;
  bool stopRequested = false;        ///< ends the run after the current iteration
  std::uint32_t objectiveIndex = 0;  ///< the objective that is optimised; at first the last one
  std::uint32_t timeLimit = kUnlimitedTime;  ///< seconds since reset
  std::uint64_t iterationLimit = kUnlimitedIterations;
  MovePool movePool;
  std::int64_t startTime = 0;
  std::uint64_t nbIterations = 0;   ///< since reset
  std::int64_t bestTime = 0;        ///< the absolute clock until the first best, then an offset
  std::uint64_t bestIteration = 0;  ///< nbIterations when the best was recorded, not yet counted
  Solution bestSolution;
  SearchListener* listener = nullptr;  ///< not owned; told of each new best
  /// The clock as of the end of the last iteration, read once for the loop and all callbacks.
  std::int64_t now = 0;

private:
  void step();
  MoveStatus decide(Move& move);
  void recordBest();
  bool isReached(std::uint32_t objective) const;
};

}  // namespace ombrix

#endif
