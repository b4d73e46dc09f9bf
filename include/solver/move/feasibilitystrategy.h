#ifndef OMBRIX_SOLVER_MOVE_FEASIBILITYSTRATEGY_H
#define OMBRIX_SOLVER_MOVE_FEASIBILITYSTRATEGY_H

#include "solver/kernel/heuristicstrategy.h"

namespace ombrix {

/// Constraints come before every objective. While the solution is infeasible this strategy settles
/// every candidate; once it is feasible it refuses whatever breaks a constraint. Until then no move
/// pays for evaluating an objective.
class FeasibilityStrategy : public HeuristicStrategy {
public:
  using HeuristicStrategy::HeuristicStrategy;

  bool decide(MoveStatus& status, Move& move) override;
  /// At the moment the solution becomes feasible: activates all constraints and starts the
  /// evaluation of the objectives.
  void afterMove(MoveStatus status) override;
};

}  // namespace ombrix

#endif
