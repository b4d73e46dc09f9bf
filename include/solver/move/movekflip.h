#ifndef OMBRIX_SOLVER_MOVE_MOVEKFLIP_H
#define OMBRIX_SOLVER_MOVE_MOVEKFLIP_H

#include <string>

#include "solver/move/basicmovestructure.h"
#include "solver/move/movesample.h"

namespace ombrix {

/// Flips k decisions of those that lie in free lists only, so that no equality between a sum and
/// something else breaks.
class MoveKFlip : public MoveSample {
public:
  /// Raises code 6 when rate is above 100.
  MoveKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t nbFlips, std::uint32_t moveWeight,
            std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;

protected:
  MoveKFlip(const std::string& baseName, Dag& workerDag, std::uint32_t& state,
            std::uint32_t nbFlips, std::uint32_t moveWeight, std::uint32_t rate,
            BasicMoveStructure& lists);

  const ConstraintAnalysis& analysis() const { return *structure->constraintAnalysis; }

  BasicMoveStructure* structure;
};

}  // namespace ombrix

#endif
