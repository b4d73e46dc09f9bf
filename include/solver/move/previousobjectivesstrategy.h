#ifndef OMBRIX_SOLVER_MOVE_PREVIOUSOBJECTIVESSTRATEGY_H
#define OMBRIX_SOLVER_MOVE_PREVIOUSOBJECTIVESSTRATEGY_H

#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

/// The objectives before the current one: the first on which a candidate differs settles it.
class PreviousObjectivesStrategy : public HeuristicStrategy {
public:
  using HeuristicStrategy::HeuristicStrategy;

  bool decide(MoveStatus& status, Move& move) override;
};

}  // namespace ombrix

#endif
