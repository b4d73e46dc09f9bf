#include "solver/kernel/solution.h"

#include "common/failure.h"

namespace ombrix {

namespace {

/// Of this infeasibility against another: 1 when better, -1 when worse. Violated equalities
/// dominate; only without any on both sides do the count and then the sum of all violations speak.
int compareInfeasibility(const Infeasibility& a, const Infeasibility& b) {
  if (a.nbViolated == 0 && b.nbViolated == 0) return 0;
  if (a.nbViolatedEqualities != b.nbViolatedEqualities) {
    return a.nbViolatedEqualities < b.nbViolatedEqualities ? 1 : -1;
  }
  if (a.nbViolatedEqualities >= 1) return 0;
  if (a.nbViolated != b.nbViolated) return a.nbViolated < b.nbViolated ? 1 : -1;
  if (a.violationSum != b.violationSum) return a.violationSum < b.violationSum ? 1 : -1;
  return 0;
}

/// The sign of a - b, within the tolerance for doubles.
int compareValues(std::uint8_t domain, OXValue a, OXValue b) {
  if (domain != kDoubleDomain) return a.intValue < b.intValue ? -1 : a.intValue > b.intValue;
  if (approxEqual(a.doubleValue, b.doubleValue)) return 0;
  return a.doubleValue < b.doubleValue ? -1 : a.doubleValue > b.doubleValue;
}

}  // namespace

Solution::Solution(Dag& source) : dag(&source) {
  const DagFixedFields& fields = *dag->fixedFields;
  objectiveValues.resize(fields.nbObjectives(), OXValue::ofInt(0));
  decisionValues.resize(fields.firstInnerNode, OXValue::ofInt(0));
  changedDecisions.init(fields.firstInnerNode);
  activeConstraints.init(static_cast<std::uint32_t>(fields.constraints.size()));
  dag->propagation.addListener(this);
  changedDecisions.setSize(changedDecisions.capacity());
  save();
}

Solution::~Solution() {
  dag->propagation.removeListener(this);
}

void Solution::onAccept() {
  const DagFixedFields& fields = *dag->fixedFields;
  for (std::uint32_t decision : dag->propagation.changedDecisions) {
    const std::uint32_t i = fields.posInGroups[decision];
    const OXValue value = dag->tValues[decision];
    const bool isSaved = fields.types[decision] == NodeType::Float
                             ? approxEqual(value.doubleValue, decisionValues[i].doubleValue)
                             : value.intValue == decisionValues[i].intValue;
    if (isSaved) {
      changedDecisions.remove(i);
    } else {
      changedDecisions.add(i);
    }
  }
}

void Solution::save() {
  Propagation& propagation = dag->propagation;
  const DagFixedFields& fields = *dag->fixedFields;
  // No stale node is to be saved, and all objective values must be true.
  propagation.synchronize(*dag);
  nbViolated = propagation.infeasibility.nbViolated;
  nbViolatedEqualities = propagation.infeasibility.nbViolatedEqualities;
  violationSum = propagation.infeasibility.violationSum;
  for (std::uint32_t i = 0; i < fields.nbObjectives(); ++i) {
    objectiveValues[i] = dag->values[fields.objectives[i]];
  }
  for (std::uint32_t k = 0; k < changedDecisions.size(); ++k) {
    const std::uint32_t i = changedDecisions[k];
    decisionValues[i] = dag->values[fields.nodesByGroup[i]];
  }
  saveActiveConstraints(propagation.activeConstraints);
  changedDecisions.clear();
}

// Costs the smaller of the active and the inactive constraints.
void Solution::saveActiveConstraints(const SparseSet& active) {
  const std::uint32_t nbInactive = active.capacity() - active.size();
  if (active.size() <= nbInactive) {
    activeConstraints.clear();
    for (std::uint32_t i = 0; i < active.size(); ++i) activeConstraints.add(active[i]);
  } else {
    activeConstraints.setSize(activeConstraints.capacity());
    for (std::uint32_t i = active.size(); i < active.capacity(); ++i) {
      activeConstraints.remove(active[i]);
    }
  }
}

void Solution::restore(Dag& target) const {
  Propagation& propagation = target.propagation;
  // Without an active constraint the evaluation cannot break.
  propagation.activeConstraints.clear();
  writeDecisions(target);
  if (!propagation.evaluateConstraints(target) ||
      !propagation.evaluateLevels(target, propagation.activeLevel)) {
    fail(kInternal, OMBRIX_HERE("Solution::restore"),
         "Cannot restore the solution : evaluation failed");
  }
  propagation.accept(target);
  propagation.synchronize(target);
  if (activeConstraints.isFull()) {
    propagation.activateAllConstraints();
    return;
  }
  for (std::uint32_t k = 0; k < activeConstraints.size(); ++k) {
    propagation.activateConstraint(target, target.fixedFields->constraints[activeConstraints[k]]);
  }
}

void Solution::writeDecisions(Dag& target) const {
  const DagFixedFields& fields = *target.fixedFields;
  for (std::uint32_t i = 0; i < decisionValues.size(); ++i) {
    const std::uint32_t decision = fields.nodesByGroup[i];
    if (fields.types[decision] == NodeType::Float) {
      target.propagation.setValue(target, decision, decisionValues[i].doubleValue);
    } else {
      target.propagation.setValue(target, decision, decisionValues[i].intValue);
    }
  }
}

int Solution::compareTo(const Solution& other, int level) const {
  return compareTo(other.getInfeasibility(), other.objectiveValues, level);
}

int Solution::compareTo(const Infeasibility& infeasibility, std::span<const OXValue> objectives,
                        int level) const {
  const int result = compareInfeasibility(getInfeasibility(), infeasibility);
  if (result != 0) return result;
  for (int i = 0; i <= level; ++i) {
    const auto objective = static_cast<std::uint32_t>(i);
    const int comparison = compareObjective(objective, objectives[objective]);
    if (comparison != 0) return comparison;
  }
  return 0;
}

int Solution::compareTo(const Dag& other, int level) const {
  const int result = compareInfeasibility(getInfeasibility(), other.propagation.infeasibility);
  if (result != 0) return result;
  for (int i = 0; i <= level; ++i) {
    const auto objective = static_cast<std::uint32_t>(i);
    const std::uint32_t node = other.fixedFields->objectives[objective];
    const int comparison = compareObjective(objective, other.values[node]);
    if (comparison != 0) return comparison;
  }
  return 0;
}

int Solution::compareObjective(std::uint32_t i, OXValue other) const {
  const DagFixedFields& fields = *dag->fixedFields;
  const int comparison =
      compareValues(fields.domains[fields.objectives[i]], objectiveValues[i], other);
  switch (fields.directions[i]) {
    case kMinimise:
      return -comparison;
    case kMaximise:
      return comparison;
    default:
      return 0;
  }
}

}  // namespace ombrix
