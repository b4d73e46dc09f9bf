#ifndef OMBRIX_CLI_WORKERCOUNTERS_H
#define OMBRIX_CLI_WORKERCOUNTERS_H

#include <cstdint>
#include <string>
#include <vector>

#include "solver/kernel/heuristic.h"

namespace ombrix::cli {

/// The sum over all phases of a number that counts up from 0 in each. It must be updated before the
/// number has gone once round.
template <typename Number>
class Counter {
public:
  void restart() { last = 0; }
  void update(Number present) {
    total += static_cast<Number>(present - last);
    last = present;
  }
  std::uint64_t getTotal() const { return total; }

private:
  std::uint64_t total = 0;
  Number last = 0;
};

/// What one worker did over all phases of a search: its own counters start anew with each phase,
/// and those of the moves hold 32 bits only.
struct WorkerCounters {
  struct MoveCounters {
    std::string name;
    std::uint32_t weight = 0;  ///< the present one
    Counter<std::uint32_t> attempted;
    Counter<std::uint32_t> infeasible;
    Counter<std::uint32_t> rejected;
    Counter<std::uint32_t> accepted;
    Counter<std::uint32_t> improved;
  };

  explicit WorkerCounters(const Heuristic& heuristic);

  /// The counters of the worker stand at 0.
  void startPhase();
  void update();
  /// All iterations so far, also while the worker runs; only on the thread that runs it.
  std::uint64_t countIterations() const;

  const Heuristic* source;
  Counter<std::uint64_t> iterations;
  std::vector<MoveCounters> moves;  ///< in the order of the pool
  // Of the annealing.
  std::uint32_t annealingWindow = 0;
  bool annealingActive = false;
  Counter<std::uint32_t> degradingMoves;
  // Of the restarts.
  std::uint32_t restartingRatio = 0;
  Counter<std::uint64_t> restarts;
  Counter<std::uint64_t> restartingIterations;

private:
  void updateStrategy(const HeuristicStrategy& strategy);
};

}  // namespace ombrix::cli

#endif
