#ifndef OMBRIX_SOLVER_NODE_NODEDOUBLEFUNCTION_H
#define OMBRIX_SOLVER_NODE_NODEDOUBLEFUNCTION_H

#include "solver/kernel/mathdouble.h"
#include "solver/node/arithmetic.h"
#include "solver/node/picking.h"

namespace ombrix {

/// The picks of a function that rises with its operand.
template <typename Base>
class IncreasingPicks : public Base {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickDown(dag, dag.fixedFields->operand(id, 0), rng, decision);
  }
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickUp(dag, dag.fixedFields->operand(id, 0), rng, decision);
  }
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickAny(dag, dag.fixedFields->operand(id, 0), rng, decision);
  }
};

/// The same, but a change takes a direction by a coin.
class CeilPicks : public IncreasingPicks<NodeInner> {
public:
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickOperandAnyWay(dag, id, rng, decision);
  }
};

/// The picks of a periodic function: which way the operand should go is not worth knowing.
class PeriodicPicks : public NodeDoubleInner {
public:
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickToChange(dag, id, rng, decision);
  }
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override {
    return pickToChange(dag, id, rng, decision);
  }
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override {
    return pickAny(dag, dag.fixedFields->operand(id, 0), rng, decision);
  }
};

/// A function of one double with a double value, or an integer one where it rounds. The failures
/// are those of the function.
template <auto kFunction, typename Picks>
class NodeDoubleFunction final : public Picks {
public:
  using Result = decltype(kFunction(0.0));

  Result computeValue(const Dag& dag, std::uint32_t id) const override {
    return kFunction(DoubleArithmetic::read(dag, dag.values, dag.fixedFields->operand(id, 0)));
  }

  void eval(Dag& dag, std::uint32_t id) const override {
    const std::uint32_t operand = dag.fixedFields->operand(id, 0);
    store(dag.tValues[id], kFunction(DoubleArithmetic::read(dag, dag.tValues, operand)));
  }

private:
  static void store(OXValue& slot, std::int64_t result) { slot.intValue = result; }
  static void store(OXValue& slot, double result) { slot.doubleValue = result; }
};

/// Halves round up, and what is almost a half does too.
inline std::int64_t roundDouble(double x) {
  return MathDouble::floor(x + 0.5);
}

using NodeDoubleCeil = NodeDoubleFunction<MathDouble::ceil, CeilPicks>;
using NodeDoubleFloor = NodeDoubleFunction<MathDouble::floor, IncreasingPicks<NodeInner>>;
using NodeDoubleRound = NodeDoubleFunction<roundDouble, IncreasingPicks<NodeInner>>;
using NodeDoubleSqrt = NodeDoubleFunction<MathDouble::sqrt, IncreasingPicks<NodeDoubleInner>>;
using NodeDoubleLog = NodeDoubleFunction<MathDouble::log, IncreasingPicks<NodeDoubleInner>>;
using NodeDoubleExp = NodeDoubleFunction<MathDouble::exp, IncreasingPicks<NodeDoubleInner>>;
using NodeDoubleCos = NodeDoubleFunction<MathDouble::cos, PeriodicPicks>;
using NodeDoubleSin = NodeDoubleFunction<MathDouble::sin, PeriodicPicks>;
using NodeDoubleTan = NodeDoubleFunction<MathDouble::tan, PeriodicPicks>;

/// The first operand to the power of the second.
class NodeDoublePow final : public NodeDoubleInner {
public:
  double computeValue(const Dag& dag, std::uint32_t id) const override;
  void eval(Dag& dag, std::uint32_t id) const override;
  bool pickToDecrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToIncrease(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                      std::uint32_t& decision) const override;
  bool pickToChange(const Dag& dag, std::uint32_t id, std::uint32_t& rng,
                    std::uint32_t& decision) const override;
};

}  // namespace ombrix

#endif
