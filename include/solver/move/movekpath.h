#ifndef OMBRIX_SOLVER_MOVE_MOVEKPATH_H
#define OMBRIX_SOLVER_MOVE_MOVEKPATH_H

#include "solver/move/movechain.h"

namespace ombrix {

/// Flips k decisions along a chain that begins in a free list. The sums of the lists between its
/// two ends hold.
class MoveKPath : public MoveChain {
public:
  /// Raises code 6 when length is below 2.
  MoveKPath(Dag& workerDag, std::uint32_t& state, std::uint32_t length, std::uint32_t moveWeight,
            std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;
};

}  // namespace ombrix

#endif
