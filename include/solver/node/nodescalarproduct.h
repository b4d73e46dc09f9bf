#ifndef OMBRIX_SOLVER_NODE_NODESCALARPRODUCT_H
#define OMBRIX_SOLVER_NODE_NODESCALARPRODUCT_H

#include <iostream>

#include "solver/kernel/saturating.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"
#include "solver/node/plainpicks.h"
#include "solver/node/selectors.h"

namespace ombrix {

/// The product of integer operands and one scalar, modulo 2^64. Keeps the positions of the zero
/// operands, and the scalar times all others: with the zeros kept out, the product can be divided
/// by any operand that changes, exactly as long as nothing overflowed. A change of k operands costs
/// O(k).
template <typename S, typename Selector>
class NodeScalarProductTemplate final : public NodeIncremental<AnyWayPicks<NodeInner>, S> {
public:
  explicit NodeScalarProductTemplate(std::uint32_t nbOperands)
      : NodeIncremental<AnyWayPicks<NodeInner>, S>(nbOperands) {
    zeroNodes.init(nbOperands);
  }

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t value = Selector(dag, id).scalar();
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      value = wrappingMul(value, operands.value(i));
    return value;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeInner::isConsistent(dag, id) && areZeroNodesInit(dag, id) &&
           product == computeProduct(dag, id) && modified.size() == 0;
  }

  void dump(const Dag& dag, std::uint32_t id) const override {
    Node::dump(dag, id);
    std::cout << "isZeroNodesInit=" << areZeroNodesInit(dag, id) << "\nzeroNodes=";
    zeroNodes.print(std::cout, dag.fixedFields->nbOperands(id));
    std::cout << "scalar =" << Selector(dag, id).scalar() << '\n';
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeInner::init(dag, id);
    modified.clear();
    const OperandView operands(dag, id);
    zeroNodes.fill(operands.nbOperands, [&](std::uint32_t i) { return operands.value(i) == 0; });
    product = computeProduct(dag, id);
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    std::int64_t nonZeroProduct = product;
    std::int64_t nbZeros = zeroNodes.size();
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      const std::int64_t oldValue = operands.value(i);
      const std::int64_t newValue = operands.tValue(i);
      nonZeroProduct = replaceFactor(nonZeroProduct, oldValue, newValue);
      nbZeros += (newValue == 0 ? 1 : 0) - (oldValue == 0 ? 1 : 0);
    });
    dag.tValues[id].intValue = nbZeros != 0 ? 0 : nonZeroProduct;
  }

  void commit(Dag& dag, std::uint32_t id) override {
    const OperandView operands(dag, id);
    const std::uint32_t n = operands.nbOperands;
    modified.forEach(n, [&](std::uint32_t i) {
      const std::int64_t newValue = operands.tValue(i);
      product = replaceFactor(product, operands.value(i), newValue);
      if (newValue == 0) {
        zeroNodes.add(i, n);
      } else {
        zeroNodes.remove(i, n);
      }
    });
    this->settle(dag, id);
  }

private:
  using NodeIncremental<AnyWayPicks<NodeInner>, S>::modified;

  /// The product of the non-zero factors after one factor changed.
  static std::int64_t replaceFactor(std::int64_t factors, std::int64_t oldValue,
                                    std::int64_t newValue) {
    // Most factors are boolean, and a division by 1 costs as much as any other.
    if (oldValue != 0 && oldValue != 1) factors = truncatingDiv(factors, oldValue);
    return newValue != 0 ? wrappingMul(factors, newValue) : factors;
  }

  std::int64_t computeProduct(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    std::int64_t result = Selector(dag, id).scalar();
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) {
      if (operands.value(i) != 0) result = wrappingMul(result, operands.value(i));
    }
    return result;
  }

  bool areZeroNodesInit(const Dag& dag, std::uint32_t id) const {
    const OperandView operands(dag, id);
    return zeroNodes.agrees(operands.nbOperands,
                            [&](std::uint32_t i) { return operands.value(i) == 0; });
  }

  S zeroNodes;
  std::int64_t product = 0;
};

}  // namespace ombrix

#endif
