#include "solver/move/movekswap.h"

#include "solver/kernel/random.h"

namespace ombrix {

MoveKSwap::MoveKSwap(Dag& workerDag, std::uint32_t& state, std::uint32_t nbPairs,
                     std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists)
    : MoveKFlip("Swap", workerDag, state, nbPairs, moveWeight, rate, lists) {}

bool MoveKSwap::apply() {
  const std::vector<std::uint32_t>& candidates = analysis().swapDecisions;
  if (2 * static_cast<std::uint64_t>(k) > candidates.size()) return false;
  std::uint32_t target = kNone;
  if (!drawTarget(target) || !isCandidate(target)) target = kNone;
  // The sample gives up a place for every mark but node 0, also for the one that says "no target".
  // So without a target k - 1 pairs change. The trajectories of all searches rest on it.
  drawSample(static_cast<std::uint32_t>(candidates.size()), target != 0);
  if (target != kNone) swap(target);
  for (const std::uint32_t index : sample) swap(candidates[index]);
  return true;
}

bool MoveKSwap::isCandidate(std::uint32_t decision) const {
  const DecisionIncidence own = analysis().incidence(decision);
  return own.size() > 0 && own.size() - own.nbFree <= 1;
}

void MoveKSwap::swap(std::uint32_t decision) {
  flip(decision);
  const DecisionIncidence own = analysis().incidence(decision);
  const std::uint32_t entry =
      own.nbConstrained > own.nbFree ? own.nbConstrained - 1 : randomIndex(*rng, own.nbConstrained);
  const std::uint32_t list = own.lists[entry];
  const Node& sum = *dag->nodes[list];
  const std::uint32_t partner = sum.isNotMaxNode(*dag, list, own.positions[entry])
                                    ? sum.randomNotMinNode(*dag, list, *rng)
                                    : sum.randomNotMaxNode(*dag, list, *rng);
  if (partner == kNone) return;
  // In a list with doubles the partner can be one: it has no opposite value.
  const std::uint32_t operand = dag->fixedFields->operand(list, partner);
  if (!isDouble(operand)) flip(operand);
}

}  // namespace ombrix
