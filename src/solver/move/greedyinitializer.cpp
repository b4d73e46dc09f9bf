#include "solver/move/greedyinitializer.h"

#include "solver/kernel/random.h"
#include "solver/move/constraintparents.h"
#include "solver/move/infeasibilityorder.h"

namespace ombrix {

namespace {

bool isConstantNumber(NodeType type) {
  return type == NodeType::Constant || type == NodeType::DoubleConstant;
}

/// Whether a comparison of this type bounds the operand at a position from above.
bool boundsFromAbove(NodeType comparison, std::uint32_t position) {
  switch (comparison) {
    case NodeType::Eq:
    case NodeType::DoubleEq:
      return true;
    case NodeType::Leq:
    case NodeType::Lt:
    case NodeType::DoubleLeq:
    case NodeType::DoubleLt:
      return position == 0;
    case NodeType::Geq:
    case NodeType::Gt:
    case NodeType::DoubleGeq:
    case NodeType::DoubleGt:
      return position == 1;
    default:
      return false;
  }
}

bool isDoubleComparison(NodeType comparison) {
  return comparison >= NodeType::DoubleEq && comparison <= NodeType::DoubleLt;
}

/// Whether the operand at a position has reached the constant on the other side.
bool hasReached(const Dag& dag, std::uint32_t comparison, std::uint32_t position) {
  const DagFixedFields& fields = *dag.fixedFields;
  const NodeType type = fields.types[comparison];
  const std::uint32_t sum = fields.operand(comparison, position);
  const std::uint32_t constant = fields.operand(comparison, 1 - position);
  if (isDoubleComparison(type)) {
    return approxEqual(doubleValue(fields.domains[sum], dag.values[sum]),
                       doubleValue(fields.domains[constant], dag.values[constant]));
  }
  const std::int64_t value = dag.values[sum].intValue;
  const std::int64_t limit = dag.values[constant].intValue;
  const bool isStrict = type == NodeType::Lt || type == NodeType::Gt;
  return isStrict ? value < limit && limit - 1 == value : value == limit;
}

}  // namespace

GreedyInitializer::GreedyInitializer(const DagFixedFields& fields)
    : fixedFields(&fields), boundedSums(fields.nbNodes) {
  for (const std::uint32_t constraint : fields.constraints) markBoundedSum(constraint);
}

void GreedyInitializer::markBoundedSum(std::uint32_t constraint) {
  const NodeType type = fixedFields->types[constraint];
  for (std::uint32_t position = 0; position < 2; ++position) {
    if (!boundsFromAbove(type, position)) continue;
    const std::uint32_t other = fixedFields->operand(constraint, 1 - position);
    if (!isConstantNumber(fixedFields->types[other])) continue;
    const std::uint32_t sum = fixedFields->operand(constraint, position);
    if (canBeBounded(sum)) boundedSums[sum] = true;
    return;
  }
}

bool GreedyInitializer::canBeBounded(std::uint32_t node) const {
  const NodeType type = fixedFields->types[node];
  if (type == NodeType::BooleanSum) return true;
  const bool isIntScalar = type == NodeType::ScalarSum;
  const bool isDoubleScalar = type == NodeType::DoubleScalarSum;
  if (type != NodeType::Sum && type != NodeType::DoubleSum && !isIntScalar && !isDoubleScalar) {
    return false;
  }
  for (std::uint32_t i = 0; i < fixedFields->nbOperands(node); ++i) {
    const NodeType operandType = fixedFields->types[fixedFields->operand(node, i)];
    if (isConstantNumber(operandType)) continue;
    if (operandType != NodeType::Boolean) return false;
    if (isIntScalar && fixedFields->scalarsOf(node)[i].intValue < 0) return false;
    if (isDoubleScalar && fixedFields->scalarsOf(node)[i].doubleValue < 0.0) return false;
  }
  return true;
}

bool GreedyInitializer::run(Dag& dag, std::uint32_t& rng) const {
  Propagation& propagation = dag.propagation;
  propagation.activateSatisfiedConstraints(dag);
  if (propagation.infeasibility.nbViolated == 0 && !forced) return true;

  SparseSet remaining(fixedFields->nbBooleanVars);
  remaining.setSize(remaining.capacity());
  std::vector<std::uint32_t> touchedConstraints;
  while (remaining.size() > 0 && !propagation.activeConstraints.isFull()) {
    const std::uint32_t index = remaining[randomIndex(rng, remaining.size())];
    remaining.remove(index);
    const std::uint32_t decision = fixedFields->nodesByGroup[index];
    if (dag.tValues[decision].intValue == 1) continue;
    if (!tryToRaise(dag, decision, touchedConstraints)) continue;
    dropFullSums(dag, decision, remaining);
    propagation.activateConstraints(dag, touchedConstraints);
    touchedConstraints.clear();
  }
  const bool isFeasible = propagation.activeConstraints.isFull();
  if (!isFeasible) propagation.activeConstraints.clear();
  return isFeasible;
}

bool GreedyInitializer::tryToRaise(Dag& dag, std::uint32_t decision,
                                   std::vector<std::uint32_t>& touchedConstraints) const {
  Propagation& propagation = dag.propagation;
  propagation.setValue(dag, decision, std::int64_t{1});
  const bool isKept = propagation.evaluateConstraints(dag) && propagation.evaluateLevels(dag, 0) &&
                      isInfeasibilityBetter(propagation.infeasibility, propagation.tInfeasibility);
  if (!isKept) {
    propagation.reject(dag);
    return false;
  }
  propagation.collectTouchedConstraints(dag, touchedConstraints);
  propagation.accept(dag);
  return true;
}

void GreedyInitializer::dropFullSums(const Dag& dag, std::uint32_t decision,
                                     SparseSet& remaining) const {
  for (const std::uint32_t sum : constraintParentsOf(*fixedFields, decision).nodes) {
    if (!boundedSums[sum] || !standsAtBound(dag, sum)) continue;
    for (std::uint32_t i = 0; i < fixedFields->nbOperands(sum); ++i) {
      const std::uint32_t operand = fixedFields->operand(sum, i);
      if (fixedFields->types[operand] == NodeType::Boolean) {
        remaining.remove(fixedFields->posInGroups[operand]);
      }
    }
  }
}

bool GreedyInitializer::standsAtBound(const Dag& dag, std::uint32_t sum) const {
  const ConstraintParents parents = constraintParentsOf(*fixedFields, sum);
  for (std::size_t i = 0; i < parents.nodes.size(); ++i) {
    const std::uint32_t parent = parents.nodes[i];
    const std::uint32_t position = parents.positions[i];
    if (!boundsFromAbove(fixedFields->types[parent], position)) continue;
    const std::uint32_t other = fixedFields->operand(parent, 1 - position);
    if (isConstantNumber(fixedFields->types[other]) && hasReached(dag, parent, position)) {
      return true;
    }
  }
  return false;
}

}  // namespace ombrix
