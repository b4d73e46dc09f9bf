#ifndef OMBRIX_SOLVER_NODE_NODEBOOLEANSUM_H
#define OMBRIX_SOLVER_NODE_NODEBOOLEANSUM_H

#include "solver/node/nodewithones.h"
#include "solver/node/picking.h"

namespace ombrix {

/// How many boolean operands are 1. The ones are the operands that can still fall, and the others
/// those that can still rise, so one set serves both views of a sum.
template <typename S>
class NodeBooleanSumTemplate final : public NodeWithOnes<S> {
public:
  using NodeWithOnes<S>::NodeWithOnes;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t sum = 0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) sum += operands.value(i);
    return sum;
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t sum = dag.tValues[id].intValue;
    modified.forEach(operands.nbOperands,
                     [&](std::uint32_t i) { sum += operands.tValue(i) != 0 ? 1 : -1; });
    dag.tValues[id].intValue = sum;
  }

  void commit(Dag& dag, std::uint32_t id) override {
    this->updateOneNodes(OperandView(dag, id));
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickInSet(oneNodes, dag, id, pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickAtPosition(dag, id, randomNotMaxNode(dag, id, rng), pickUp, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }

  std::uint32_t nbNotMaxNodes(const Dag& dag, std::uint32_t id) const override {
    return dag.fixedFields->nbOperands(id) - oneNodes.size();
  }
  std::uint32_t nbNotMinNodes(const Dag&, std::uint32_t) const override { return oneNodes.size(); }
  std::uint32_t notMaxNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const override {
    return oneNodes.at(oneNodes.size() + i, dag.fixedFields->nbOperands(id));
  }
  std::uint32_t notMinNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const override {
    return oneNodes.at(i, dag.fixedFields->nbOperands(id));
  }
  bool isNotMaxNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const override {
    return !oneNodes.contains(position, dag.fixedFields->nbOperands(id));
  }
  bool isNotMinNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const override {
    return oneNodes.contains(position, dag.fixedFields->nbOperands(id));
  }
  std::uint32_t randomNotMaxNode(const Dag& dag, std::uint32_t id,
                                 std::uint32_t& rng) const override {
    return oneNodes.randomNonMember(dag.fixedFields->nbOperands(id), rng);
  }
  std::uint32_t randomNotMinNode(const Dag& dag, std::uint32_t id,
                                 std::uint32_t& rng) const override {
    return oneNodes.randomMember(dag.fixedFields->nbOperands(id), rng);
  }

private:
  using NodeWithOnes<S>::modified;
  using NodeWithOnes<S>::oneNodes;
};

}  // namespace ombrix

#endif
