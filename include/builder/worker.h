#ifndef OMBRIX_BUILDER_WORKER_H
#define OMBRIX_BUILDER_WORKER_H

#include <cstdint>
#include <memory>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/basicmovestructure.h"

namespace ombrix {

class Ombrix;

/// What one search thread owns: its Dag over the fixed fields that all workers share, its heuristic
/// with strategies and moves, its move structures and its random state. The solver keeps workers
/// from one solve to the next; they hang on the builder of the closed model and die with it.
///
/// Aligned to cache lines, since every draw of a thread writes its random state.
struct alignas(kCacheLineSize) Worker {
  /// Builds everything. Fails as the kernel does when the model has no value with all decisions
  /// at 0.
  explicit Worker(Ombrix& owner);
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Reads again what may change between two calls of solve: the objective bounds, the annealing
  /// level and the seed. The moves stay as the parameters were when the worker was built.
  void readParameters();

  std::uint32_t rng = 1;
  Ombrix* solver;
  std::unique_ptr<Dag> dag;
  std::unique_ptr<AutonomousStructure> autonomousStructure;
  std::unique_ptr<BasicMoveStructure> basicMoveStructure;
  /// Last, so that the moves die before what they point to.
  std::unique_ptr<HeuristicAutoAnnealing> heuristic;
};

}  // namespace ombrix

#endif
