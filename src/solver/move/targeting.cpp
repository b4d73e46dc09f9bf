#include "solver/move/targeting.h"

#include "solver/kernel/random.h"

namespace ombrix {

namespace {

std::uint32_t randomViolatedConstraint(const Dag& dag, std::uint32_t& rng) {
  const SparseSet& violated = dag.propagation.violatedConstraints;
  return dag.fixedFields->constraints[violated[randomIndex(rng, violated.size())]];
}

bool isAtOwnBound(const Dag& dag, std::uint32_t objective) {
  const DagFixedFields& fields = *dag.fixedFields;
  const std::uint32_t node = fields.objectives[objective];
  const bool isMaximised = fields.directions[objective] != 0;
  const OXValue value = dag.tValues[node];
  const OXValue bound = isMaximised ? fields.maxValues[node] : fields.minValues[node];
  if (fields.domains[node] == kDoubleDomain) {
    return approxEqual(value.doubleValue, bound.doubleValue) ||
           !(isMaximised ? value.doubleValue < bound.doubleValue
                         : value.doubleValue > bound.doubleValue);
  }
  return !(isMaximised ? value.intValue < bound.intValue : value.intValue > bound.intValue);
}

/// The index of the first evaluated objective that can still improve, or kNone.
std::uint32_t firstOpenObjective(const Dag& dag) {
  for (std::uint32_t i = 0; i < dag.propagation.activeLevel; ++i) {
    if (!isAtOwnBound(dag, i)) return i;
  }
  return kNone;
}

/// One step beyond the committed value of an objective, in the sense in which it improves.
OXValue nextValue(const Dag& dag, std::uint32_t objective) {
  const std::uint32_t node = dag.fixedFields->objectives[objective];
  const int step = dag.fixedFields->directions[objective] != 0 ? 1 : -1;
  const OXValue value = dag.values[node];
  if (dag.fixedFields->domains[node] == kDoubleDomain) {
    return OXValue::ofDouble(value.doubleValue + step);
  }
  return OXValue::ofInt(value.intValue + step);
}

}  // namespace

bool pickTargetedBoolean(const Dag& dag, std::uint32_t& rng, std::uint32_t& decision) {
  const DagFixedFields& fields = *dag.fixedFields;
  bool found = false;
  if (dag.propagation.infeasibility.nbViolated >= 1) {
    const std::uint32_t node = randomViolatedConstraint(dag, rng);
    found = dag.nodes[node]->pickToIncrease(dag, node, rng, decision);
  } else {
    const std::uint32_t objective = firstOpenObjective(dag);
    if (objective == kNone) return false;
    const std::uint32_t node = fields.objectives[objective];
    found = fields.directions[objective] != 0
                ? dag.nodes[node]->pickToIncrease(dag, node, rng, decision)
                : dag.nodes[node]->pickToDecrease(dag, node, rng, decision);
  }
  return found && fields.domains[decision] != kDoubleDomain;
}

bool pickTargetedDouble(const Dag& dag, std::uint32_t& rng, std::uint32_t& decision,
                        double& value) {
  std::uint32_t node = kNone;
  OXValue target = OXValue::ofInt(1);
  if (dag.propagation.infeasibility.nbViolated >= 1) {
    node = randomViolatedConstraint(dag, rng);
  } else {
    const std::uint32_t objective = firstOpenObjective(dag);
    if (objective == kNone) return false;
    node = dag.fixedFields->objectives[objective];
    target = nextValue(dag, objective);
  }
  OXValue decisionValue = OXValue::ofDouble(0.0);
  if (!dag.nodes[node]->pickForTarget(dag, node, rng, target, decision, decisionValue)) {
    return false;
  }
  value = decisionValue.doubleValue;
  return true;
}

}  // namespace ombrix
