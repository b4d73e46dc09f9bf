#include "solver/move/feasibilitystrategy.h"

#include "solver/kernel/heuristic.h"

namespace ombrix {

bool FeasibilityStrategy::decide(MoveStatus& status, Move& move) {
  if (!move.evaluate(0)) {
    status = MoveStatus::Infeasible;
    return true;
  }
  if (move.isInfeasibilityBetter()) {
    status = MoveStatus::Improved;
    return true;
  }
  const bool isWorse = move.isInfeasibilityWorse();
  if (heuristic.dag->propagation.infeasibility.nbViolated > 0) {
    status = isWorse ? MoveStatus::Rejected : MoveStatus::Accepted;
    return true;
  }
  if (isWorse) status = MoveStatus::Infeasible;
  return isWorse;
}

void FeasibilityStrategy::afterMove(MoveStatus) {
  Dag& dag = *heuristic.dag;
  Propagation& propagation = dag.propagation;
  if (propagation.infeasibility.nbViolated > 0 || propagation.activeConstraints.isFull()) return;
  const std::uint32_t level = heuristic.objectiveIndex + 1;
  if (level > propagation.activeLevel) propagation.synchronize(dag);
  propagation.activeLevel = level;
  propagation.activateAllConstraints();
}

}  // namespace ombrix
