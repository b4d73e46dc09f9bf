#include "solver/move/autonomousstructure.h"

namespace ombrix {

AutonomousStructure::AutonomousStructure(Dag& workerDag, const MoveAnalysis& analysis,
                                         std::uint32_t& state)
    : dag(&workerDag), moveAnalysis(&analysis), rng(&state) {
  dag->propagation.addListener(this);
}

AutonomousStructure::~AutonomousStructure() {
  destroyNodes();
  dag->propagation.removeListener(this);
}

void AutonomousStructure::rebuild() {
  destroyNodes();
  const std::vector<StaticConstraintNode*>& staticNodes = moveAnalysis->staticNodes;
  violatedNodes.init(static_cast<std::uint32_t>(staticNodes.size()));
  pendingDecisions.init(static_cast<std::uint32_t>(moveAnalysis->staticByDecision.size()));
  dynamicByDecision.assign(moveAnalysis->staticByDecision.size(), nullptr);
  dynamicNodes.reserve(staticNodes.size());
  // A node reads its operands, which stand before it.
  for (const StaticConstraintNode* node : staticNodes) {
    dynamicNodes.push_back(node->createDynamic(*this));
  }
  for (const StaticConstraintNodeBool* node : moveAnalysis->staticByDecision) {
    if (node == nullptr) continue;
    dynamicByDecision[node->decision] =
        static_cast<DynamicConstraintNodeBool*>(dynamicNodes[node->index]);
  }
  for (const StaticConstraintNode* node : staticNodes) {
    const bool isConstraint = dag->fixedFields->isConstraint(node->node);
    if (isConstraint && dynamicNodes[node->index]->getValue() == 0) violatedNodes.add(node->index);
  }
}

void AutonomousStructure::destroyNodes() {
  for (DynamicConstraintNode* node : dynamicNodes) node->~DynamicConstraintNode();
  dynamicNodes.clear();
  arena.release();
}

void AutonomousStructure::onAccept() {
  if (dynamicNodes.empty()) return;
  const DagFixedFields& fields = *dag->fixedFields;
  for (const std::uint32_t node : dag->propagation.changedDecisions) {
    const std::uint32_t decision = fields.posInGroups[node];
    if (decision >= fields.nbBooleanVars || pendingDecisions.contains(decision)) continue;
    const DynamicConstraintNodeBool* mirrored = dynamicByDecision[decision];
    const std::int64_t oldValue = dag->values[node].intValue;
    const std::int64_t newValue = dag->tValues[node].intValue;
    if (mirrored == nullptr || (oldValue != 0) == (newValue != 0)) continue;
    mirrored->tellCommitted(oldValue, newValue);
  }
  pendingDecisions.clear();
}

void AutonomousStructure::dropPending(std::uint32_t decision) {
  dynamicByDecision[decision]->toggle();
}

void AutonomousStructure::dropAllPending() {
  while (pendingDecisions.size() > 0) dropPending(pendingDecisions[0]);
}

}  // namespace ombrix
