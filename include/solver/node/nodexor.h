#ifndef OMBRIX_SOLVER_NODE_NODEXOR_H
#define OMBRIX_SOLVER_NODE_NODEXOR_H

#include "solver/node/nodewithones.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The parity of boolean operands: 1 exactly when an odd number of them is 1.
template <typename S>
class NodeXorTemplate final : public NodeWithOnes<S> {
public:
  using NodeWithOnes<S>::NodeWithOnes;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t sum = 0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) sum += operands.value(i);
    return sum & 1;
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t nbOnes = oneNodes.size();
    modified.forEach(operands.nbOperands,
                     [&](std::uint32_t i) { nbOnes += operands.tValue(i) != 0 ? 1 : -1; });
    dag.tValues[id].intValue = nbOnes & 1;
  }

  void commit(Dag& dag, std::uint32_t id) override {
    this->updateOneNodes(OperandView(dag, id));
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && pickOperandAnyWay(dag, id, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 1 && pickOperandAnyWay(dag, id, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }

private:
  using NodeWithOnes<S>::modified;
  using NodeWithOnes<S>::oneNodes;
};

}  // namespace ombrix

#endif
