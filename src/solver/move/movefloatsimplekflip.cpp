#include "solver/move/movefloatsimplekflip.h"

#include "solver/kernel/random.h"
#include "solver/move/targeting.h"

namespace ombrix {

MoveFloatSimpleKFlip::MoveFloatSimpleKFlip(Dag& workerDag, std::uint32_t& state, std::uint32_t rate)
    : MoveSample(formatMoveName(1, "FloatSimpleFlip"), workerDag, state, 1, 1, rate) {}

bool MoveFloatSimpleKFlip::apply() {
  const DagFixedFields& fields = *dag->fixedFields;
  const std::uint32_t nbDecisions = fields.firstInnerNode;
  if (nbDecisions == 0) return false;
  if (changeTarget()) return true;
  drawSample(nbDecisions, false);
  for (const std::uint32_t index : sample) setRandom(fields.nodesByGroup[index]);
  return true;
}

bool MoveFloatSimpleKFlip::changeTarget() {
  if (targetingRate == 0 || !randomPercent(*rng, targetingRate)) return false;
  std::uint32_t decision = kNone;
  double value = 0.0;
  if (!pickTargetedDouble(*dag, *rng, decision, value)) return false;
  setClamped(decision, value);
  return true;
}

}  // namespace ombrix
