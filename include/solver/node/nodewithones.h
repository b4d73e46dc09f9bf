#ifndef OMBRIX_SOLVER_NODE_NODEWITHONES_H
#define OMBRIX_SOLVER_NODE_NODEWITHONES_H

#include <iostream>

#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"

namespace ombrix {

/// What the nodes share whose value follows from how many boolean operands are 1: the set of the
/// positions whose committed value is 1.
template <typename S>
class NodeWithOnes : public NodeIncremental<NodeInner, S> {
public:
  explicit NodeWithOnes(std::uint32_t nbOperands) : NodeIncremental<NodeInner, S>(nbOperands) {
    oneNodes.init(nbOperands);
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeInner::isConsistent(dag, id) && areOneNodesInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    Node::dump(dag, id);
    std::cout << "isOneNodesInit= " << areOneNodesInit(dag, id) << "\noneNodes=";
    oneNodes.print(std::cout, dag.fixedFields->nbOperands(id));
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeInner::init(dag, id);
    modified.clear();
    const OperandView operands(dag, id);
    oneNodes.fill(operands.nbOperands, [&](std::uint32_t i) { return operands.value(i) == 1; });
  }

protected:
  using NodeIncremental<NodeInner, S>::modified;

  /// Makes the set follow the operands that changed.
  void updateOneNodes(const OperandView& operands) {
    const std::uint32_t n = operands.nbOperands;
    modified.forEach(n, [&](std::uint32_t i) {
      if (operands.tValue(i) != 0) {
        oneNodes.add(i, n);
      } else {
        oneNodes.remove(i, n);
      }
    });
  }

  S oneNodes;

private:
  bool areOneNodesInit(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    return oneNodes.agrees(operands.nbOperands,
                           [&](std::uint32_t i) { return operands.value(i) == 1; });
  }
};

}  // namespace ombrix

#endif
