#ifndef OMBRIX_SOLVER_NODE_NODEOR_H
#define OMBRIX_SOLVER_NODE_NODEOR_H

#include "solver/node/nodewithones.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The disjunction of boolean operands: 1 exactly when some operand is 1. The mirror of the
/// conjunction, at the same cost: a false disjunction rises with any change, and a true one can
/// fall only when as many operands changed as are 1.
template <typename S>
class NodeOrTemplate final : public NodeWithOnes<S> {
public:
  using NodeWithOnes<S>::NodeWithOnes;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) {
      if (operands.value(i) == 1) return 1;
    }
    return 0;
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    dag.tValues[id].intValue = canFall(dag, id) && hasFallen(dag, id) ? 0 : 1;
  }

  void commit(Dag& dag, std::uint32_t id) override {
    const OperandView operands(dag, id);
    const std::uint32_t n = operands.nbOperands;
    const std::int64_t value = dag.tValues[id].intValue;
    if (dag.values[id].intValue == value) {
      this->updateOneNodes(operands);
    } else if (value != 0) {
      modified.forEach(n, [&](std::uint32_t i) { oneNodes.add(i, n); });
    } else {
      oneNodes.clear();
    }
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && pickInSet(oneNodes, dag, id, pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 1 && pickOperandToIncrease(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    if (dag.values[id].intValue != 1) return pickOperandToIncrease(dag, id, rng, decision);
    return pickInSet(oneNodes, dag, id, pickDown, rng, decision);
  }

private:
  using NodeWithOnes<S>::modified;
  using NodeWithOnes<S>::oneNodes;

  bool canFall(const Dag& dag, std::uint32_t id) const {
    return dag.values[id].intValue != 0 && modified.size() == oneNodes.size();
  }

  bool hasFallen(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    return !modified.any(operands.nbOperands,
                         [&](std::uint32_t i) { return operands.tValue(i) == 1; });
  }
};

}  // namespace ombrix

#endif
