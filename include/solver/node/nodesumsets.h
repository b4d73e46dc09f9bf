#ifndef OMBRIX_SOLVER_NODE_NODESUMSETS_H
#define OMBRIX_SOLVER_NODE_NODESUMSETS_H

#include <iostream>
#include <type_traits>

#include "solver/node/arithmetic.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/picking.h"
#include "solver/node/selectors.h"

namespace ombrix {

/// What integer and double sums of terms share: the positions whose term can still fall and those
/// whose term can still rise, judged by the bounds of the operands in plain comparison. With a
/// negative coefficient the two exchange roles, and a coefficient of 0 puts its position in
/// neither. Picks and the structures over constraints draw from these sets; they follow at commit,
/// in O(k) for k changed operands.
template <typename Arithmetic, typename S, typename Selector>
class NodeSumSets : public NodeIncremental<typename Arithmetic::Inner, S> {
public:
  explicit NodeSumSets(std::uint32_t nbOperands)
      : NodeIncremental<typename Arithmetic::Inner, S>(nbOperands) {
    notMinNodes.init(nbOperands);
    notMaxNodes.init(nbOperands);
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return Inner::isConsistent(dag, id) && areNotMinNodesInit(dag, id) &&
           areNotMaxNodesInit(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    const std::uint32_t n = dag.fixedFields->nbOperands(id);
    Inner::dump(dag, id);
    std::cout << "isNotMinNodesInit=" << areNotMinNodesInit(dag, id)
              << "\nisNotMaxNodesInit=" << areNotMaxNodesInit(dag, id) << "\nnotMinNodes=";
    notMinNodes.print(std::cout, n);
    std::cout << "notMaxNodes=";
    notMaxNodes.print(std::cout, n);
    printCoefficients<Selector>(std::cout, dag, id);
  }

  void init(Dag& dag, std::uint32_t id) override {
    Inner::init(dag, id);
    modified.clear();
    const Operands operands(dag, id);
    const Selector coefficients(dag, id);
    notMinNodes.fill(operands.nbOperands,
                     [&](std::uint32_t i) { return canFall(operands, i, coefficients[i]); });
    notMaxNodes.fill(operands.nbOperands,
                     [&](std::uint32_t i) { return canRise(operands, i, coefficients[i]); });
  }

  void operandChanged(std::uint32_t position, const DagFixedFields& fields,
                      std::uint32_t id) override {
    modified.add(position, fields.nbOperands(id));
    // What the evaluation reads of a wide sum lies apart from all that was read so far.
    if constexpr (kIsWide) {
      __builtin_prefetch(fields.linkedOperandsOf(id) + position);
      if constexpr (kHasCoefficients) __builtin_prefetch(fields.linkedScalarsOf(id) + position);
    }
  }

  void commit(Dag& dag, std::uint32_t id) override {
    const Operands operands(dag, id);
    const Selector coefficients(dag, id);
    const std::uint32_t n = operands.nbOperands;
    modified.forEach(n, [&](std::uint32_t i) {
      const Number value = operands.tValue(i);
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
    if (isAtMin<Arithmetic>(dag, id)) return false;
    const std::uint32_t position = randomNotMinNode(dag, id, rng);
    if (position == kNone) return false;
    const bool isReversed = Selector(dag, id)[position] < 0;
    return pickAtPosition(dag, id, position, isReversed ? pickUp : pickDown, rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    if (isAtMax<Arithmetic>(dag, id)) return false;
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

protected:
  using NodeIncremental<typename Arithmetic::Inner, S>::modified;

private:
  using Number = typename Arithmetic::Number;
  using Inner = typename Arithmetic::Inner;
  using Operands = typename Arithmetic::Operands;

  static constexpr bool kIsWide = !std::is_same_v<ModifiedSet<S>, S>;
  static constexpr bool kHasCoefficients =
      std::is_same_v<Selector, IntScalarSelector> || std::is_same_v<Selector, DoubleScalarSelector>;

  static void put(S& set, std::uint32_t i, std::uint32_t n, bool isMember) {
    if (isMember) {
      set.add(i, n);
    } else {
      set.remove(i, n);
    }
  }

  static bool canFall(const Operands& operands, std::uint32_t i, Number coefficient) {
    if (coefficient > 0) return operands.value(i) > operands.min(i);
    return coefficient < 0 && operands.value(i) < operands.max(i);
  }

  static bool canRise(const Operands& operands, std::uint32_t i, Number coefficient) {
    if (coefficient > 0) return operands.value(i) < operands.max(i);
    return coefficient < 0 && operands.value(i) > operands.min(i);
  }

  bool areNotMinNodesInit(const Dag& dag, std::uint32_t id) const {
    const Operands operands(dag, id);
    const Selector coefficients(dag, id);
    return notMinNodes.agrees(operands.nbOperands, [&](std::uint32_t i) {
      return canFall(operands, i, coefficients[i]);
    });
  }

  bool areNotMaxNodesInit(const Dag& dag, std::uint32_t id) const {
    const Operands operands(dag, id);
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
