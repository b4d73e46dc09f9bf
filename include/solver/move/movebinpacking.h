#ifndef OMBRIX_SOLVER_MOVE_MOVEBINPACKING_H
#define OMBRIX_SOLVER_MOVE_MOVEBINPACKING_H

#include "solver/move/moveplanned.h"

namespace ombrix {

/// Moves things between constraints that share decisions, as items between bins: after a change at
/// one node it looks for a decision that repairs a violated constraint and stands below that node.
class MoveBinPacking : public MovePlanned {
public:
  /// A plan has at most nbSteps steps behind the first, about nbFlips flips, and less than
  /// nbNewViolated constraints more violated on its way once it is that long.
  MoveBinPacking(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps, std::uint32_t nbFlips,
                 std::uint32_t nbNewViolated, std::uint32_t rate, AutonomousStructure& mirror);

private:
  void changeFrom(DynamicConstraintNodeBool& decision) override;
  bool tryOwnStep() override;
};

}  // namespace ombrix

#endif
