#include "solver/move/dynamicconstraintnode.h"

#include "solver/kernel/random.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/constraintparents.h"

namespace ombrix {

void DynamicConstraintNode::operandChanged(std::uint32_t position, std::int64_t oldValue,
                                           std::int64_t newValue, bool canIncrease,
                                           bool canDecrease) {
  operandChanged(position, static_cast<double>(oldValue), static_cast<double>(newValue),
                 canIncrease, canDecrease);
}

void DynamicConstraintNode::operandChanged(std::uint32_t, double, double, bool, bool) {}

double DynamicConstraintNode::getDoubleValue() const {
  return static_cast<double>(getValue());
}

const DagFixedFields& DynamicConstraintNode::fields() const {
  return *structure->dag->fixedFields;
}

std::uint32_t DynamicConstraintNode::nbOperands() const {
  return fields().nbOperands(description->node);
}

DynamicConstraintNode* DynamicConstraintNode::operandNode(std::uint32_t position) const {
  return structure->nodeOf(fields().operand(description->node, position));
}

std::int64_t DynamicConstraintNode::operandInt(std::uint32_t position) const {
  const DynamicConstraintNode* operand = operandNode(position);
  if (operand != nullptr) return operand->getValue();
  return structure->dag->values[fields().operand(description->node, position)].intValue;
}

double DynamicConstraintNode::operandDouble(std::uint32_t position) const {
  const DynamicConstraintNode* operand = operandNode(position);
  if (operand != nullptr) return operand->getDoubleValue();
  const std::uint32_t node = fields().operand(description->node, position);
  return doubleValue(fields().domains[node], structure->dag->values[node]);
}

bool DynamicConstraintNode::operandCanMove(std::uint32_t position, bool up) const {
  const DynamicConstraintNode* operand = operandNode(position);
  if (operand == nullptr) return false;
  if (fields().domains[operand->description->node] == kBooleanDomain) {
    return (operand->getValue() == 0) == up;
  }
  return nbOperandWays(position, up) > 0;
}

std::uint32_t DynamicConstraintNode::nbOperandWays(std::uint32_t position, bool up) const {
  const DynamicConstraintNode* operand = operandNode(position);
  if (operand == nullptr) return 0;
  return up ? operand->nbIncreasers() : operand->nbDecreasers();
}

bool DynamicConstraintNode::moveOperand(std::uint32_t position, std::uint32_t& rng, bool up,
                                        bool strict) const {
  DynamicConstraintNode* operand = operandNode(position);
  if (operand == nullptr) return false;
  return up ? operand->increase(rng, strict) : operand->decrease(rng, strict);
}

bool DynamicConstraintNode::changeOperand(std::uint32_t position, std::uint32_t& rng,
                                          bool strict) const {
  DynamicConstraintNode* operand = operandNode(position);
  return operand != nullptr && operand->change(rng, strict);
}

bool DynamicConstraintNode::changeRandomOperand(std::uint32_t& rng, bool strict) const {
  const std::uint32_t n = nbOperands();
  return n > 0 && changeOperand(randomIndex(rng, n), rng, strict);
}

bool DynamicConstraintNode::pickPosition(std::uint32_t position, std::uint32_t& operand) const {
  const std::uint32_t node = fields().operand(description->node, position);
  operand = structure->moveAnalysis->staticByNode[node];
  return operand != kNone;
}

void DynamicConstraintNode::collectFromOperand(std::uint32_t position, bool up,
                                               std::span<const std::uint32_t> filter,
                                               DecisionList& out, std::size_t limit) const {
  const DynamicConstraintNode* operand = operandNode(position);
  if (operand != nullptr) operand->collectIncreasers(up, filter, out, limit);
}

void DynamicConstraintNode::collectFromAllOperands(std::span<const std::uint32_t> filter,
                                                   DecisionList& out, std::size_t limit) const {
  for (std::uint32_t i = 0, n = nbOperands(); i < n && out.size() < limit; ++i) {
    const DynamicConstraintNode* operand = operandNode(i);
    if (operand != nullptr) operand->collectDecreasers(filter, out, limit);
  }
}

template <typename Number>
void DynamicConstraintNode::notifyParents(Number oldValue, Number newValue, bool canIncrease,
                                          bool canDecrease) const {
  if (oldValue == newValue) return;
  const DagFixedFields& fixed = fields();
  if (fixed.isConstraint(description->node)) {
    if (newValue != 0) {
      structure->violatedNodes.remove(description->index);
    } else {
      structure->violatedNodes.add(description->index);
    }
  }
  const ConstraintParents parents = constraintParentsOf(fixed, description->node);
  for (std::size_t i = 0; i < parents.nodes.size(); ++i) {
    DynamicConstraintNode* parent = structure->nodeOf(parents.nodes[i]);
    if (parent == nullptr) continue;
    parent->operandChanged(parents.positions[i], oldValue, newValue, canIncrease, canDecrease);
  }
}

template void DynamicConstraintNode::notifyParents(std::int64_t, std::int64_t, bool, bool) const;
template void DynamicConstraintNode::notifyParents(double, double, bool, bool) const;

}  // namespace ombrix
