#ifndef OMBRIX_SOLVER_MOVE_MOVEKBALANCE_H
#define OMBRIX_SOLVER_MOVE_MOVEKBALANCE_H

#include <vector>

#include "solver/kernel/cacheline.h"
#include "solver/move/distinctsampler.h"
#include "solver/move/move.h"

namespace ombrix {

/// Shifts value between two decisions below a common inner node, for k inner nodes: one decision
/// that should lower the node and one that should raise it are flipped together.
class MoveKBalance : public Move {
public:
  MoveKBalance(Dag& workerDag, std::uint32_t& state, std::uint32_t nbDrawnNodes,
               std::uint32_t moveWeight);

  bool apply() override;

private:
  bool balance(std::uint32_t node);

  std::uint32_t k;
  CacheLineVector<std::uint32_t> sample;
  DistinctSampler sampler;
};

}  // namespace ombrix

#endif
