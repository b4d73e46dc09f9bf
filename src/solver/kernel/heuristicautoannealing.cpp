#include "solver/kernel/heuristicautoannealing.h"

namespace ombrix {

HeuristicAutoAnnealing::HeuristicAutoAnnealing(Dag& workerDag, std::uint32_t* state)
    : Heuristic(workerDag, state),
      feasibilityStrategy(*this),
      previousObjectivesStrategy(*this),
      currentObjectiveStrategy(*this),
      annealingStrategy(*this) {
  // The chain, in the order of consultation.
  addStrategy(&feasibilityStrategy);
  addStrategy(&previousObjectivesStrategy);
  addStrategy(&currentObjectiveStrategy);
  addStrategy(&annealingStrategy);
}

}  // namespace ombrix
