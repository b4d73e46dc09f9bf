#ifndef OMBRIX_SOLVER_KERNEL_HEURISTICAUTOANNEALING_H
#define OMBRIX_SOLVER_KERNEL_HEURISTICAUTOANNEALING_H

#include <cstdint>

#include "solver/kernel/heuristic.h"
#include "solver/move/annealingstrategy.h"
#include "solver/move/currentobjectivestrategy.h"
#include "solver/move/feasibilitystrategy.h"
#include "solver/move/movefilterstrategy.h"
#include "solver/move/previousobjectivesstrategy.h"
#include "solver/move/restartstrategy.h"

namespace ombrix {

/// The worker as it is used: feasibility first, then the objectives in their order, the last of
/// them under an annealing that scales itself. The constructor wires the strategies in the order in
/// which they are consulted.
class HeuristicAutoAnnealing : public Heuristic {
public:
  HeuristicAutoAnnealing(Dag& workerDag, std::uint32_t* state);

  /// The number of improvements that the annealing remembers; 1 gives pure descent.
  void setAnnealingWindow(std::uint32_t size) { annealingStrategy.setWindowSize(size); }
  /// The percentage of a run below which its last improvement calls for a restart; 0 for none.
  void setRestartingRatio(std::uint32_t ratio) { restartStrategy.restartingRatio = ratio; }
  /// Whether moves that lost all their weight are tried again.
  void setMoveExploration(bool isEnabled) { moveFilterStrategy.explorationEnabled = isEnabled; }

private:
  FeasibilityStrategy feasibilityStrategy;
  PreviousObjectivesStrategy previousObjectivesStrategy;
  CurrentObjectiveStrategy currentObjectiveStrategy;
  RestartStrategy restartStrategy;
  AnnealingStrategy annealingStrategy;
  MoveFilterStrategy moveFilterStrategy;
};

}  // namespace ombrix

#endif
