#ifndef OMBRIX_SOLVER_NODE_NODENOT_H
#define OMBRIX_SOLVER_NODE_NODENOT_H

#include "solver/node/picking.h"

namespace ombrix {

/// The negation of a boolean operand.
class NodeNot final : public NodeInner {
public:
  std::int64_t computeValue(const Dag& dag, std::uint32_t id) const override {
    return dag.values[operandOf(dag, id)].intValue == 0 ? 1 : 0;
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    dag.tValues[id].intValue = dag.tValues[operandOf(dag, id)].intValue == 0 ? 1 : 0;
  }

  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue != 0 && pickUp(dag, operandOf(dag, id), rng, decision);
  }

  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return dag.values[id].intValue == 0 && pickDown(dag, operandOf(dag, id), rng, decision);
  }

  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickAny(dag, operandOf(dag, id), rng, decision);
  }

private:
  static std::uint32_t operandOf(const Dag& dag, std::uint32_t id) {
    return dag.fixedFields->operand(id, 0);
  }
};

}  // namespace ombrix

#endif
