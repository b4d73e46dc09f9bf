#ifndef OMBRIX_SOLVER_MOVE_CURRENTOBJECTIVESTRATEGY_H
#define OMBRIX_SOLVER_MOVE_CURRENTOBJECTIVESTRATEGY_H

#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

/// Keeps a candidate that is no worse on the current objective, so the search walks plateaus at no
/// cost; passes a worse one on.
class CurrentObjectiveStrategy : public HeuristicStrategy {
public:
  using HeuristicStrategy::HeuristicStrategy;

  bool decide(MoveStatus& status, Move& move) override;
};

}  // namespace ombrix

#endif
