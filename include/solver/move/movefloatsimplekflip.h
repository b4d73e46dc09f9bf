#ifndef OMBRIX_SOLVER_MOVE_MOVEFLOATSIMPLEKFLIP_H
#define OMBRIX_SOLVER_MOVE_MOVEFLOATSIMPLEKFLIP_H

#include "solver/move/movesample.h"

namespace ombrix {

/// Changes one decision of any kind: a double one to a value that is aimed at or drawn between its
/// bounds, any other one to its opposite.
class MoveFloatSimpleKFlip : public MoveSample {
public:
  MoveFloatSimpleKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t rate);

  bool apply() override;

private:
  bool changeTarget();
};

}  // namespace ombrix

#endif
