#ifndef OMBRIX_SOLVER_MOVE_MOVEEJECTIONCHAIN_H
#define OMBRIX_SOLVER_MOVE_MOVEEJECTIONCHAIN_H

#include "solver/move/moveplanned.h"

namespace ombrix {

/// Passes a violation on until it closes: when two constraints are violated, it looks for one
/// decision that repairs both.
class MoveEjectionChain : public MovePlanned {
public:
  /// A plan has at most nbSteps steps behind the first, about nbFlips flips, and less than
  /// nbNewViolated constraints more violated on its way once it is that long.
  MoveEjectionChain(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps,
                    std::uint32_t nbFlips, std::uint32_t nbNewViolated, std::uint32_t rate,
                    AutonomousStructure& mirror);

private:
  void changeFrom(DynamicConstraintNodeBool& decision) override;
  bool tryOwnStep() override;
};

}  // namespace ombrix

#endif
