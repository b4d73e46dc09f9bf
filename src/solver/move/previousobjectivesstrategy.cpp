#include "solver/move/previousobjectivesstrategy.h"

#include "solver/kernel/heuristic.h"

namespace ombrix {

bool PreviousObjectivesStrategy::decide(MoveStatus& status, Move& move) {
  for (std::uint32_t i = 0; i < heuristic.objectiveIndex; ++i) {
    move.evaluate(i + 1);
    if (move.isObjectiveWorse(i)) {
      status = MoveStatus::Rejected;
      return true;
    }
    if (move.isObjectiveBetter(i)) {
      status = MoveStatus::Improved;
      return true;
    }
  }
  return false;
}

}  // namespace ombrix
