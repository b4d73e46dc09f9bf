#include "solver/move/currentobjectivestrategy.h"

#include "solver/kernel/heuristic.h"

namespace ombrix {

bool CurrentObjectiveStrategy::decide(MoveStatus& status, Move& move) {
  const std::uint32_t objective = heuristic.objectiveIndex;
  move.evaluate(objective + 1);
  if (move.isObjectiveWorse(objective)) return false;
  status = move.isObjectiveBetter(objective) ? MoveStatus::Improved : MoveStatus::Accepted;
  return true;
}

}  // namespace ombrix
