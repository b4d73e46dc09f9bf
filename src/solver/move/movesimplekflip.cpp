#include "solver/move/movesimplekflip.h"

namespace ombrix {

MoveSimpleKFlip::MoveSimpleKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t nbFlips,
                                 std::uint32_t moveWeight, std::uint32_t rate)
    : MoveSample(formatMoveName(nbFlips, "SimpleFlip"), workerDag, state, nbFlips, moveWeight,
                 rate) {}

bool MoveSimpleKFlip::apply() {
  const DagFixedFields& fields = *dag->fixedFields;
  if (k > fields.nbBooleanVars) return false;
  std::uint32_t target = kNone;
  const bool hasTarget = drawTarget(target);
  drawSample(fields.nbBooleanVars, hasTarget);
  if (hasTarget) flip(target);
  for (const std::uint32_t index : sample) flip(fields.nodesByGroup[index]);
  return true;
}

}  // namespace ombrix
