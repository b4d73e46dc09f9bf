#include "solver/kernel/heuristicautoannealing.h"

namespace ombrix {

HeuristicAutoAnnealing::HeuristicAutoAnnealing(Dag& workerDag, std::uint32_t* state)
    : Heuristic(workerDag, state),
      feasibilityStrategy(*this),
      previousObjectivesStrategy(*this),
      currentObjectiveStrategy(*this),
      restartStrategy(*this),
      annealingStrategy(*this),
      moveFilterStrategy(*this) {
  // The chain, in the order of consultation.
  addStrategy(&moveFilterStrategy);
  addStrategy(&feasibilityStrategy);
  addStrategy(&previousObjectivesStrategy);
  addStrategy(&restartStrategy);
  addStrategy(&currentObjectiveStrategy);
  addStrategy(&annealingStrategy);
}

}  // namespace ombrix
