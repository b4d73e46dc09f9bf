#include "solver/move/movekbalance.h"

#include <algorithm>

namespace ombrix {

MoveKBalance::MoveKBalance(Dag& workerDag, std::uint32_t& state, std::uint32_t nbDrawnNodes,
                           std::uint32_t moveWeight)
    : Move(formatMoveName(nbDrawnNodes, "Balance"), workerDag, state, moveWeight), k(nbDrawnNodes) {
  const std::uint32_t nbDrawn = std::min(k, dag->fixedFields->nbInnerNodes);
  sample.reserve(nbDrawn);
  sampler.reserve(nbDrawn);
}

bool MoveKBalance::apply() {
  const DagFixedFields& fields = *dag->fixedFields;
  if (k > fields.nbInnerNodes) return false;
  sampler.sample(*rng, fields.nbInnerNodes, k, sample);
  bool hasChanged = false;
  for (const std::uint32_t index : sample) {
    if (balance(fields.nodesByGroup[fields.firstInnerNode + index])) hasChanged = true;
  }
  return hasChanged;
}

bool MoveKBalance::balance(std::uint32_t node) {
  // Nothing evaluates a node above the active level, so its subsets may be out of date.
  if (dag->fixedFields->levels[node] > dag->propagation.activeLevel) return false;
  const Node& inner = *dag->nodes[node];
  std::uint32_t down = kNone;
  std::uint32_t up = kNone;
  if (!inner.pickToDecrease(*dag, node, *rng, down) || isDouble(down)) return false;
  if (!inner.pickToIncrease(*dag, node, *rng, up) || isDouble(up)) return false;
  if (down == up) return false;
  flip(down);
  flip(up);
  return true;
}

}  // namespace ombrix
