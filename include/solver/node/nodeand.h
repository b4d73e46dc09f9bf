#ifndef OMBRIX_SOLVER_NODE_NODEAND_H
#define OMBRIX_SOLVER_NODE_NODEAND_H

#include <iostream>

#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The conjunction of boolean operands. Keeps the positions whose committed value is 0: the value
/// is 1 exactly when there is none. A changed operand that was 1 has fallen, so a true conjunction
/// falls with any change, and a false one can rise only when as many operands changed as are 0.
/// Therefore eval costs O(1) unless the value may really rise, and never reads an operand that did
/// not change.
template <typename S>
class NodeAndTemplate final : public NodeIncremental<NodeInner, S> {
public:
  explicit NodeAndTemplate(std::uint32_t nbOperands) : NodeIncremental<NodeInner, S>(nbOperands) {
    zeroNodes.init(nbOperands);
  }

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) {
      if (operands.value(i) == 0) return 0;
    }
    return 1;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeInner::isConsistent(dag, id) && areZeroNodesInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    Node::dump(dag, id);
    std::cout << "isZeroNodesInit= " << areZeroNodesInit(dag, id) << "\nzeroNodes=";
    zeroNodes.print(std::cout, dag.fixedFields->nbOperands(id));
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeInner::init(dag, id);
    modified.clear();
    const OperandView operands(dag, id);
    zeroNodes.fill(operands.nbOperands, [&](std::uint32_t i) { return operands.value(i) == 0; });
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    dag.tValues[id].intValue = canRise(dag, id) && hasRisen(dag, id) ? 1 : 0;
  }

  void commit(Dag& dag, std::uint32_t id) override {
    const OperandView operands(dag, id);
    const std::uint32_t n = operands.nbOperands;
    const std::int64_t value = dag.tValues[id].intValue;
    if (dag.values[id].intValue == value) {
      modified.forEach(n, [&](std::uint32_t i) { updateZeroNodes(i, n, operands.tValue(i)); });
    } else if (value != 1) {
      modified.forEach(n, [&](std::uint32_t i) { zeroNodes.add(i, n); });
    } else {
      zeroNodes.clear();
    }
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && pickOperandToIncrease(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 1 && pickInSet(zeroNodes, dag, id, pickUp, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    if (dag.values[id].intValue == 1) return pickOperandAnyWay(dag, id, rng, decision);
    return pickInSet(zeroNodes, dag, id, pickUp, rng, decision);
  }

private:
  using NodeIncremental<NodeInner, S>::modified;

  bool canRise(const Dag& dag, std::uint32_t id) const {
    return dag.values[id].intValue != 1 && modified.size() == zeroNodes.size();
  }

  bool hasRisen(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    return !modified.any(operands.nbOperands,
                         [&](std::uint32_t i) { return operands.tValue(i) == 0; });
  }

  void updateZeroNodes(std::uint32_t i, std::uint32_t n, std::int64_t tValue) {
    if (tValue == 1) {
      zeroNodes.remove(i, n);
    } else {
      zeroNodes.add(i, n);
    }
  }

  bool areZeroNodesInit(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    return zeroNodes.agrees(operands.nbOperands,
                            [&](std::uint32_t i) { return operands.value(i) == 0; });
  }

  S zeroNodes;
};

}  // namespace ombrix

#endif
