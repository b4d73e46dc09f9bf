#ifndef OMBRIX_SOLVER_MOVE_MOVEKLFORKCYCLE_H
#define OMBRIX_SOLVER_MOVE_MOVEKLFORKCYCLE_H

#include "solver/move/movechain.h"

namespace ombrix {

/// A chain whose end forks into l branches, each of which closes on the list where the chain began.
class MoveKLForkCycle : public MoveChain {
public:
  /// Raises code 6 when length is below 2.
  MoveKLForkCycle(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                  std::uint32_t nbBranches, std::uint32_t moveWeight, std::uint32_t rate,
                  BasicMoveStructure& lists);

  bool apply() override;

private:
  std::uint32_t l;  ///< the number of branches
};

}  // namespace ombrix

#endif
