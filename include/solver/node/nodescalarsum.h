#ifndef OMBRIX_SOLVER_NODE_NODESCALARSUM_H
#define OMBRIX_SOLVER_NODE_NODESCALARSUM_H

#include <iostream>

#include "solver/kernel/saturating.h"
#include "solver/node/intselectors.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The sum of integer terms, each an operand times its coefficient, modulo 2^64. A change of k
/// operands costs O(k). Keeps the positions whose term can still fall and those whose term can
/// still rise, judged by the bounds of the operands; a coefficient of 0 puts its position in
/// neither. Picks and the structures over constraints draw from these sets.
template <typename S, typename Selector>
class NodeScalarSumTemplate final : public NodeIncremental<NodeInner, S> {
public:
  explicit NodeScalarSumTemplate(std::uint32_t nbOperands)
      : NodeIncremental<NodeInner, S>(nbOperands) {
    notMinNodes.init(nbOperands);
    notMaxNodes.init(nbOperands);
  }

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    std::int64_t sum = 0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      sum = wrappingAdd(sum, wrappingMul(operands.value(i), coefficients[i]));
    return sum;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeInner::isConsistent(dag, id) && areNotMinNodesInit(dag, id) &&
           areNotMaxNodesInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    const std::uint32_t n = dag.fixedFields->nbOperands(id);
    Node::dump(dag, id);
    std::cout << "isNotMinNodesInit=" << areNotMinNodesInit(dag, id)
              << "\nisNotMaxNodesInit=" << areNotMaxNodesInit(dag, id) << "\nnotMinNodes=";
    notMinNodes.print(std::cout, n);
    std::cout << "notMaxNodes=";
    notMaxNodes.print(std::cout, n);
    printCoefficients<Selector>(std::cout, dag, id);
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeInner::init(dag, id);
    modified.clear();
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    notMinNodes.fill(operands.nbOperands,
                     [&](std::uint32_t i) { return canFall(operands, i, coefficients[i]); });
    notMaxNodes.fill(operands.nbOperands,
                     [&](std::uint32_t i) { return canRise(operands, i, coefficients[i]); });
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    std::int64_t delta = 0;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      const std::int64_t change = wrappingSub(operands.tValue(i), operands.value(i));
      delta = wrappingAdd(delta, wrappingMul(change, coefficients[i]));
    });
    dag.tValues[id].intValue = wrappingAdd(dag.values[id].intValue, delta);
  }

  void commit(Dag& dag, std::uint32_t id) override {
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    const std::uint32_t n = operands.nbOperands;
    modified.forEach(n, [&](std::uint32_t i) {
      const std::int64_t value = operands.tValue(i);
      const bool isNotMin = value > operands.min(i);
      const bool isNotMax = value < operands.max(i);
      if (coefficients[i] > 0) {
        put(notMinNodes, i, n, isNotMin);
        put(notMaxNodes, i, n, isNotMax);
      } else if (coefficients[i] < 0) {
        put(notMaxNodes, i, n, isNotMin);
        put(notMinNodes, i, n, isNotMax);
      }
    });
    this->settle(dag, id);
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (dag.values[id].intValue <= dag.fixedFields->minValues[id].intValue) return false;
    const std::uint32_t position = randomNotMinNode(dag, id, rng);
    if (position == kNone) return false;
    const bool isReversed = Selector(dag, id)[position] < 0;
    return pickAtPosition(dag, id, position, isReversed ? pickUp : pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (dag.values[id].intValue >= dag.fixedFields->maxValues[id].intValue) return false;
    const std::uint32_t position = randomNotMaxNode(dag, id, rng);
    if (position == kNone) return false;
    const bool isReversed = Selector(dag, id)[position] < 0;
    return pickAtPosition(dag, id, position, isReversed ? pickDown : pickUp, rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }

  std::uint32_t nbNotMaxNodes(const Dag&, std::uint32_t) const override {
    return notMaxNodes.size();
  }
  std::uint32_t nbNotMinNodes(const Dag&, std::uint32_t) const override {
    return notMinNodes.size();
  }
  std::uint32_t notMaxNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const override {
    return notMaxNodes.at(i, dag.fixedFields->nbOperands(id));
  }
  std::uint32_t notMinNodeAt(const Dag& dag, std::uint32_t id, std::uint32_t i) const override {
    return notMinNodes.at(i, dag.fixedFields->nbOperands(id));
  }
  bool isNotMaxNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const override {
    return notMaxNodes.contains(position, dag.fixedFields->nbOperands(id));
  }
  bool isNotMinNode(const Dag& dag, std::uint32_t id, std::uint32_t position) const override {
    return notMinNodes.contains(position, dag.fixedFields->nbOperands(id));
  }
  std::uint32_t randomNotMaxNode(const Dag& dag, std::uint32_t id,
                                 std::uint32_t& rng) const override {
    return notMaxNodes.randomMember(dag.fixedFields->nbOperands(id), rng);
  }
  std::uint32_t randomNotMinNode(const Dag& dag, std::uint32_t id,
                                 std::uint32_t& rng) const override {
    return notMinNodes.randomMember(dag.fixedFields->nbOperands(id), rng);
  }

private:
  using NodeIncremental<NodeInner, S>::modified;

  static void put(S& set, std::uint32_t i, std::uint32_t n, bool isMember) {
    if (isMember) {
      set.add(i, n);
    } else {
      set.remove(i, n);
    }
  }

  static bool canFall(const BoundedOperandView& operands, std::uint32_t i,
                      std::int64_t coefficient) {
    if (coefficient > 0) return operands.value(i) > operands.min(i);
    return coefficient < 0 && operands.value(i) < operands.max(i);
  }

  static bool canRise(const BoundedOperandView& operands, std::uint32_t i,
                      std::int64_t coefficient) {
    if (coefficient > 0) return operands.value(i) < operands.max(i);
    return coefficient < 0 && operands.value(i) > operands.min(i);
  }

  bool areNotMinNodesInit(const Dag& dag, std::uint32_t id) const {
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    return notMinNodes.agrees(operands.nbOperands, [&](std::uint32_t i) {
      return canFall(operands, i, coefficients[i]);
    });
  }

  bool areNotMaxNodesInit(const Dag& dag, std::uint32_t id) const {
    const BoundedOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    return notMaxNodes.agrees(operands.nbOperands, [&](std::uint32_t i) {
      return canRise(operands, i, coefficients[i]);
    });
  }

  S notMinNodes;
  S notMaxNodes;
};

}  // namespace ombrix

#endif
