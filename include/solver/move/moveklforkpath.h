#ifndef OMBRIX_SOLVER_MOVE_MOVEKLFORKPATH_H
#define OMBRIX_SOLVER_MOVE_MOVEKLFORKPATH_H

#include "solver/move/movechain.h"

namespace ombrix {

/// A path whose end forks: from the last list of the chain, l branches of two flips each go on.
class MoveKLForkPath : public MoveChain {
public:
  /// Raises code 6 when length is below 2.
  MoveKLForkPath(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                 std::uint32_t nbBranches, std::uint32_t moveWeight, std::uint32_t rate,
                 BasicMoveStructure& lists);

  bool apply() override;

private:
  bool branchOff(const ChainLink& end);

  std::uint32_t l;  ///< the number of branches
};

}  // namespace ombrix

#endif
