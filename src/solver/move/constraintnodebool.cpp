#include "solver/move/constraintnodebool.h"

#include <algorithm>
#include <iostream>

#include "solver/move/autonomousstructure.h"

namespace ombrix {

DynamicConstraintNode* StaticConstraintNodeBool::createDynamic(
    AutonomousStructure& structure) const {
  return structure.create<DynamicConstraintNodeBool>(*this);
}

void StaticConstraintNodeBool::print(const MoveAnalysis&) const {
  std::cout << "bool{" << index << '}';
}

void DynamicConstraintNodeBool::toggle() {
  const std::int64_t oldValue = getValue();
  SparseSet& pending = structure->pendingDecisions;
  if (pending.contains(decision())) {
    pending.remove(decision());
  } else {
    pending.add(decision());
  }
  tellCommitted(oldValue, 1 - oldValue);
}

void DynamicConstraintNodeBool::tellCommitted(std::int64_t oldValue, std::int64_t newValue) const {
  notifyParents(oldValue, newValue, newValue == 0, newValue != 0);
}

std::int64_t DynamicConstraintNodeBool::getValue() const {
  const bool isSet = structure->dag->values[description->node].intValue != 0;
  return isSet != structure->pendingDecisions.contains(decision()) ? 1 : 0;
}

bool DynamicConstraintNodeBool::change(std::uint32_t&, bool) {
  if (structure->pendingDecisions.contains(decision())) return false;
  toggle();
  return true;
}

bool DynamicConstraintNodeBool::increase(std::uint32_t& rng, bool strict) {
  return getValue() == 0 && change(rng, strict);
}

bool DynamicConstraintNodeBool::decrease(std::uint32_t& rng, bool strict) {
  return getValue() == 1 && change(rng, strict);
}

void DynamicConstraintNodeBool::collectIncreasers(bool up, std::span<const std::uint32_t> filter,
                                                  DecisionList& out, std::size_t limit) const {
  if ((getValue() == 0) == up) collectDecreasers(filter, out, limit);
}

void DynamicConstraintNodeBool::collectDecreasers(std::span<const std::uint32_t> filter,
                                                  DecisionList& out, std::size_t limit) const {
  if (out.size() >= limit) return;
  if (std::binary_search(filter.begin(), filter.end(), decision())) out.push_back(decision());
}

}  // namespace ombrix
