#ifndef OMBRIX_SOLVER_NODE_NODESCALARSUM_H
#define OMBRIX_SOLVER_NODE_NODESCALARSUM_H

#include "solver/kernel/saturating.h"
#include "solver/node/nodesumsets.h"

namespace ombrix {

/// The sum of integer terms, each an operand times its coefficient, modulo 2^64. A change of k
/// operands costs O(k).
template <typename S, typename Selector>
class NodeScalarSumTemplate final : public NodeSumSets<IntArithmetic, S, Selector> {
public:
  using NodeSumSets<IntArithmetic, S, Selector>::NodeSumSets;

  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    const OperandView operands(dag, id);
    const Selector coefficients(dag, id);
    std::int64_t sum = 0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      sum = wrappingAdd(sum, wrappingMul(operands.value(i), coefficients[i]));
    return sum;
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

private:
  using NodeSumSets<IntArithmetic, S, Selector>::modified;
};

}  // namespace ombrix

#endif
