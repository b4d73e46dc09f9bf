#ifndef OMBRIX_SOLVER_MOVE_BASICMOVESTRUCTURE_H
#define OMBRIX_SOLVER_MOVE_BASICMOVESTRUCTURE_H

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/kernel/daglistener.h"
#include "solver/move/constraintanalysis.h"

namespace ombrix {

/// One worker's view of the lists of its model: the shared analysis beside the worker's own Dag and
/// random state. The analysis never changes, so there is nothing to do on an accepted move.
class BasicMoveStructure : public DagListener {
public:
  /// Registers with the Dag; all arguments outlive the structure.
  BasicMoveStructure(Dag& workerDag, const ConstraintAnalysis& analysis, std::uint32_t& state);
  ~BasicMoveStructure() override;
  BasicMoveStructure(const BasicMoveStructure&) = delete;
  BasicMoveStructure& operator=(const BasicMoveStructure&) = delete;

  void onAccept() override {}

  Dag* dag;
  const ConstraintAnalysis* constraintAnalysis;
  std::uint32_t* rng;
};

}  // namespace ombrix

#endif
