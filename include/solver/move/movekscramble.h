#ifndef OMBRIX_SOLVER_MOVE_MOVEKSCRAMBLE_H
#define OMBRIX_SOLVER_MOVE_MOVEKSCRAMBLE_H

#include "solver/kernel/sparseset.h"
#include "solver/move/moverun.h"

namespace ombrix {

/// Gives a run of at most k rows a random permutation of their contents.
class MoveKScramble : public MoveRun {
public:
  /// Raises code 6 when length is below 2.
  MoveKScramble(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists);

  bool apply() override;

private:
  bool moveContent(std::uint32_t from, std::uint32_t to);

  SparseSet slots;  ///< the places of the run that got no content yet
};

}  // namespace ombrix

#endif
