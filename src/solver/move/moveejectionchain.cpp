#include "solver/move/moveejectionchain.h"

#include <algorithm>
#include <utility>

#include "solver/kernel/random.h"

namespace ombrix {

MoveEjectionChain::MoveEjectionChain(Dag& workerDag, std::uint32_t& state, std::uint32_t nbSteps,
                                     std::uint32_t nbFlips, std::uint32_t nbNewViolated,
                                     std::uint32_t rate, AutonomousStructure& mirror)
    : MovePlanned("EjectionChain", workerDag, state, nbSteps, nbFlips, nbNewViolated, rate,
                  mirror) {}

/// Flips the decision, then siblings of it.
void MoveEjectionChain::changeFrom(DynamicConstraintNodeBool& decision) {
  decision.change(*rng, false);
  for (std::uint32_t i = 1; i < maxPending; ++i) {
    DynamicConstraintNode* const parent = randomParent(decision);
    if (parent == nullptr) return;
    parent->change(*rng, false);
  }
}

bool MoveEjectionChain::tryOwnStep() {
  const SparseSet& violated = structure->violatedNodes;
  const std::uint32_t nbViolated = violated.size();
  if (nbViolated < 2) return false;
  const std::uint32_t first = randomIndex(*rng, nbViolated);
  const std::uint32_t second = (first + 1 + randomIndex(*rng, nbViolated - 1)) % nbViolated;
  End one;
  End other;
  if (!walkDown(violated[first], true, one) || !walkDown(violated[second], true, other)) {
    return false;
  }
  gatherDecisions(*other.node);
  shared.clear();
  structure->dynamicNodes[other.node->index]->collectIncreasers(other.up, filter, shared,
                                                                filter.size());
  std::sort(shared.begin(), shared.end());
  std::swap(filter, shared);
  return changeShared(one);
}

}  // namespace ombrix
