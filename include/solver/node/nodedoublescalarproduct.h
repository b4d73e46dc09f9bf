#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLESCALARPRODUCT_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLESCALARPRODUCT_H

#include <cmath>

#include "common/failure.h"
#include "solver/node/nodeincremental.h"
#include "solver/node/operandview.h"
#include "solver/node/plainpicks.h"
#include "solver/node/selectors.h"
#include "solver/node/trust.h"

namespace ombrix {

/// The product of double operands and one scalar. A change of k operands costs O(k): the value is
/// multiplied by the new factors and divided by the old ones, unless a factor leaves 0 or the
/// change is too big to trust; then all operands are read again. Keeps nothing but its changes.
template <typename S, typename Selector>
class NodeDoubleScalarProductTemplate final
    : public NodeIncremental<AnyWayPicks<NodeDoubleInner>, S> {
public:
  using NodeIncremental<AnyWayPicks<NodeDoubleInner>, S>::NodeIncremental;

  double computeValue(const Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    double value = Selector(dag, id).scalar();
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) value *= operands.value(i);
    if (!std::isfinite(value))
      failInfinite(OMBRIX_HERE("NodeDoubleScalarProductTemplate::computeValue"));
    return value;
  }

  bool isConsistent(const Dag& dag, std::uint32_t id) const override {
    return NodeDoubleInner::isConsistent(dag, id) && modified.size() == 0;
  }

  void init(Dag& dag, std::uint32_t id) override {
    NodeDoubleInner::init(dag, id);
    modified.clear();
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const DoubleOperandView operands(dag, id);
    double oldFactors = 1.0;
    double newFactors = 1.0;
    modified.forEach(operands.nbOperands, [&](std::uint32_t i) {
      oldFactors *= operands.value(i);
      newFactors *= operands.tValue(i);
    });
    if (!std::isfinite(newFactors))
      failInfinite(OMBRIX_HERE("NodeDoubleScalarProductTemplate::eval"));
    if (isBigChange(oldFactors, newFactors) || (oldFactors == 0.0 && newFactors != 0.0)) {
      dag.tValues[id].doubleValue = tentativeProduct(operands, Selector(dag, id).scalar());
    } else if (oldFactors != newFactors) {
      dag.tValues[id].doubleValue = dag.values[id].doubleValue * newFactors / oldFactors;
    }
  }

  void commit(Dag& dag, std::uint32_t id) override { this->settle(dag, id); }

private:
  using NodeIncremental<AnyWayPicks<NodeDoubleInner>, S>::modified;

  [[noreturn]] static void failInfinite(const Where& where) {
    fail(kComputation, where, "Cannot compute the product of zero and infinity");
  }

  static double tentativeProduct(const DoubleOperandView& operands, double value) {
    for (std::uint32_t i = 0; i < operands.nbOperands; ++i) value *= operands.tValue(i);
    return value;
  }
};

}  // namespace ombrix

#endif
