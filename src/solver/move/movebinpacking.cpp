#include "solver/move/movebinpacking.h"

namespace ombrix {

MoveBinPacking::MoveBinPacking(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps,
                               std::uint32_t nbFlips, std::uint32_t nbNewViolated,
                               std::uint32_t rate, AutonomousStructure& mirror)
    : MovePlanned("BinPacking", workerDag, state, nbSteps, nbFlips, nbNewViolated, rate, mirror) {}

/// Flips the decision, then others below a node up to as many levels above it as the plan may have
/// flips.
void MoveBinPacking::changeFrom(DynamicConstraintNodeBool& decision) {
  decision.change(*rng, false);
  DynamicConstraintNode* node = &decision;
  for (std::uint32_t level = 0; level < maxPending; ++level) {
    DynamicConstraintNode* const parent = randomParent(*node);
    if (parent == nullptr) break;
    node = parent;
  }
  origin = node->getStatic()->index;
  for (std::uint32_t i = 1; i < maxPending; ++i) node->change(*rng, false);
}

bool MoveBinPacking::tryOwnStep() {
  if (origin == kNone) return false;
  End violated;
  if (!walkDown(randomViolated(), true, violated)) return false;
  // A node that holds offers nothing upward; there the decisions are those it stands on.
  End other;
  if (!walkDown(origin, true, other) && !walkDown(origin, false, other)) return false;
  gatherDecisions(*other.node);
  return changeShared(violated);
}

}  // namespace ombrix
