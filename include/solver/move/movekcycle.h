#ifndef OMBRIX_SOLVER_MOVE_MOVEKCYCLE_H
#define OMBRIX_SOLVER_MOVE_MOVEKCYCLE_H

#include "solver/move/movechain.h"

namespace ombrix {

/// Flips k decisions along a chain that closes on itself, so that no sum changes.
class MoveKCycle : public MoveChain {
public:
  /// Raises code 6 when length is below 2.
  MoveKCycle(Dag& workerDag, std::uint32_t& state, std::uint32_t length, std::uint32_t moveWeight,
             std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;

private:
  bool cycleStart(ChainLink& link);
  bool constrainedStart(ChainLink& link);
  bool close(const ChainLink& closing, const ChainLink& end);
};

}  // namespace ombrix

#endif
