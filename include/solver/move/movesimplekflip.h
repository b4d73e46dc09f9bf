#ifndef OMBRIX_SOLVER_MOVE_MOVESIMPLEKFLIP_H
#define OMBRIX_SOLVER_MOVE_MOVESIMPLEKFLIP_H

#include "solver/move/movesample.h"

namespace ombrix {

/// Flips k boolean decisions drawn from all of them, whatever sums they break. The move of last
/// resort: it suits every model.
class MoveSimpleKFlip : public MoveSample {
public:
  MoveSimpleKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t nbFlips,
                  std::uint32_t moveWeight, std::uint32_t rate);

  bool apply() override;
};

}  // namespace ombrix

#endif
