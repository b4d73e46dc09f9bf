#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

bool HeuristicStrategy::decide(MoveStatus&, Move&) {
  return false;
}

void HeuristicStrategy::afterMove(MoveStatus) {}

void HeuristicStrategy::printStatistics(std::ostream&) const {}

}  // namespace ombrix
