#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLESCALARSUM_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLESCALARSUM_H

#include <cmath>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/kernel/saturating.h"
#include "solver/node/nodesumsets.h"
#include "solver/node/trust.h"

namespace ombrix {

/// The sum of double terms, each an operand times its coefficient. A change of k operands costs
/// O(k), unless it nearly cancels the value or starts or ends at 0: then the digits of the
/// increment cannot be trusted, and all operands are read again. Between such moments the value may
/// drift from a fresh sum within the tolerance. It carries a target value on to one operand.
template <typename S, typename Selector>
class NodeDoubleScalarSumTemplate final : public NodeSumSets<DoubleArithmetic, S, Selector> {
public:
  using NodeSumSets<DoubleArithmetic, S, Selector>::NodeSumSets;

  double computeValue(const Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    double sum = 0.0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      sum += operands.value(i) * coefficients[i];
    if (!std::isfinite(sum)) failInfinite(OMBRIX_HERE("NodeDoubleScalarSumTemplate::computeValue"));
    return sum;
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    const Selector coefficients(dag, id);
    double delta = 0.0;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      delta += (operands.tValue(i) - operands.value(i)) * coefficients[i];
    });
    const double oldSum = dag.values[id].doubleValue;
    const double sum = oldSum + delta;
    if (!std::isfinite(sum)) failInfinite(OMBRIX_HERE("NodeDoubleScalarSumTemplate::eval"));
    dag.tValues[id].doubleValue =
        isBigChange(oldSum, sum) ? tentativeSum(operands, coefficients) : sum;
  }

  bool pickForTarget(const Dag& dag, std::uint32_t id, std::uint32_t& rng, OXValue& target,
                     std::uint32_t& decision, OXValue& decisionValue) const override {
    const double value = dag.values[id].doubleValue;
    if (approxEqual(target.doubleValue, value)) return false;
    const DoubleOperandView operands(dag, id);
    const std::uint32_t position = randomIndex(rng, operands.nbOperands);
    const std::uint32_t operand = operands.operands[position];
    const double delta = (target.doubleValue - value) / Selector(dag, id)[position];
    const double wanted = operands.value(position) + delta;
    OXValue operandTarget = operands.domains[operand] == kDoubleDomain
                                ? OXValue::ofDouble(wanted)
                                : OXValue::ofInt(truncateToInt64(wanted));
    return dag.nodes[operand]->pickForTarget(dag, operand, rng, operandTarget, decision,
                                             decisionValue);
  }

private:
  using NodeSumSets<DoubleArithmetic, S, Selector>::modified;

  [[noreturn]] static void failInfinite(const Where& where) {
    fail(kComputation, where, "Cannot compute the sum of two opposite infinite numbers");
  }

  static double tentativeSum(const DoubleOperandView& operands, const Selector& coefficients) {
    double sum = 0.0;
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i)
      sum += operands.tValue(i) * coefficients[i];
    return sum;
  }
};

}  // namespace ombrix

#endif
